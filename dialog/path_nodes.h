// Builds the drive and folder nodes of paths, each once. Rows of a run mostly come folder by folder, so the
// nodes of the previous path are remembered and only what differs from it is looked up.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controls/tree_view.h"

namespace kxrestore::dialog {

// The first three characters of a path.
std::string_view GetDrive(std::string_view path);

// The part after the last backslash, trailing backslashes left out; the whole path when it has no component.
std::string_view LastComponent(std::string_view path);

// The text of a path's own node: the part after its last backslash. A path that ends in a backslash is a
// folder backed up as an entry of its own; its node stands inside the folder and is called "(this folder)".
std::string_view EntryText(std::string_view path);

class PathNodes {
 public:
  struct Images {
    int drive = 0, folder = 0, file = 0;
  };
  PathNodes(controls::TreeView& tree, Images images) : m_tree(tree), m_images(images) {}

  // Adds the node of a path, with the text that EntryText gives, and before it the drive and folder nodes
  // that are not there yet. A folder's key is the drive text and every component down to it, each followed by
  // a backslash; components without a name are left out. An empty path adds nothing.
  controls::Node AddPathNodes(std::string_view path, std::string_view tag);

 private:
  // A component of the previous path: where it ends in the path, and its node.
  struct Level {
    std::size_t end = 0;
    controls::Node node;
  };
  void EnterFolder(std::string_view drive, std::string_view folders);

  controls::TreeView& m_tree;
  Images m_images;
  std::string m_drive;          // of the previous path
  std::string m_folders;        // of the previous path, with the last backslash
  std::vector<Level> m_levels;  // the drive first
};

}  // namespace kxrestore::dialog
