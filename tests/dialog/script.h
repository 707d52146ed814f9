// Runs the scripts in tests/dialog/scripts/*.txt. A line of a script has steps that the user takes and, after
// "->", everything that they changed on the screen and in the catalog:
//
//   == TheNameOfTheCase
//   files 1 003: 1 C:\a.doc, 2 C:\b.doc          set 1, run "003"; "marked" lists the numbers of the rows
//   choose 1 003; tick b.doc; press Apply
//       -> "2 file(s)." | listed C:\b.doc | "1 file(s) selected" | marked 2
//   at 3 escape; find *.doc -> ...               Esc is pressed at the third item of the search
//
// A line that begins with a blank continues the list of changes. A line that begins with "#" is a comment.
// When a case fails, it prints the script with the actual changes.
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
  explicit ScriptTest(std::string script = {},
                      std::unique_ptr<engine::Workspace> databases = engine::MakeDefaultWorkspace())
      : DialogTest(std::move(databases)), m_script(std::move(script)) {}
  void TestBody() override { EXPECT_EQ(Played(m_script), m_script); }

  // Runs a script and returns it with the actual changes after each step.
  std::string Played(const std::string& script);

  // The changes since the previous step.
  virtual Strings Changed();

  // Takes one step, "COMMAND SUBJECT". A subject that ends in a blank is put in quotation marks.
  void Do(std::string_view step);

  using Command = std::function<void(const std::string& subject)>;
  // Commands that need no open dialog. Each takes the whole line as its subject.
  std::set<std::string> asides = {"sql", "answer"};
  using Look = std::function<std::string(FormControls& shown)>;
  std::map<std::string, Command, std::less<>> commands = Commands();
  std::map<std::string, Look, std::less<>> looks = Looks();  // for "show NAME" and "watch NAME"
  Strings watched = {"tab", "tree", "found", "types", "listed", "progress", "marked", "closed"};
  Strings events;                // other events since the last step
  std::function<void()> onTurn;  // called whenever pending messages run

 private:
  std::map<std::string, Command, std::less<>> Commands();
  std::map<std::string, Look, std::less<>> Looks();
  void AddRows(const std::string& subject, const std::function<void(sample::FileRow&, std::string&)>& finish);
  void Open();
  Strings LookAround();
  AutoSelect* ListOf(std::string_view kind);
  void SetTicks(const std::string& what, bool ticked);
  void ChooseFromMenu(const std::string& what);

  std::string m_script;
  std::vector<sample::FileRow> m_rows;  // for the catalog, until it is created
  std::vector<sample::RunRow> m_runs = Runs();
  FormControls* m_shown = nullptr;  // the last form, open or closed
  Strings m_before;
  bool m_due = false, m_midway = false;  // steps of "at" are waiting, or being taken
};

// The cases of scripts/NAME.txt: the title and the script of each.
std::vector<std::pair<std::string, std::string>> CasesOf(const std::string& name);

// Registers the cases of scripts/NAME.txt, each as a test of class Case in the suite NAME. Always true.
template <class Case>
bool RegisterCases(const std::string& name) {
  for (const auto& [title, script] : CasesOf(name)) {
    testing::RegisterTest(name.c_str(), title.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [script = script]() -> testing::Test* { return new Case(script); });
  }
  return true;
}

}  // namespace kxrestore::dialog_test
