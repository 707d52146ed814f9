// Saved queries that the dialog makes in desktop-engine files. They are never written to the file. They last
// as long as the program, for every database opened from the file, and take precedence over the file's own.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace kxrestore::engine::jet_file {

// By case-folded name. A query without a text marks one of the file's own as deleted.
struct MadeQuery {
  std::string name;
  std::optional<std::string> createView;  // SQLite's CREATE VIEW
};
using MadeQueries = std::map<std::string, MadeQuery>;

// The queries of one file, which databases of several threads may share.
class SavedQueries {
 public:
  // The queries of the file at that path, however it is spelled.
  static SavedQueries& Of(const std::string& path);

  // Incremented by every change.
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
