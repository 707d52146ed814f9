#include "dialog/path_nodes.h"

#include <algorithm>

#include "base/phrases.h"
#include "base/text.h"

namespace kxrestore::dialog {

namespace {

// The start of each component of a path.
std::size_t AfterFirstBackslash(std::string_view path) {
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

std::string_view EntryText(std::string_view path) {
  return path.ends_with('\\') ? std::string_view(Say(Phrase::kThisFolder))
                              : path.substr(path.rfind('\\') + 1);
}

controls::Node PathNodes::AddPathNodes(std::string_view path, std::string_view tag) {
  if (path.empty()) return {};
  const std::string_view drive = GetDrive(path);
  const std::string_view folders = path.substr(0, path.rfind('\\') + 1);
  if (m_levels.empty() || drive != m_drive || folders != m_folders) EnterFolder(drive, folders);
  return m_tree.Add(m_levels.back().node, {}, EntryText(path),
                    folders.size() == path.size() ? m_images.folder : m_images.file, tag);
}

void PathNodes::EnterFolder(std::string_view drive, std::string_view folders) {
  if (m_levels.empty() || drive != m_drive) {
    controls::Node node = m_tree.Find(drive);
    if (!node) node = m_tree.Add({}, drive, drive, m_images.drive);
    m_levels.assign({{0, node}});
    m_drive = drive;
  } else {
    const auto common = static_cast<std::size_t>(
        std::mismatch(folders.begin(), folders.end(), m_folders.begin(), m_folders.end()).first -
        folders.begin());
    while (m_levels.size() > 1 && m_levels.back().end > common) m_levels.pop_back();
  }

  std::size_t start = m_levels.size() == 1 ? AfterFirstBackslash(folders) : m_levels.back().end;
  while (start < folders.size()) {
    const std::size_t backslash = folders.find('\\', start);
    if (backslash == std::string_view::npos) break;
    const std::string_view component = folders.substr(start, backslash - start);
    start = backslash + 1;
    if (component.empty()) continue;
    m_levels.push_back({start, m_tree.FindOrAddFolder(m_levels.back().node, component, m_images.folder)});
  }
  m_folders.assign(folders);
}

}  // namespace kxrestore::dialog
