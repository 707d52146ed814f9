// The sample files of the desktop engine in tests/data/desktop, and copies of them to write to.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_file/jet_file_backend.h"
#include "engine/sqlite/sqlite_backend.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {

inline std::string DesktopSample(std::string_view name) {
  return std::string(KX_TEST_DATA "/desktop/") + std::string(name);
}

// A sample and the SQLite file with the same rows.
struct SampleFile {
  const char *name, *twin;
  friend void PrintTo(const SampleFile& sample, std::ostream* out) { *out << sample.name; }
};

inline const std::vector<SampleFile>& SoundSamples() {
  static const std::vector<SampleFile> samples = {{"telling-2000.mdb", "telling.db"},
                                                  {"telling-2003.mdb", "telling.db"},
                                                  {"telling-2007.accdb", "telling.db"},
                                                  {"telling-2010.accdb", "telling.db"},
                                                  {"telling-2019.accdb", "telling.db"},
                                                  {"marked-2003.mdb", "marked.db"},
                                                  {"overflow-2003.mdb", "overflow.db"},
                                                  {"restore-index-2003.mdb", "telling.db"},
                                                  {"added-column-2003.mdb", "added-column.db"},
                                                  {"deleted-2003.mdb", "deleted.db"},
                                                  {"made-2000.mdb", "made-short.db"},
                                                  {"made-2003.mdb", "made.db"},
                                                  {"made-2010.accdb", "made.db"},
                                                  {"made-2019.accdb", "made.db"}};
  return samples;
}

using FileBytes = std::vector<char>;

inline FileBytes ReadBytes(const std::string& path) {
  std::ifstream file(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteBytes(const std::string& path, const FileBytes& bytes) {
  std::ofstream file(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// A workspace in which this program reads desktop files itself, whatever is installed.
inline std::unique_ptr<Workspace> MakeReaderWorkspace() {
  Workspace::Backends backends;
  backends.sqlite = sqlite::MakeSqliteBackend(std::chrono::milliseconds(300));
  backends.jetFile = jet_file::MakeJetFileBackend(std::chrono::milliseconds(300));
  return std::make_unique<Workspace>(std::move(backends), Workspace::DesktopFiles::kReader);
}

// A copy of a sample in a folder of its own.
class SampleCopy {
 public:
  explicit SampleCopy(std::string_view name)
      : m_path(m_folder.File(name)), m_original(ReadBytes(DesktopSample(name))) {
    WriteBytes(m_path, m_original);
  }
  const std::string& Path() const { return m_path; }
  std::string Beside(std::string_view name) const { return m_folder.File(name); }
  OpenRequest Request() const { return {.name = m_path}; }

  // The places where the copy's bytes are not the original's.
  std::vector<std::size_t> Changed() const {
    const FileBytes now = ReadBytes(m_path);
    std::vector<std::size_t> places;
    if (now.size() != m_original.size()) places.push_back(std::min(now.size(), m_original.size()));
    for (std::size_t i = 0; i < std::min(now.size(), m_original.size()); ++i) {
      if (now[i] != m_original[i]) places.push_back(i);
    }
    return places;
  }
  const FileBytes& Original() const { return m_original; }

 private:
  TemporaryFolder m_folder;
  std::string m_path;
  FileBytes m_original;
};

}  // namespace kxrestore::engine::testing
