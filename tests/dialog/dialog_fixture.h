// The whole form on a catalog file, without a window. Three sets; set 1 has the runs "003" (permanent), "002"
// and "001", newest first, set 2 the run "001".
#pragma once

#include <gtest/gtest.h>

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
using dialog::FormControls;
using Strings = std::vector<std::string>;
using Ids = std::set<std::int64_t>;

inline sample::FileRow Row(std::int64_t id, int setId, std::string extension, std::string path) {
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

inline std::vector<sample::RunRow> Runs() {
  return {{1, "2026-01-01 00:00:00", "001", false, 6},
          {1, "2026-02-01 14:25:30", "002", {}, 6},
          {1, "2026-03-01 08:00:00", "003", true, 6},
          {2, "2026-02-15 10:30:00", "001", false, 6}};
}

class DialogTest : public testing::Test {
 protected:
  DialogTest() { platform.regional.now = {2026, 11, 16, 2, 25, 30}; }

  // Makes the catalog and points the form at it.
  void MakeCatalog(const std::vector<sample::FileRow>& rows, const std::vector<sample::RunRow>& runs = Runs(),
                   const std::vector<sample::LongPathRow>& longPaths = {}) {
    catalog = std::make_unique<CatalogFile>(rows, runs, longPaths);
    form.DBName(catalog->Path());
  }

  // Points the form at a catalog on the test server.
  void UseServer(const std::string& database, const std::string& server, const std::string& user,
                 const std::string& password) {
    form.DBType(1);
    form.DBDatabase(database);
    form.DBServer(server);
    form.DBUser(user);
    form.DBPass(password);
  }

  FormControls& ui() { return form.Controls(); }

  // The node of a tree that has this text, the first in the order of adding.
  static controls::Node NodeOf(controls::TreeView& tree, std::string_view text) {
    for (int index = 1; index <= static_cast<int>(tree.Count()); ++index) {
      if (tree.Item(index).Text() == text) return tree.Item(index);
    }
    ADD_FAILURE() << "no node \"" << text << "\"";
    return {};
  }
  // Chooses the newest run of set 1, or another run by its tag.
  void ChooseRun(std::string_view tag = "1 003") {
    controls::TreeView& tree = ui().tvwSets;
    for (int index = 1; index <= static_cast<int>(tree.Count()); ++index) {
      if (tree.Item(index).Tag() == tag) return tree.UserClickNode(tree.Item(index));
    }
    ADD_FAILURE() << "no run \"" << tag << "\"";
  }
  void ChooseSet(std::string_view name) { ui().tvwSets.UserClickNode(NodeOf(ui().tvwSets, name)); }
  void Tick(std::string_view text) { ui().tvwDetails.UserCheck(NodeOf(ui().tvwDetails, text), true); }
  void TickAll() {
    for (auto root = ui().tvwDetails.FirstRoot(); root; root = root.Next())
      ui().tvwDetails.UserCheck(root, true);
  }
  void Apply() { ui().cmdAction[0].UserClick(); }
  void Refresh() { ui().cmdRestore[2].UserClick(); }

  Strings Listed() {
    Strings names;
    for (std::size_t i = 1; i <= ui().asRestoreList.Count(); ++i)
      names.emplace_back(ui().asRestoreList.At(i).name);
    return names;
  }
  std::string Selected() { return ui().lblCounts[0].Caption(); }

  // The message boxes so far, "title: text", and then none.
  Strings TakeMessages() {
    Strings texts;
    for (const auto& message : desktop.messages) texts.push_back(message.title + ": " + message.text);
    desktop.messages.clear();
    return texts;
  }

  // Runs `body` in the pending messages of the `item`th item of the next walk, once.
  void DuringWalk(std::size_t item, std::function<void()> body) {
    desktop.doEventsCount = 0;
    desktop.onDoEvents = [this, item, body = std::move(body)] {
      if (desktop.doEventsCount == item) body();
    };
  }

  platform::HeadlessPlatform platform;
  platform::HeadlessDesktop& desktop = platform.desktop;
  std::unique_ptr<engine::Workspace> workspace = engine::MakeDefaultWorkspace();
  std::unique_ptr<CatalogFile> catalog;
  dialog::frmRestore form{platform.Get(), *workspace};
};

}  // namespace kxrestore::dialog_test
