#include "catalog/restore_marks.h"

#include <utility>

#include "catalog/text_routines.h"

namespace kxrestore::catalog {
namespace {

void Mark(engine::Recordset& rows, engine::Field& restore, bool value) {
  rows.Edit();
  restore.Set(value);
  rows.Update();
}

}  // namespace

RestoreMarks::RestoreMarks(engine::Workspace& workspace, const ConnectionSettings& settings,
                           const CurrentRun& current, Report report)
    : m_workspace(workspace), m_settings(settings), m_current(current), m_report(std::move(report)) {}

template <std::predicate Operation, std::invocable Tag>
MarkResult RestoreMarks::Run(Operation operation, Tag tag) {
  try {
    return operation() ? MarkResult::kDone : MarkResult::kNoRow;
  } catch (...) {
    m_report(CurrentError(), tag());
    return MarkResult::kFailed;
  }
}

MarkResult RestoreMarks::UpdateByID(std::int32_t id) {
  return Run(
      [&] {
        const auto database = OpenCatalog(m_workspace, m_settings);
        m_sql.Clear();
        m_sql.Add("UPDATE [Catalog] SET [Catalog].Restore = True WHERE (((Catalog.ID)=")
            .AddNumber(id)
            .Add("));");
        return database->Execute(m_sql, engine::kFailOnError) > 0;
      },
      [&] { return "UpdateByID(" + std::to_string(id) + ")"; });
}

void RestoreMarks::BeginSelect(std::string_view columns, std::int32_t setNameId, std::string_view extension) {
  m_sql.Clear();
  m_sql.Add("SELECT Catalog.SetNameID, Catalog.Extension, Catalog.Filename, ")
      .Add(columns)
      .Add(
          "FROM LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID "
          "WHERE (((Catalog.SetNameID)=")
      .AddNumber(setNameId == 0 ? m_current.setId : setNameId)
      .Add(") AND ((Catalog.Extension)=")
      .AddRawText(extension.empty() ? std::string_view(m_current.extension) : extension);
}

MarkResult RestoreMarks::UpdateSelectionByFile(std::string_view fileName, bool restoreValue,
                                               std::int32_t setNameId, std::string_view extension) {
  return Run(
      [&] {
        BeginSelect(
            "Catalog.File, Catalog.Plugin, Catalog.Restore, "
            "IIf(IsNull([LongPath]),[Catalog.Filename],[LongPath]) AS RestoreFile, LongPaths.LongPath ",
            setNameId, extension);
        m_sql.Add(")); ");
        const auto database = OpenCatalog(m_workspace, m_settings);
        const auto rows =
            database->OpenRecordset(m_sql, engine::RecordsetType::kDynaset, {"File", "Restore"});
        const auto file = rows->Fields("File");
        auto restore = rows->Fields("Restore");
        bool found = false;
        for (; !rows->Eof(); rows->MoveNext()) {
          const engine::ValueView value = file.Value();
          const auto* text = std::get_if<std::string_view>(&value);
          if (text == nullptr || *text != fileName) continue;
          Mark(*rows, restore, restoreValue);
          found = true;
        }
        rows->Close();
        database->Close();
        return found;
      },
      [] { return "UpdateSelection"; });
}

MarkResult RestoreMarks::UpdateSelectionByFileName(std::string_view fileName, bool restoreValue,
                                                   std::int32_t setNameId, std::string_view extension) {
  return Run(
      [&] {
        BeginSelect("Catalog.Restore, LongPaths.LongPath ", setNameId, extension);
        m_sql.Add(") AND ((Catalog.Filename)=").AddText(fileName).Add(")); ");
        const auto database = OpenCatalog(m_workspace, m_settings);
        const auto rows = database->OpenRecordset(m_sql, engine::RecordsetType::kDynaset, {"Restore"});
        if (rows->Eof()) return false;
        auto restore = rows->Fields("Restore");
        Mark(*rows, restore, restoreValue);
        // The mark is written; an error while closing does not change that. The destructor closes silently.
        return true;
      },
      [] { return "UpdateSelection"; });
}

MarkResult RestoreMarks::CancelAll() {
  return ClearAll("CancelAll");
}

MarkResult RestoreMarks::ClearSelections() {
  return ClearAll("ClearSelections");
}

MarkResult RestoreMarks::ClearAll(const char* tag) {
  return Run(
      [&] {
        OpenCatalog(m_workspace, m_settings)
            ->Execute("UPDATE [Catalog] SET [Catalog].Restore = False WHERE (((Catalog.Restore)=True));",
                      engine::kFailOnError);
        m_workspace.Flush();
        return true;
      },
      [&] { return tag; });
}

}  // namespace kxrestore::catalog
