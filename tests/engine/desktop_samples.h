// The sample files of the desktop engine in tests/data/desktop, and temporary copies of them.
#pragma once

#include <algorithm>
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

// A sample and its twin, the SQLite file with the same rows.
struct SampleFile {
  const char *name, *twin;
  friend void PrintTo(const SampleFile& sample, std::ostream* out) { *out << sample.name; }
};

inline constexpr SampleFile kSoundSamples[] = {{"telling-2000.mdb", "telling.db"},
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

// A workspace that reads desktop files without the desktop engine, even where it is installed.
inline std::unique_ptr<Workspace> MakeReaderWorkspace() {
  Workspace::Backends backends;
  backends.sqlite = sqlite::MakeSqliteBackend(std::chrono::milliseconds(300));
  backends.jetFile = jet_file::MakeJetFileBackend(std::chrono::milliseconds(300));
  return std::make_unique<Workspace>(std::move(backends), Workspace::DesktopFiles::kReader);
}

// A copy of a sample in a temporary folder.
class SampleCopy {
 public:
  explicit SampleCopy(std::string_view name)
      : m_path(m_folder.File(name)), m_original(ReadBytes(DesktopSample(name))) {
    WriteBytes(m_path, m_original);
  }
  const std::string& Path() const { return m_path; }
  std::string Beside(std::string_view name) const { return m_folder.File(name); }
  OpenRequest Request() const { return {.name = m_path}; }

  // Writes a changed version of the original bytes.
  template <class Edit>
  void Change(Edit change) const {
    std::string bytes = m_original;
    change(bytes);
    WriteBytes(m_path, bytes);
  }

  // The offsets at which the copy differs from the original.
  std::vector<std::size_t> Changed() const {
    const std::string now = ReadBytes(m_path);
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < std::max(now.size(), m_original.size()); ++i) {
      if (i >= now.size() || i >= m_original.size() || now[i] != m_original[i]) places.push_back(i);
    }
    return places;
  }
  const std::string& Original() const { return m_original; }

 private:
  TemporaryFolder m_folder;
  std::string m_path;
  std::string m_original;
};

}  // namespace kxrestore::engine::testing
