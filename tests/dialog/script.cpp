#include "tests/dialog/script.h"

#include <sstream>

#include "base/shown_text.h"
#include "controls/list_rows.h"

namespace kxrestore::dialog_test {
namespace {

std::string Joined(const Strings& pieces, const char* between = ", ") {
  std::string all;
  for (const std::string& piece : pieces) all.append(all.empty() ? "" : between).append(piece);
  return all;
}

Strings Split(std::string_view text, std::string_view between) {
  Strings pieces;
  for (std::size_t end = 0; end != text.npos;
       text.remove_prefix(std::min(end + between.size(), text.size()))) {
    end = text.find(between);
    pieces.emplace_back(text.substr(0, end));
    if (end == text.npos) break;
  }
  return pieces;
}

// The text before the first `between`, and the text after it.
std::pair<std::string, std::string> Halves(const std::string& text, std::string_view between = " ") {
  const std::size_t end = text.find(between);
  if (end == std::string::npos) return {text, ""};
  return {text.substr(0, end), text.substr(end + between.size())};
}

std::string Quoted(std::string text) {
  std::erase(text, '\r');
  for (auto at = text.find('\n'); at != std::string::npos; at = text.find('\n')) text.replace(at, 1, "\\n");
  return "\"" + text + "\"";
}

std::string OrNothing(const std::string& seen) {
  return seen.ends_with(' ') ? seen + "nothing" : seen;
}

std::string Footer(const controls::FooterText& footer) {
  return Quoted(footer.pending + "|" + footer.sums + "|" + footer.selected);
}

// Concatenates the results of `tell` for all entries of a list.
template <class Tell>
std::string Each(const AutoSelect& list, Tell tell) {
  std::string told;
  for (std::size_t number = 1; number <= list.Count(); ++number) told += tell(list.At(number), number);
  return told;
}

// The results of `tell` for all nodes of a tree, in the order of their creation.
template <class Tell>
std::string EachNode(const controls::TreeView& tree, Tell tell) {
  Strings told;
  for (std::uint32_t index = 1; index <= tree.Count(); ++index) told.push_back(tell(tree.Item(index)));
  std::erase(told, "");
  return Joined(told);
}

// The nodes of a tree, a line each.
std::string Branches(const controls::TreeView& tree) {
  std::string branches;
  for (const std::string& line : Outline(tree.FirstRoot(), "      ")) branches += "\n" + Shown(line);
  return branches;
}

// Presses the visible button or box with this caption, which is written without "&".
bool Press(controls::Container& container, const std::string& caption) {
  const auto click = [&](auto* button) {
    if (button == nullptr || !button->IsShown()) return false;
    std::string text = button->Caption();
    std::erase(text, '&');
    if (text.ends_with(' ')) text.pop_back();
    if (text == caption) button->UserClick();
    return text == caption;
  };
  for (controls::Control* const child : container.Children()) {
    auto* const inner = dynamic_cast<controls::Container*>(child);
    if (click(dynamic_cast<controls::CommandButton*>(child)) ||
        click(dynamic_cast<controls::OptionButton*>(child)) ||
        click(dynamic_cast<controls::CheckBox*>(child)) || (inner != nullptr && Press(*inner, caption))) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::string ScriptTest::Played(const std::string& script) {
  std::istringstream lines(script);
  std::string played;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(' ')) continue;
    if (line.empty() || line[0] == '#') {
      played.append(line).append("\n");
      continue;
    }
    const std::string steps = Halves(line, " ->").first;
    if (asides.contains(Halves(steps).first)) {
      Do(steps);
    } else {
      for (const std::string& step : Split(steps, "; ")) Do(step);
    }
    Strings pieces = Changed();
    if (!pieces.empty()) pieces[0].insert(0, "-> ");
    pieces.insert(pieces.begin(), steps);
    std::string page = Filled(pieces, "    ");
    if (const auto arrow = page.find(" | -> "); arrow != std::string::npos) page.erase(arrow + 1, 2);
    for (auto at = page.find(" \n"); at != page.npos; at = page.find(" \n")) page.insert(at + 1, "$");
    played += page;
    EXPECT_FALSE(form.parameters.StopRequested) << "after " << steps;
  }
  return played;
}

void ScriptTest::Do(std::string_view step) {
  auto [command, subject] = Halves(std::string(step));
  if (subject.starts_with('"')) subject = subject.substr(1, subject.size() - 2);
  const auto found = commands.find(command);
  if (found == commands.end()) {
    ADD_FAILURE() << "no command: " << step;
    return;
  }
  const bool isRow = command == "files" || command == "dead" || command == "plugin" || command == "run";
  if (!isRow && !catalog && form.parameters.DBName.empty()) MakeCatalog(m_rows, m_runs);
  const bool isUser =
      !isRow && !asides.contains(command) && command != "at" && (command != "show" || m_shown == nullptr);
  if (isUser && !m_midway) Open();
  found->second(subject);
  if (!isUser || m_midway) return;
  EXPECT_FALSE(m_due) << step << " ended before its walk reached the item of \"at\"";
  m_due = false;
  desktop.onDoEvents = onTurn;
}

std::map<std::string, ScriptTest::Command, std::less<>> ScriptTest::Commands() {
  const auto nothing = [](sample::FileRow&, std::string&) {};
  return {
      // "SET RUN: ID PATH, ID PATH ...", "NAME: ID PATH = FILE, ...", "SET RUN DATE STATUS"
      {"files", [=, this](const std::string& rows) { AddRows(rows, nothing); }},
      {"dead",
       [this](const std::string& rows) {
         AddRows(rows, [](sample::FileRow& row, std::string&) { row = Dead(row); });
       }},
      {"plugin",
       [this](const std::string& rows) {
         AddRows("1 003" + rows.substr(rows.find(':')), [&](sample::FileRow& row, std::string& path) {
           row = PluginRow(row.id, Halves(rows, ":").first, Halves(path, " = ").first,
                           Halves(path, " = ").second);
         });
       }},
      {"run",
       [this](const std::string& run) {
         const Strings words = Split(run, " ");
         m_runs.push_back(
             {std::stoi(words[0]), words[2] + " 00:00:00", words[1], false, std::stoi(words[3])});
       }},
      {"sql", [this](const std::string& sql) { catalog->Execute(sql); }},
      {"hide", [this](const std::string&) { catalog->HideTable(); }},
      {"unhide", [this](const std::string&) { catalog->ShowTable(); }},
      {"open", [](const std::string&) {}},
      {"choose", [this](const std::string& node) { ChooseNode(node); }},
      {"tick", [this](const std::string& what) { SetTicks(what, true); }},
      {"untick", [this](const std::string& what) { SetTicks(what, false); }},
      {"tab", [this](const std::string& number) { ShowTab(std::stoi(number)); }},
      {"find", [this](const std::string& mask) { Find(mask); }},
      {"press",
       [this](const std::string& caption) {
         EXPECT_TRUE(Press(ui().form, caption)) << "no button " << caption;
       }},
      {"escape", [this](const std::string&) { Escape(); }},
      {"F5", [this](const std::string&) { ui().form.UserKey(controls::Key::kF5); }},
      {"close", [this](const std::string&) { ui().form.UserClose(); }},
      {"answer",
       [this](const std::string& answer) {
         desktop.answers.push_back(answer == "yes" ? platform::Answer::kYes : platform::Answer::kNo);
       }},
      {"day",
       [this](const std::string& day) {
         const Strings numbers = Split(day, "-");
         desktop.days = {{std::stoi(numbers[0]), std::stoi(numbers[1]), std::stoi(numbers[2])}};
       }},
      {"shown", [this](const std::string&) { ui().form.UserShown(); }},
      {"badge",
       [this](const std::string& node) {
         events.push_back(ui().tvwDetails.Badge(Detail(node)) ? "badge" : "no badge");
       }},
      {"select",
       [this](const std::string& number) { ui().asRestoreList.UserSelect(0, std::stoul(number) - 1, true); }},
      {"filter",
       [this](const std::string& listAndWords) {
         ListOf(Halves(listAndWords).first)->UserFilter({.words = Halves(listAndWords).second});
       }},
      {"sort", [this](const std::string& list) { ListOf(list)->SortBy(controls::ListColumn::kSize, false); }},
      {"menu", [this](const std::string& what) { ChooseFromMenu(what); }},
      {"unfold",
       [this](const std::string& node) { ui().tvwSets.UserExpand(NodeOf(ui().tvwSets, node), true); }},
      {"expand", [this](const std::string& node) { ui().tvwDetails.UserExpand(Detail(node), true); }},
      {"tip",
       [this](const std::string& node) {
         events.push_back("tip " + Quoted(ui().tvwDetails.UserTip(Detail(node))));
       }},
      // "at ITEM STEP & STEP": takes these steps during the next one, at that item of its walk
      {"at",
       [this](const std::string& itemAndSteps) {
         m_due = true;
         DuringWalk(std::stoul(itemAndSteps), [this, steps = Halves(itemAndSteps).second] {
           m_due = false;
           m_midway = true;
           for (const std::string& step : Split(steps, " & ")) Do(step);
           m_midway = false;
           EXPECT_TRUE(desktop.messages.empty()) << "a message box during a walk";
         });
       }},
      {"show", [this](const std::string& look) { events.push_back(OrNothing(looks.at(look)(*m_shown))); }},
      {"forget",
       [this](const std::string& look) {
         m_before.erase(m_before.begin() +
                        (std::find(watched.begin(), watched.end(), look) - watched.begin()));
         std::erase(watched, look);
       }},
      {"watch", [this](const std::string& look) {
         watched.push_back(look);
         m_before.push_back(looks.at(look)(*m_shown));
       }}};
}

std::map<std::string, ScriptTest::Look, std::less<>> ScriptTest::Looks() {
  return {
      {"set", [](FormControls& shown) { return Quoted(shown.lblSetName.Caption()); }},
      {"tab", [](FormControls& shown) { return "tab " + std::to_string(shown.tbsOptions.SelectedIndex()); }},
      {"tree",
       [](FormControls& shown) {
         return Quoted(shown.lblTreeCount.Caption()) + (shown.lblTreeCount.Visible() ? "" : " hidden");
       }},
      {"found", [](FormControls& shown) { return "found " + Joined(Names(shown.asSearch)); }},
      {"hits", [](FormControls& shown) { return Quoted(shown.lblSearchCount.Caption()); }},
      {"types", [](FormControls& shown) { return "types " + Joined(Names(shown.asFiles)); }},
      {"listed", [](FormControls& shown) { return "listed " + Joined(Names(shown.asRestoreList)); }},
      {"selected",
       [](FormControls& shown) {
         const bool on = shown.cmdRestore[kRestoreNow].Enabled();
         return Quoted(shown.lblCounts[0].Caption()) + (on ? ", Restore Now" : "");
       }},
      {"progress",
       [](FormControls& shown) {
         return shown.picProgress.IsShown() ? Quoted(shown.lblProgress.Caption()) : "";
       }},
      {"marked",
       [this](FormControls&) -> std::string {
         Strings ids;
         try {
           for (const std::int64_t id : catalog->Marked()) ids.push_back(std::to_string(id));
         } catch (const std::runtime_error&) {
           return "marked ?";  // the table is gone
         }
         return "marked " + Joined(ids, " ");
       }},
      {"closed", [](FormControls& shown) { return shown.form.IsOpen() ? "" : "closed"; }},
      // For "show" and "watch" only.
      {"bytes", [](FormControls& shown) { return Quoted(shown.lblCounts[1].Caption()); }},
      {"mask",
       [](FormControls& shown) {
         return "mask " + Quoted(shown.cboMask.Text()) + " of " + Quoted(Joined(shown.cboMask.Items(), "|"));
       }},
      {"entries",
       [](FormControls& shown) {
         const AutoSelect& list =
             shown.tbsOptions.SelectedIndex() == 2 ? shown.asSearch : shown.asRestoreList;
         return "entries" + Each(list, [&](const AutoSelect::Entry& entry, std::size_t number) {
                  return "\n      " + std::string(entry.name) + (list.TickedAt(number) ? "+ " : " ") +
                         std::string(entry.setName) + " " + std::string(entry.extension) + " " +
                         (entry.sizeKnown ? std::to_string(entry.size) : "?") + " " +
                         platform::DateAndTime(platform::FixedRegional(), platform::TimeOfNumber(entry.time));
                });
       }},
      {"versions",
       [](FormControls& shown) {
         const controls::ListRows& rows = shown.asSearch.Rows();
         const char* const order = rows.Filtered() || rows.Sorted() ? ", filtered or sorted" : "";
         return "versions" +
                (order + Each(shown.asSearch, [&](const AutoSelect::Entry& entry, std::size_t number) {
                   constexpr const char* kVersions[] = {"", " old", " new"};
                   return "\n      " + std::string(entry.name) + " " + std::to_string(entry.setId) + " " +
                          std::string(entry.extension) +
                          kVersions[static_cast<int>(shown.asSearch.VersionAt(number))];
                 }));
       }},
      {"counts",
       [](FormControls& shown) {
         Strings counts;
         for (std::size_t number = 1; number <= shown.asFiles.Count(); ++number) {
           const auto entry = shown.asFiles.At(number);
           counts.push_back(std::string(entry.name) +
                            (entry.sizeKnown ? " " + std::to_string(entry.size) : " ?"));
         }
         std::sort(counts.begin(), counts.end());
         return "counts " + Joined(counts);
       }},
      {"kinds",
       [](FormControls& shown) {
         return "kinds" + Each(shown.asFiles, [](const auto& entry, std::size_t) {
                  return "\n      " + std::string(entry.name) + ": " + std::string(entry.extension);
                });
       }},
      {"ticked", [](FormControls& shown) { return "ticked " + Quoted(shown.asFiles.TickedTypes()); }},
      {"files", [](FormControls& shown) { return "files" + Branches(shown.tvwDetails); }},
      {"sets", [](FormControls& shown) { return "sets" + Branches(shown.tvwSets); }},
      {"images",
       [](FormControls& shown) {
         return "images " + EachNode(shown.tvwDetails, [](const controls::Node& node) {
                  return std::string(node.Text()) + " " + std::to_string(node.Image());
                });
       }},
      {"at",
       [](FormControls& shown) {
         return "at " + std::string(shown.tvwSets.SelectedItem().Tag()) + " / " +
                (shown.tvwDetails.SelectedItem() ? std::string(shown.tvwDetails.SelectedItem().Tag()) : "");
       }},
      {"ticks",
       [](FormControls& shown) {
         return "ticks " + EachNode(shown.tvwDetails, [](const controls::Node& node) {
                  if (!node.Checked()) return std::string(node.Mixed() ? "mixed, but not ticked" : "");
                  return std::string(node.Text()) + (node.Mixed() ? "~" : "+");
                });
       }},
      {"expanded",
       [](FormControls& shown) {
         return "open " + EachNode(shown.tvwDetails, [](const controls::Node& node) {
                  return std::string(node.Expanded() ? node.Text() : "");
                });
       }},
      {"clipboard", [this](FormControls&) { return "clipboard " + Quoted(desktop.clipboard); }},
      {"question", [this](FormControls&) { return "asked " + Quoted(desktop.dayAsked); }},
      {"below tree",
       [](FormControls& shown) { return "below tree " + Footer(shown.tvwDetails.DescribeFooter()); }},
      {"below hits",
       [](FormControls& shown) { return "below hits " + Footer(shown.asSearch.DescribeFooter()); }},
      {"below types",
       [](FormControls& shown) { return "below types " + Footer(shown.asFiles.DescribeFooter()); }},
      {"below list",
       [](FormControls& shown) { return "below list " + Footer(shown.asRestoreList.DescribeFooter()); }},
      {"tree hint", [](FormControls& shown) { return Quoted(shown.tvwDetails.EmptyText()); }},
      {"hits hint", [](FormControls& shown) { return Quoted(shown.asSearch.EmptyText()); }},
      {"list hint", [](FormControls& shown) { return Quoted(shown.asRestoreList.EmptyText()); }}};
}

void ScriptTest::AddRows(const std::string& subject,
                         const std::function<void(sample::FileRow&, std::string&)>& finish) {
  const auto [run, rows] = Halves(subject, ": ");
  for (const std::string& idAndPath : Split(rows, ", ")) {
    auto [id, path] = Halves(idAndPath);
    m_rows.push_back(Row(std::stoll(id), std::stoll(run), Halves(run).second, path));
    finish(m_rows.back(), path);
  }
}

// Loads a dialog if none is open. What it shows then does not count as changed.
void ScriptTest::Open() {
  if (m_shown != nullptr && m_shown->form.IsOpen()) return;
  m_shown = &ui();
  m_before = LookAround();
}

Strings ScriptTest::LookAround() {
  Strings seen;
  for (const std::string& look : watched) {
    if (m_shown != nullptr) seen.push_back(looks.at(look)(*m_shown));
  }
  return seen;
}

Strings ScriptTest::Changed() {
  Strings changed = std::exchange(events, {});
  for (const auto& message : std::exchange(desktop.messages, {})) {
    // An error is recorded by its number.
    const bool isError = message.text.starts_with('(');
    changed.push_back("told " + message.title + (message.title.empty() ? "" : ": ") +
                      (isError ? message.text.substr(0, message.text.find(')') + 1) : message.text));
  }
  const Strings now = LookAround();
  for (std::size_t i = 0; i < now.size(); ++i) {
    if (!now[i].empty() && (i >= m_before.size() || now[i] != m_before[i])) {
      changed.push_back(OrNothing(now[i]));
    }
  }
  m_before = now;
  return changed;
}

// The list with this name in scripts; null for a node of the detail tree.
AutoSelect* ScriptTest::ListOf(std::string_view kind) {
  return kind == "listed" ? &ui().asRestoreList
         : kind == "hit"  ? &ui().asSearch
         : kind == "type" ? &ui().asFiles
                          : nullptr;
}

// `what`: "all" or a node of the detail tree, "hit" for all entries of a list, "hit NAME" for the first of
// that name.
void ScriptTest::SetTicks(const std::string& what, bool ticked) {
  const auto [kind, name] = Halves(what);
  AutoSelect* const list = ListOf(kind);
  if (list == nullptr) {
    what == "all" ? TickAll() : Tick(what, ticked);
  } else if (name.empty()) {
    for (std::size_t i = 1; i <= list->Count(); ++i) list->UserTick(i, ticked);
  } else {
    Tick(*list, name, ticked);
  }
}

// `what`: "NODE: ITEM" for the detail tree, "set NODE: ITEM", "hit NAME: ITEM" for a list. Without ITEM the
// menu's texts are recorded.
void ScriptTest::ChooseFromMenu(const std::string& what) {
  const std::size_t colon = std::min(what.rfind(": "), what.size());
  const std::string subject = what.substr(0, colon), item = what.substr(std::min(colon + 2, what.size()));
  const auto [kind, name] = Halves(subject);
  const auto choose = [&, &wanted = item](platform::HeadlessMenu menu) {
    if (wanted.empty()) {
      events.push_back("menu " + Quoted(Joined(menu.Texts(), "|")));
    } else {
      EXPECT_TRUE(menu.Choose(wanted)) << what;
    }
  };
  if (AutoSelect* const list = ListOf(kind)) {
    std::size_t number = 1;
    while (number <= list->Count() && list->At(number).name != name) ++number;
    choose(platform::HeadlessMenu(*list, number <= list->Count() ? number : 0));
  } else if (kind == "set") {
    choose(platform::HeadlessMenu(ui().tvwSets, NodeOf(ui().tvwSets, name).Index()));
  } else {
    choose(platform::HeadlessMenu(ui().tvwDetails, Detail(subject).Index()));
  }
}

}  // namespace kxrestore::dialog_test
