#include "dialog/path_nodes.h"

#include <algorithm>

#include "base/text.h"

namespace kxrestore::dialog {

namespace {

// Where the components of a path begin.
std::size_t BehindFirstBackslash(std::string_view path) {
  const std::size_t backslash = path.find('\\');
  return backslash == std::string_view::npos ? path.size() : backslash + 1;
}

}  // namespace

std::string_view GetDrive(std::string_view path) {
  return LeftCharacters(path, 3);
}

std::string_view LastComponent(std::string_view path) {
  const std::size_t last = path.find_last_not_of('\\');
  if (last == std::string_view::npos) return path;
  const std::string_view trimmed = path.substr(0, last + 1);
  return trimmed.substr(trimmed.rfind('\\') + 1);
}

controls::Node PathNodes::AddPathNodes(std::string_view path, std::string_view tag) {
  if (path.empty()) return {};
  // A path that ends in a backslash is a folder backed up as an entry of its own: it gets a node like a
  // file's.
  std::string_view name = LastComponent(path);
  std::string_view folders = path.substr(0, static_cast<std::size_t>(name.data() - path.data()));
  if (folders.empty()) folders = GetDrive(path);
  if (m_levels.empty() || folders != m_folders) Folder(folders);
  return m_tree.Add(m_levels.back().node, {}, name, m_images.file, tag);
}

controls::Node PathNodes::Folder(std::string_view folders) {
  const auto common = static_cast<std::size_t>(
      std::mismatch(folders.begin(), folders.end(), m_folders.begin(), m_folders.end()).first -
      folders.begin());
  while (!m_levels.empty() && m_levels.back().end > common) m_levels.pop_back();

  const std::string_view drive = GetDrive(folders);
  if (m_levels.empty()) {
    m_key.assign(drive);
    controls::Node node = m_tree.Find(m_key);
    if (!node) node = m_tree.Add({}, m_key, drive, m_images.drive);
    m_levels.push_back({std::max(drive.size(), BehindFirstBackslash(folders)), m_key.size(), node});
  } else {
    m_key.resize(m_levels.back().keyEnd);
  }

  std::size_t start = m_levels.size() == 1 ? BehindFirstBackslash(folders) : m_levels.back().end;
  while (start < folders.size()) {
    const std::size_t backslash = folders.find('\\', start);
    if (backslash == std::string_view::npos) break;
    const std::string_view component = folders.substr(start, backslash - start);
    start = backslash + 1;
    if (component.empty()) continue;
    m_key.append(component).push_back('\\');
    controls::Node node = m_tree.Find(m_key);
    if (!node) node = m_tree.Add(m_levels.back().node, m_key, component, m_images.folder);
    m_levels.push_back({start, m_key.size(), node});
  }
  m_folders.assign(folders);
  return m_levels.back().node;
}

}  // namespace kxrestore::dialog
