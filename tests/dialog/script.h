// The dialog's tests as scripts, tests/dialog/scripts/*.txt: a line for each thing that the user does, and
// behind "->" all that it changed on the screen and in the catalog.
//
//   == TheNameOfTheCase
//   files 1 003: 1 C:\a.doc, 2 C:\b.doc          set 1, run "003"; the rows' numbers are what "marked" lists
//   choose 1 003; tick b.doc; press Apply
//       -> "2 file(s)." | listed C:\b.doc | "1 file(s) selected" | marked 2
//   at 3 escape; find *.doc -> ...               Esc comes at the third item of the search
//
// A line that begins with a blank continues what changed. Lines that begin with "#" are comments. A case that
// fails prints how it reads now.
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

  // Runs a script. Returns it with what its steps change now, which is `script` itself when all is well.
  std::string Played(const std::string& script);

  // What has changed since the previous step.
  virtual Strings Changed();

  // Takes one step, "COMMAND SUBJECT". A subject that ends in a blank is put in quotation marks.
  void Do(std::string_view step);

  using Command = std::function<void(const std::string& subject)>;
  // Commands that need no dialog; each takes the rest of its line.
  std::set<std::string> asides = {"sql", "answer"};
  using Look = std::function<std::string(FormControls& shown)>;
  std::map<std::string, Command, std::less<>> commands = Commands();
  std::map<std::string, Look, std::less<>> looks = Looks();  // for "show NAME" and "watch NAME"
  Strings watched = {"tab", "tree", "found", "types", "listed", "progress", "marked", "closed"};
  Strings events;                // anything else that happened since the last step
  std::function<void()> onTurn;  // whenever pending messages run

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
