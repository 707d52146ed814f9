#include "tests/faults/power_loss_disk.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <vector>

namespace kxrestore::faults {
namespace {

constexpr std::size_t kSector = 512;

// A write of part of a file, or a cut when there are no bytes.
struct Change {
  std::size_t at;
  std::string bytes;
};

struct File {
  std::string safe;
  std::vector<Change> unsynced;
};

void Apply(std::string& content, std::size_t at, const std::string& bytes) {
  if (bytes.empty()) return content.resize(at);
  if (content.size() < at + bytes.size()) content.resize(at + bytes.size());
  content.replace(at, bytes.size(), bytes);
}

}  // namespace

struct PowerLossDisk::Model {
  using Names = std::map<std::string, std::shared_ptr<File>>;

  std::string folder;
  std::function<void()> step;
  Names names, safeNames;
  std::map<int, std::shared_ptr<File>> open;
  std::size_t syncs = 0;

  std::string NameOf(const char* path) const {
    const std::string_view text(path);
    return text.starts_with(folder) ? std::string(text.substr(folder.size())) : std::string();
  }

  void Opened(const char* path, int file) {
    const std::string name = NameOf(path);
    if (file < 0 || name.empty() || name.ends_with("-shm")) return;
    std::shared_ptr<File>& found = names[name];
    if (!found) found = std::make_shared<File>();
    open[file] = found;
  }

  void Written(int file, const void* bytes, std::size_t size, std::int64_t at) {
    const auto found = open.find(file);
    if (found == open.end() || size == 0) return;
    step();
    // A sector is written as a whole or not at all.
    const char* const all = static_cast<const char*>(bytes);
    for (std::size_t done = 0; done < size;) {
      const std::size_t begin = static_cast<std::size_t>(at) + done;
      const std::size_t piece = std::min(size - done, kSector - begin % kSector);
      found->second->unsynced.push_back({begin, std::string(all + done, piece)});
      done += piece;
    }
  }

  void Cut(int file, std::int64_t size) {
    const auto found = open.find(file);
    if (found == open.end()) return;
    step();
    found->second->unsynced.push_back({static_cast<std::size_t>(size), {}});
  }

  void Synced(int file) {
    if (const auto found = open.find(file); found != open.end()) {
      step();
      ++syncs;
      for (const Change& change : found->second->unsynced)
        Apply(found->second->safe, change.at, change.bytes);
      found->second->unsynced.clear();
      return;
    }
    std::array<char, PATH_MAX> path{};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    if (readlink(link.c_str(), path.data(), path.size() - 1) < 0) return;
    if (std::string(path.data()) + "/" != folder) return;
    step();
    ++syncs;
    safeNames = names;
  }

  void Deleted(const char* path) {
    const std::string name = NameOf(path);
    if (name.empty() || !names.contains(name)) return;
    step();
    names.erase(name);
  }
};

namespace {

PowerLossDisk::Model* g_model = nullptr;

using Call = sqlite3_syscall_ptr;
std::map<std::string, Call> g_real;

template <class Function>
Function Real(const char* name) {
  return reinterpret_cast<Function>(g_real.at(name));
}

int Open(const char* path, int flags, int mode) {
  const int file = Real<int (*)(const char*, int, int)>("open")(path, flags, mode);
  g_model->Opened(path, file);
  return file;
}

int CloseFile(int file) {
  g_model->open.erase(file);
  return Real<int (*)(int)>("close")(file);
}

ssize_t WriteAt(int file, const void* bytes, std::size_t size, off_t at) {
  g_model->Written(file, bytes, size, at);
  return pwrite(file, bytes, size, at);
}

ssize_t Write(int file, const void* bytes, std::size_t size) {
  g_model->Written(file, bytes, size, lseek(file, 0, SEEK_CUR));
  return write(file, bytes, size);
}

int Truncate(int file, off_t size) {
  g_model->Cut(file, size);
  return ftruncate(file, size);
}

int Unlink(const char* path) {
  g_model->Deleted(path);
  return unlink(path);
}

const struct {
  const char* name;
  Call ours;
} kCalls[] = {{"open", reinterpret_cast<Call>(Open)},      {"close", reinterpret_cast<Call>(CloseFile)},
              {"pwrite", reinterpret_cast<Call>(WriteAt)}, {"pwrite64", reinterpret_cast<Call>(WriteAt)},
              {"write", reinterpret_cast<Call>(Write)},    {"ftruncate", reinterpret_cast<Call>(Truncate)},
              {"unlink", reinterpret_cast<Call>(Unlink)}};

sqlite3_vfs* SystemsOwn() {
  return sqlite3_vfs_find("unix");
}

}  // namespace

PowerLossDisk::PowerLossDisk(std::string folder, std::function<void()> step)
    : m_model(std::make_unique<Model>()) {
  m_model->folder = std::move(folder);
  if (!m_model->folder.ends_with('/')) m_model->folder += '/';
  m_model->step = std::move(step);
  for (const auto& entry : std::filesystem::directory_iterator(m_model->folder)) {
    std::ifstream stream(entry.path(), std::ios::binary);
    auto file = std::make_shared<File>();
    file->safe.assign(std::istreambuf_iterator<char>(stream), {});
    m_model->names[entry.path().filename().string()] = std::move(file);
  }
  m_model->safeNames = m_model->names;
  g_model = m_model.get();
  sqlite3_vfs* const vfs = SystemsOwn();
  for (const auto& call : kCalls) {
    if (vfs->xGetSystemCall(vfs, call.name) == nullptr) continue;  // this build does without
    g_real[call.name] = vfs->xGetSystemCall(vfs, call.name);
    vfs->xSetSystemCall(vfs, call.name, call.ours);
  }
}

PowerLossDisk::~PowerLossDisk() {
  sqlite3_vfs* const vfs = SystemsOwn();
  for (const auto& [name, real] : g_real) vfs->xSetSystemCall(vfs, name.c_str(), real);
  g_real.clear();
  g_model = nullptr;
}

void PowerLossDisk::Fail(const std::string& target, Reached reached, unsigned seed) const {
  std::mt19937 random(seed);
  const auto hasReached = [&] {
    return reached == Reached::kAll || (reached == Reached::kSome && random() % 2 == 0);
  };
  std::filesystem::remove_all(target);
  std::filesystem::create_directory(target);
  Model::Names found = m_model->safeNames;
  for (const auto& [name, file] : m_model->names) {
    if (!found.contains(name) && hasReached()) found[name] = file;
  }
  for (const auto& [name, file] : m_model->safeNames) {
    if (!m_model->names.contains(name) && hasReached()) found.erase(name);
  }
  for (const auto& [name, file] : found) {
    std::string content = file->safe;
    for (const Change& change : file->unsynced) {
      if (hasReached()) Apply(content, change.at, change.bytes);
    }
    std::ofstream(target + "/" + name, std::ios::binary) << content;
  }
}

std::size_t PowerLossDisk::Syncs() const {
  return m_model->syncs;
}

namespace detail {
int WatchedSync(long number, int file) {
  if (g_model != nullptr) g_model->Synced(file);
  return static_cast<int>(syscall(number, file));
}
}  // namespace detail

}  // namespace kxrestore::faults

// The program's own definitions come before the system library's, for the shared database library too.
extern "C" int fsync(int file) {
  return kxrestore::faults::detail::WatchedSync(SYS_fsync, file);
}
extern "C" int fdatasync(int file) {
  return kxrestore::faults::detail::WatchedSync(SYS_fdatasync, file);
}
