// The menu commands on one file: list all its versions, and show it in its backup.
#pragma once

#include <cstdint>
#include <string>

#include "dialog/form_context.h"
#include "dialog/restore_list.h"
#include "dialog/search.h"
#include "dialog/set_tree.h"

namespace kxrestore::dialog {

class FileHistory {
 public:
  // The file of an entry or of a node.
  struct File {
    std::int64_t setId = 0;
    std::string extension;
    std::string storedName;  // see catalog::StoredName
    bool aggregate = false;
    std::string shownName;
  };

  // Fills the menus of the file lists, and adds to that of the detail tree.
  FileHistory(FormContext& context, SetTree& setTree, RestoreList& restoreList);

  // Searches all sets for exactly this file; the search list shows its versions, newest first.
  void ShowAllVersions(const File& file);
  // Chooses the file's run, loading it unless the tree shows it already, and selects the file there. Asks
  // before pending ticks in the tree are lost.
  void ShowInBackup(const File& file);

 private:
  void AddFileItems(controls::Menu& menu, File file, bool inItsBackup);
  static File FileOf(const controls::AutoSelect::Entry& entry);
  File FileOf(controls::Node node) const;
  void ListVersions(const File& file);
  controls::Node RunNode(const File& file) const;
  bool ChooseRun(controls::Node run);
  controls::Node FileNode(const File& file) const;

  FormContext& m_context;
  SetTree& m_setTree;
  RestoreList& m_restoreList;
};

}  // namespace kxrestore::dialog
