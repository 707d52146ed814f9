// Backups on CD: the archive branch of the set tree, read from a separate archive database, and the panel
// that adds a disc's backups to that database.
#pragma once

#include <cstddef>
#include <string>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

class CdArchive {
 public:
  // Handles the events of the panel.
  explicit CdArchive(FormContext& context);

  // Adds the root "Archive Sets" after the backup sets, on machines with a CD-ROM drive or the archive
  // database. Does not read the database yet.
  void AddBranch();
  // "Archive Sets" was opened or selected: fills it the first time.
  void OpenBranch(controls::Node node);

  // Fills the branch with volumes, years, months and set names. Reports its own errors; nodes added before an
  // error stay.
  void LoadUpArchives(controls::Node node);

  void DriveCD_Change();
  bool IsArchiveDisc(const std::string& drive);

  // Adds those of the disc's headers that the archive database lacks, all or none, and refreshes the branch.
  // Reports its own errors.
  void cmdCD_Click();

 private:
  void ReadBranch(controls::Node branch);
  controls::Node NodeUnder(controls::Node parent, const std::string& key, const std::string& text);
  bool Append(const std::string& disc, std::size_t& added);
  void ShowBranchAnew();
  void ShowMessage(const std::string& message);

  FormContext& m_context;
  controls::Node m_branch;   // "Archive Sets"
  controls::Node m_current;  // the last node added; nothing until the branch is loaded
};

}  // namespace kxrestore::dialog
