// Creates the drive and folder nodes of paths, each once. The rows of a run are mostly ordered by folder, so
// the nodes of the previous path are cached and only the differing part is looked up.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controls/tree_view.h"

namespace kxrestore::dialog {

// The first three characters of a path.
std::string_view GetDrive(std::string_view path);

// The part after the last backslash, ignoring trailing backslashes; the whole path when it has no component.
std::string_view LastComponent(std::string_view path);

// The text of a path's own node: the part after its last backslash. A path that ends in a backslash is a
// folder that is itself a catalog entry; its node is inside the folder and is called "(this folder)".
std::string_view EntryText(std::string_view path);

class PathNodes {
 public:
  struct Images {
    int drive = 0, folder = 0, file = 0;
  };
  PathNodes(controls::TreeView& tree, Images images) : m_tree(tree), m_images(images) {}

  // Adds the node of a path, with the text of EntryText, and the missing drive and folder nodes above it. A
  // folder's key is the drive text and every component down to it, each followed by a backslash; empty
  // components are skipped. An empty path adds nothing.
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
