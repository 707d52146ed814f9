// Backups on CD: the archive branch of the set tree, read from an archive database of its own, and the panel
// that adds a disc's backups to that database.
#pragma once

#include <cstddef>
#include <string>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

class CdArchive {
 public:
  // Takes over the events of the panel.
  explicit CdArchive(FormContext& context);

  // Adds the root "Archive Sets" behind the backup sets, on machines that have a CD-ROM drive or the archive
  // database. Nothing of the database is read yet.
  void AddBranch();
  // "Archive Sets" was opened or chosen: fills it the first time.
  void OpenBranch(controls::Node node);

  // Fills the branch with volumes, years, months and set names. Reports its own errors; nodes added before
  // one stay.
  void LoadUpArchives(controls::Node node);

  void DriveCD_Change();
  bool IsArchiveDisc(const std::string& drive);

  // Adds the disc's headers that the archive database does not hold yet, all of them or none, and shows the
  // branch anew. Reports its own errors.
  void cmdCD_Click();

 private:
  void ReadBranch(controls::Node branch);
  controls::Node NodeUnder(controls::Node parent, const std::string& key, const std::string& text);
  bool Append(const std::string& disc, std::size_t& added);
  void ShowBranchAnew();
  void ShowMessage(std::string message);

  FormContext& m_context;
  controls::Node m_branch;   // "Archive Sets"
  controls::Node m_current;  // the node added last; nothing until the branch is loaded
};

}  // namespace kxrestore::dialog
