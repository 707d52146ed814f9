#include "tests/engine/jet_test_database.h"

#include <thread>
#include <utility>

#include "tests/engine/desktop_samples.h"

namespace kxrestore::engine::testing {

JetTestDatabase::JetTestDatabase(std::string sample, const bench::DesktopFile::Style& style)
    : m_sample(std::move(sample)), m_style(style) {}

void JetTestDatabase::Run(std::string_view sql) {
  TakeMarks();
  m_twin->Run(sql);
  // A yes/no column of such a file holds nothing but the two.
  m_twin->Run(
      "UPDATE Catalog SET Restore = coalesce(Restore, 0) <> 0; "
      "UPDATE BackupAudit SET Permanent = coalesce(Permanent, 0) <> 0");
  Write();
}

std::string JetTestDatabase::Ask(std::string_view sql) {
  TakeMarks();
  return m_twin->Ask(sql);
}

void JetTestDatabase::TakeMarks() {
  if (ReadBytes(m_path).empty()) return;
  const auto database = MakeReaderWorkspace()->OpenDatabase({.name = m_path, .readOnly = true});
  std::string marked;
  for (const std::string& id : Rows(*database, "SELECT ID FROM Catalog WHERE Restore = True")) {
    marked += (marked.empty() ? "" : ", ") + id;
  }
  m_twin->Run("UPDATE Catalog SET Restore = ID IN (" + marked + ")");
}

void JetTestDatabase::Write() {
  const std::string made = m_folder.File("made");
  std::filesystem::remove(made);
  bench::DesktopFile file(DesktopSample(m_sample), made);
  file.SetStyle(m_style);
  const auto workspace = MakeReaderWorkspace();
  const auto twin = workspace->OpenDatabase(m_twin->Request());
  for (const char* table : {"SetNames", "LongPaths", "BackupAudit", "Catalog"}) {
    file.Empty(table);
    // The runs are numbered in such files only.
    const bool numbered = std::string_view(table) == "BackupAudit";
    std::string columns;
    for (const jet_file::Column& column : file.Definition(table).columns) {
      if (numbered && column.name == "ID") continue;
      columns += (columns.empty() ? "[" : ", [") + column.name + "]";
    }
    const auto rows =
        twin->OpenRecordset("SELECT " + columns + " FROM [" + table + "]", RecordsetType::kSnapshot);
    for (std::int64_t number = 1; !rows->Eof(); rows->MoveNext(), ++number) {
      std::vector<Value> row;
      if (numbered) row.emplace_back(number);
      for (std::size_t i = 0; i < rows->FieldCount(); ++i) row.push_back(OwnedOf(rows->FieldValue(i)));
      file.Add(table, row);
    }
  }
  file.Finish();
  // Readers tell a change by the file's time, whose steps are some milliseconds.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  WriteBytes(m_path, ReadBytes(made));
}

}  // namespace kxrestore::engine::testing
