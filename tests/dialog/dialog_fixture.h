// The whole form on a catalog file, without a window. By default there are three sets: set 1 has the runs
// "003" (permanent), "002" and "001", newest first; set 2 has the run "001"; set 3 has none.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "dialog/frm_restore.h"
#include "engine/database.h"
#include "platform/headless/headless_platform.h"
#include "tests/catalog/catalog_file.h"

namespace kxrestore::dialog_test {

using catalog_test::CatalogFile;
using catalog_test::Live;
using controls::AutoSelect;
using dialog::FormControls;
using Strings = std::vector<std::string>;
using Ids = std::set<std::int64_t>;

// Indexes of the form's arrays of buttons.
enum ActionButton { kApply, kClearAll, kExpandAll, kCollapseAll };
enum SearchButton { kApplyFound, kClearFound, kFind, kSelectFound };
enum AutoButton { kApplyTypes, kSelectTypes, kUnselectTypes };
enum RestoreButton { kRestoreNow, kCancel, kRefresh, kUpdate, kClearList };

// The lines in the form of a raw string literal that starts with a line break.
inline std::string Text(const Strings& lines) {
  std::string text = "\n";
  for (const std::string& line : lines) text.append(line).append("\n");
  return text;
}

// The pieces as a paragraph of lines with " | " between pieces; lines after the first are indented.
inline std::string Filled(const Strings& pieces, const std::string& indent = {}) {
  std::string page, line;
  for (const std::string& piece : pieces) {
    if (piece.empty()) continue;
    if (!line.empty() && line.size() + piece.size() > 102)
      page.append(std::exchange(line, indent)).append("\n");
    line.append(line.empty() || line == indent ? "" : " | ").append(piece);
  }
  return page + line + "\n";
}

inline sample::FileRow Row(std::int64_t id, std::int64_t setId, std::string extension, std::string path) {
  sample::FileRow row = Live(id, std::move(path));
  row.setId = setId;
  row.extension = std::move(extension);
  return row;
}

inline sample::FileRow PluginRow(std::int64_t id, std::string plugin, std::string path, std::string file) {
  sample::FileRow row = Row(id, 1, "003", std::move(path));
  row.plugin = std::move(plugin);
  row.file = std::move(file);
  return row;
}

inline sample::FileRow Dead(sample::FileRow row) {
  row.status = 3;
  return row;
}

inline std::vector<sample::RunRow> Runs() {
  return {{1, "2026-01-01 00:00:00", "001", false, 6},
          {1, "2026-02-01 14:25:30", "002", {}, 6},
          {1, "2026-03-01 08:00:00", "003", true, 6},
          {2, "2026-02-15 10:30:00", "001", false, 6}};
}

// The first node with this text or tag among `node`, its later siblings and their descendants.
inline controls::Node NodeFrom(controls::Node node, std::string_view text) {
  for (; node; node = node.Next()) {
    if (node.Text() == text || node.Tag() == text) return node;
    if (const controls::Node below = NodeFrom(node.Child(), text)) return below;
  }
  return {};
}

// `first`, its later siblings and their descendants, indented by level, each with its tag.
inline Strings Outline(controls::Node first, const std::string& indent = {}) {
  Strings lines;
  for (; first; first = first.Next()) {
    const std::string tag(first.Tag());
    lines.push_back(indent + std::string(first.Text()) + (tag.empty() ? tag : " {" + tag + "}"));
    const Strings below = Outline(first.Child(), indent + " ");
    lines.insert(lines.end(), below.begin(), below.end());
  }
  return lines;
}

inline Strings Names(const AutoSelect& list) {  // sorted
  Strings names;
  for (std::size_t i = 1; i <= list.Count(); ++i) names.emplace_back(list.At(i).name);
  std::sort(names.begin(), names.end());
  return names;
}

// A connection of another program to a catalog file, which can lock the file.
class OtherProgram {
 public:
  explicit OtherProgram(const std::string& path) {
    sqlite3* raw = nullptr;
    sqlite3_open(path.c_str(), &raw);
    m_database.reset(raw);
  }
  void Execute(const char* sql) {
    EXPECT_EQ(sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql;
  }

 private:
  std::unique_ptr<sqlite3, int (*)(sqlite3*)> m_database{nullptr, sqlite3_close};
};

// The context that the panels share, without a form. It gives access to state that no control shows.
struct BareContext {
  BareContext(const platform::Platform& platformOfTest, engine::Workspace& workspace)
      : services(platformOfTest), context(parameters, controls, services, workspace) {}
  dialog::Parameters parameters;
  FormControls controls;
  platform::Platform services;
  dialog::FormContext context;
};

class DialogTest : public testing::Test {
 protected:
  explicit DialogTest(std::unique_ptr<engine::Workspace> databases = engine::MakeDefaultWorkspace())
      : workspace(std::move(databases)) {
    platform.regional.now = {2026, 11, 16, 2, 25, 30};
  }
  void TearDown() override { ExpectReports({}); }

