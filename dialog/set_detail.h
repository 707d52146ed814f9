// The tree of one run's files: drives, folders and files, and headings for backups of server plug-ins.
#pragma once

#include <string>
#include <string_view>

#include "dialog/form_context.h"
#include "dialog/path_nodes.h"

namespace kxrestore::dialog {

// Image of a node of the mail server, by its text and the full path of its entry.
int PluginImage(std::string_view text, std::string_view path);

class SetDetail {
 public:
  explicit SetDetail(FormContext& context);

  // Refills the tree from the run of a node of the set tree. Reports its own errors; after a stop or an error
  // the tree contains the files read so far.
  std::function<void()> RunChanged;  // another run's files are in the tree

  void LoadBackupSetDetail(controls::Node run);

 private:
  bool Fill(engine::Recordset& rows, FormContext::Walk& walk);  // false when the user stopped it
  void ShowProgress(std::size_t count);
  controls::Node Heading(controls::Node parent, std::string_view key, std::string_view text, int image);
  void AddPluginEntry(std::string_view plugin, std::string_view path, std::string_view file,
                      std::string_view filename);
  void AddMailServerEntry(std::string_view path, std::string_view file, std::string_view filename);

  FormContext& m_context;
  std::string m_caption;
  std::size_t m_count = 0;  // rows of the current load
};

}  // namespace kxrestore::dialog
