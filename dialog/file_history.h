// From one file to where it stands in the backups: all its versions as search hits, or its place in the tree
// of its backup. The menus of the lists and of the detail tree lead there.
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
  // A file as an entry or a node stands for it.
  struct File {
    std::int64_t setId = 0;
    std::string extension;
    std::string storedName;  // see catalog::StoredName
    bool aggregate = false;
    std::string shownName;
  };

  // Fills the menus of the file lists, and adds to that of the detail tree.
  FileHistory(FormContext& context, SetTree& setTree, RestoreList& restoreList);

  // Searches all sets for exactly this file and lists its versions as hits, the newest first.
  void ShowAllVersions(const File& file);
  // Chooses the file's run and selects the file in the detail tree. The run is not loaded anew when the tree
  // shows it; ticks that wait to be applied are not lost without a question.
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
