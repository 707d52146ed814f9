// The restore form, loaded over a small catalog of a test's own rows, without a desktop.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "dialog/frm_restore.h"
#include "engine/database.h"
#include "platform/headless/headless_platform.h"
#include "tests/catalog/catalog_file.h"

namespace kxrestore::dialog_test {

using catalog_test::CatalogFile;
using catalog_test::Live;
using sample::FileRow;
using Ids = std::set<std::int64_t>;
using Texts = std::vector<std::string>;

// A completed run of set 1 to 3 on that day of March 2026.
inline sample::RunRow CompletedRun(int setId, const std::string& extension, int day) {
  return {.setId = setId,
          .dateStamp = "2026-03-" + std::string(day < 10 ? "0" : "") + std::to_string(day) + " 10:00:00",
          .extension = extension,
          .permanent = false,
          .status = 6};
}

class CatalogForm : public ::testing::Test {
 protected:
  void Load(const std::vector<FileRow>& rows, const std::vector<sample::RunRow>& runs = {}) {
    file = std::make_unique<CatalogFile>(rows, runs);
    form.DBName(file->Path());
    form.Load();
  }

  dialog::FormControls& Ui() { return form.Controls(); }
  void ShowTab(int index) { Ui().tbsOptions.UserSelect(index); }
  void ChooseNode(const std::string& key) { Ui().tvwSets.UserClickNode(Ui().tvwSets.Item(key)); }

  static Texts Names(const controls::AutoSelect& list) {
    Texts names;
    for (std::size_t number = 1; number <= list.Count(); ++number) names.emplace_back(list.At(number).name);
    return names;
  }
  static Texts Sorted(Texts texts) {
    std::sort(texts.begin(), texts.end());
    return texts;
  }
  // Titles and texts of the boxes shown since the last call.
  Texts Messages() {
    Texts messages;
    for (const auto& message : platform.desktop.messages)
      messages.push_back(message.title + "|" + message.text);
    platform.desktop.messages.clear();
    return messages;
  }

  platform::HeadlessPlatform platform;
  std::unique_ptr<CatalogFile> file;
  std::unique_ptr<engine::Workspace> workspace = engine::MakeDefaultWorkspace();
  dialog::frmRestore form{platform.Get(), *workspace};
};

}  // namespace kxrestore::dialog_test
