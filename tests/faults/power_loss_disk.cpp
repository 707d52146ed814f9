#include "tests/faults/power_loss_disk.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <vector>

#include "tests/engine/hooked_files.h"

namespace kxrestore::faults {
namespace {

using engine::testing::FileCall;

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
  std::map<const sqlite3_file*, std::shared_ptr<File>> open;
  std::size_t syncs = 0;

  // A file that is reopened may be another one.
  void Opened(const FileCall& call, const std::string& name) {
    open.erase(call.file);
    if (name.empty() || (!names.contains(name) && (call.flags & SQLITE_OPEN_CREATE) == 0)) return;
    std::shared_ptr<File>& found = names[name];
    if (!found) found = std::make_shared<File>();
    open[call.file] = found;
  }

  // A sector is written as a whole or not at all.
  static void Write(File& file, std::string_view bytes, std::size_t at) {
    while (!bytes.empty()) {
      const std::string_view piece = bytes.substr(0, kSector - at % kSector);
      file.unsynced.push_back({at, std::string(piece)});
      bytes.remove_prefix(piece.size());
      at += piece.size();
    }
  }

  void SyncFolder() {
    step();
    ++syncs;
    safeNames = names;
  }

  // The first sync of a new file syncs its folder, too.
  void Sync(File& file) {
    ++syncs;
    for (const Change& change : file.unsynced) Apply(file.safe, change.at, change.bytes);
    file.unsynced.clear();
    if (std::ranges::none_of(safeNames, [&](const auto& safe) { return safe.second.get() == &file; }))
      SyncFolder();
  }

  int OnCall(const FileCall& call) {
    const std::string name(call.name.starts_with(folder) ? call.name.substr(folder.size()) : "");
    if (call.kind == FileCall::kOpen) Opened(call, name);
    if (call.kind == FileCall::kDelete && names.contains(name)) {
      step();
      names.erase(name);
      if (call.flags != 0) SyncFolder();
    }
    const auto found = open.find(call.file);
    if (found == open.end()) return SQLITE_OK;
    const auto at = static_cast<std::size_t>(call.at);
    if (call.kind >= FileCall::kWrite && call.kind <= FileCall::kSync) step();
    if (call.kind == FileCall::kWrite) Write(*found->second, call.bytes, at);
    if (call.kind == FileCall::kTruncate) found->second->unsynced.push_back({at, {}});
    if (call.kind == FileCall::kSync) Sync(*found->second);
    return SQLITE_OK;
  }

  engine::testing::HookedFiles files{[this](const FileCall& call) { return OnCall(call); }};
};

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
}

PowerLossDisk::~PowerLossDisk() = default;

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

}  // namespace kxrestore::faults
