// The dialog's tests as scripts, tests/dialog/scripts/*.txt: a line for each thing that the user does, and
// behind "->" all that it changed on the screen and in the catalog.
//
//   == TheNameOfTheCase
//   files 1 003: 1 C:\a.doc, 2 C:\b.doc          set 1, run "003"; the rows' numbers are what "marked" lists
//   choose 1 003; tick b.doc; press Apply
//       -> "2 file(s)." | listed C:\b.doc | "1 file(s) selected" | marked 2
//   at 3 escape; find *.doc -> ...               Esc comes at the third item of the search
//
// A line that begins with a blank goes on with what changed. A comment begins with "#". A case that fails
// prints itself as it is now.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/headless/headless_menu.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {

class ScriptTest : public DialogTest {
 protected:
  using DialogTest::DialogTest;

  // The script with what its steps change now; the same as `script` when all is well.
  std::string Played(const std::string& script);

  // What is different from what it was after the step before.
  virtual Strings Changed();

  // Does one step, "COMMAND SUBJECT". The subject stands in quotation marks where it ends in a blank.
  void Do(std::string_view step);

  using Command = std::function<void(const std::string& subject)>;
  // Commands that need no dialog; each takes the rest of its line.
  std::set<std::string> asides = {"sql", "answer"};
  using Look = std::function<std::string(FormControls& shown)>;
  std::map<std::string, Command, std::less<>> commands = Commands();
  std::map<std::string, Look, std::less<>> looks = Looks();  // for "show NAME" and "watch NAME"
  Strings watched = {"tab", "tree", "found", "types", "listed", "progress", "marked", "closed"};
  Strings events;                // what else happened since the last step
  std::function<void()> onTurn;  // in every turn of the pending messages

 private:
  std::map<std::string, Command, std::less<>> Commands();
  std::map<std::string, Look, std::less<>> Looks();
  void AddRows(const std::string& subject, const std::function<void(sample::FileRow&, std::string&)>& finish);
  void Open();
  Strings LookAround();
  AutoSelect* ListOf(std::string_view kind);
  void SetTicks(const std::string& what, bool ticked);
  void ChooseFromMenu(const std::string& what);

  std::vector<sample::FileRow> m_rows;  // of a catalog that is not made yet
  std::vector<sample::RunRow> m_runs = Runs();
  FormControls* m_shown = nullptr;  // also when it is closed
  Strings m_before;
  bool m_due = false, m_midway = false;  // the steps of "at"
};

// Registers the cases of scripts/NAME.txt, each as a test of the suite NAME. Always true.
bool RegisterCases(const std::string& name, ScriptTest* (*make)(const std::string& script));

}  // namespace kxrestore::dialog_test
