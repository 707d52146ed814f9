#include "engine/jet_file/saved_queries.h"

#include <filesystem>
#include <memory>

#include "base/text.h"

namespace kxrestore::engine::jet_file {
namespace {

std::string KeyOf(const std::string& path) {
  std::error_code failure;
  const std::filesystem::path given(std::u8string(path.begin(), path.end()));
  const std::filesystem::path whole = std::filesystem::weakly_canonical(given, failure);
  const std::u8string text = (failure ? given : whole).u8string();
  std::string key(text.begin(), text.end());
#ifdef _WIN32
  key = FoldCase(key);
#endif
  return key;
}

}  // namespace

SavedQueries& SavedQueries::Of(const std::string& path) {
  static std::mutex mutex;
  static std::map<std::string, std::unique_ptr<SavedQueries>> files;
  const std::string key = KeyOf(path);
  const std::lock_guard lock(mutex);
  auto& found = files[key];
  if (!found) found = std::make_unique<SavedQueries>();
  return *found;
}

std::uint64_t SavedQueries::Version() const {
  const std::lock_guard lock(m_mutex);
  return m_version;
}

MadeQueries SavedQueries::All() const {
  const std::lock_guard lock(m_mutex);
  return m_queries;
}

std::optional<MadeQuery> SavedQueries::Find(std::string_view name) const {
  const std::lock_guard lock(m_mutex);
  const auto found = m_queries.find(FoldCase(name));
  if (found == m_queries.end()) return std::nullopt;
  return found->second;
}

void SavedQueries::Set(std::string_view name, std::optional<std::string> createView) {
  const std::lock_guard lock(m_mutex);
  ++m_version;
  m_queries[FoldCase(name)] = {std::string(name), std::move(createView)};
}

void SavedQueries::Restore(MadeQueries queries) {
  const std::lock_guard lock(m_mutex);
  ++m_version;
  m_queries = std::move(queries);
}

}  // namespace kxrestore::engine::jet_file