  // Makes the catalog and points the form at it.
  void MakeCatalog(const std::vector<sample::FileRow>& rows, const std::vector<sample::RunRow>& runs = Runs(),
                   const std::vector<sample::LongPathRow>& longPaths = {}) {
    catalog = std::make_unique<CatalogFile>(rows, runs, longPaths);
    form.parameters.DBName = catalog->Path();
  }

  void PutSetting(std::uint32_t root, const char* name, const std::string& text) {
    platform.registry.Put(root, "Software\\Brellick Labs, Inc.\\Tarvane\\Settings", name, text);
  }

  FormControls& ui() { return form.Controls(); }

  // The first node of a tree with this text or tag; a test fails if there is none.
  static controls::Node NodeOf(controls::TreeView& tree, std::string_view text) {
    const controls::Node node = NodeFrom(tree.FirstRoot(), text);
    EXPECT_TRUE(node) << "no node \"" << text << "\"";
    return node;
  }
  controls::Node Detail(std::string_view text) { return NodeOf(ui().tvwDetails, text); }
  Strings Listed() { return Names(ui().asRestoreList); }

  // Actions of the user.
  void ChooseNode(std::string_view text) { ui().tvwSets.UserClickNode(NodeOf(ui().tvwSets, text)); }
  void ChooseRun(std::string_view tag = "1 003") { ChooseNode(tag); }  // the newest of set 1
  void Tick(std::string_view text, bool ticked = true) { ui().tvwDetails.UserCheck(Detail(text), ticked); }
  void TickAll() {
    for (auto root = ui().tvwDetails.FirstRoot(); root; root = root.Next()) {
      ui().tvwDetails.UserCheck(root, true);
    }
  }
  static void Tick(AutoSelect& list, std::string_view name, bool ticked = true) {
    for (std::size_t i = 1; i <= list.Count(); ++i) {
      if (list.At(i).name == name) return list.UserTick(i, ticked);
    }
    ADD_FAILURE() << "not listed: " << name;
  }
  void ShowTab(int number) { ui().tbsOptions.UserSelect(number); }
  void Find(const std::string& mask) {
    ui().cboMask.UserType(mask);
    ui().cmdSearch[kFind].UserClick();
  }
  void Apply() { ui().cmdAction[kApply].UserClick(); }
  void Click(RestoreButton button) { ui().cmdRestore[button].UserClick(); }
  void Escape() { ui().form.UserKey(controls::Key::kEscape); }

  // Expects the message boxes since the last call, as "title: text", to begin with these texts.
  void ExpectReports(const Strings& starts) {
    Strings texts;
    for (const auto& message : desktop.messages) texts.push_back(message.title + ": " + message.text);
    desktop.messages.clear();
    for (std::size_t i = 0; i < std::max(starts.size(), texts.size()); ++i) {
      const std::string text = i < texts.size() ? texts[i] : "no message";
      EXPECT_TRUE(i < starts.size() && text.starts_with(starts[i])) << text;
    }
  }

  // Runs `body` once, among the pending messages at the `item`th item of the next walk.
  void DuringWalk(std::size_t item, std::function<void()> body) {
    desktop.walkItems = 0;
    desktop.onDoEvents = [this, item, body = std::move(body), done = false]() mutable {
      if (desktop.engineWorks || desktop.walkItems != item || std::exchange(done, true)) return;
      body();
    };
  }
  void EscapeAt(std::size_t item) {
    DuringWalk(item, [this] { Escape(); });
  }

  platform::HeadlessPlatform platform;
  platform::HeadlessDesktop& desktop = platform.desktop;
  std::unique_ptr<engine::Workspace> workspace;
  std::unique_ptr<CatalogFile> catalog;
  dialog::frmRestore form{platform.Get(), *workspace};
};

}  // namespace kxrestore::dialog_test
