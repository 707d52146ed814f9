// Saved queries that the dialog makes in files of the desktop engine. They are never written: they live as
// long as the program, for every database that is opened from the file, and stand before the file's own.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace kxrestore::engine::jet_file {

// By folded name. A query without a text is one of the file's own that was deleted.
struct MadeQuery {
  std::string name;
  std::optional<std::string> createView;  // SQLite's CREATE VIEW
};
using MadeQueries = std::map<std::string, MadeQuery>;

// Those of one file. Databases of several threads may share it.
class SavedQueries {
 public:
  // Those of the file at that path, however it is spelled.
  static SavedQueries& Of(const std::string& path);

  // Counts up with every change.
  std::uint64_t Version() const;
  MadeQueries All() const;
  std::optional<MadeQuery> Find(std::string_view name) const;
  void Set(std::string_view name, std::optional<std::string> createView);
  void Restore(MadeQueries queries);

 private:
  mutable std::mutex m_mutex;
  std::uint64_t m_version = 1;
  MadeQueries m_queries;
};

}  // namespace kxrestore::engine::jet_file
