#include "host/catalog_copier/catalog_copy.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>

#include "base/error.h"
#include "engine/error_numbers.h"
#include "host/catalog_maker/sqlite_writer.h"

namespace kxrestore::host {
namespace {

using engine::Database;
using engine::RecordsetType;
using engine::ValueView;

enum class Kind { kNumber, kText, kDate, kFlag };

struct ColumnToCopy {
  const char* name;
  Kind kind;
};

struct TableToCopy {
  const char* name;
  const char* key;  // order in which rows are compared; null: the order of their texts
  std::vector<ColumnToCopy> columns;
};

const std::vector<TableToCopy>& Tables() {
  using enum Kind;
  static const std::vector<TableToCopy> tables = {
      {"SetNames", "ID", {{"ID", kNumber}, {"Name", kText}}},
      {"BackupAudit",
       nullptr,
       {{"SetNameID", kNumber},
        {"DateStamp", kDate},
        {"Extension", kText},
        {"Permanent", kFlag},
        {"Status", kNumber}}},
      {"LongPaths", "PathID", {{"PathID", kNumber}, {"LongPath", kText}}},
      {"Catalog",
       "ID",
       {{"ID", kNumber},
        {"DateStamp", kDate},
        {"SetNameID", kNumber},
        {"Extension", kText},
        {"Filename", kText},
        {"File", kText},
        {"LongPathID", kNumber},
        {"StoreName", kText},
        {"StoreMethod", kNumber},
        {"Plugin", kText},
        {"Restore", kFlag},
        {"OrigSize", kNumber},
        {"Status", kNumber},
        {"Attributes", kNumber},
        {"SubFolder", kText},
        {"EncryptMethod", kNumber},
        {"OrigName", kText}}}};
  return tables;
}

std::string ColumnList(const TableToCopy& table) {
  std::string list;
  for (const ColumnToCopy& column : table.columns) {
    list += (list.empty() ? "" : ", ") + std::string("[") + column.name + "]";
  }
  return list;
}

std::string Select(const TableToCopy& table) {
  std::string sql = "SELECT " + ColumnList(table) + " FROM [" + table.name + "]";
  if (table.key != nullptr) sql += std::string(" ORDER BY [") + table.key + "]";
  return sql;
}

std::int64_t CountRows(Database& database, const TableToCopy& table) {
  return database
      .OpenRecordset(std::string("SELECT Count(*) AS n FROM [") + table.name + "]", RecordsetType::kSnapshot)
      ->Fields("n")
      .Integer();
}

// A value as a literal of the SQL dialect.
void AppendLiteral(std::string& sql, Kind kind, const ValueView& value) {
  if (engine::IsNull(value)) {
    sql += "Null";
    return;
  }
  if (kind == Kind::kFlag) {
    sql += engine::ToBoolean(value) ? "True" : "False";
    return;
  }
  if (kind == Kind::kDate) {
    const auto date = engine::ToDateTime(value);
    if (!date) {
      engine::Raise(kxrestore::error_number::kTypeMismatch,
                    "Type mismatch: '" + engine::ToText(value) + "' is no date.");
    }
    sql += "#" + engine::ToText(*date) + "#";
    return;
  }
  const std::string text = engine::ToText(value);
  if (kind == Kind::kNumber && !std::holds_alternative<std::string_view>(value)) {
    sql += text;
    return;
  }
  sql += '\'';
  for (const char c : text) {
    if (c == '\'') sql += '\'';
    sql += c;
  }
  sql += '\'';
}

// A value in the form in which both databases must have it.
std::string Comparable(Kind kind, const ValueView& value) {
  if (engine::IsNull(value)) return "NULL";
  if (kind == Kind::kFlag) return engine::ToBoolean(value) ? "1" : "0";
  if (kind == Kind::kDate) {
    if (const auto date = engine::ToDateTime(value)) return engine::ToText(*date);
  }
  return "=" + engine::ToText(value);
}

class Rows {
 public:
  Rows(Database& database, const TableToCopy& table)
      : m_table(table), m_rows(database.OpenRecordset(Select(table), RecordsetType::kSnapshot)) {}

  bool AtEnd() const { return m_rows->Eof(); }
  void Next() { m_rows->MoveNext(); }
  ValueView Value(std::size_t column) const { return m_rows->FieldValue(column); }
  std::string Comparable() const {
    std::string text;
    for (std::size_t i = 0; i < m_table.columns.size(); ++i) {
      text += host::Comparable(m_table.columns[i].kind, Value(i)) + '\0';
    }
    return text;
  }

 private:
  const TableToCopy& m_table;
  std::unique_ptr<engine::Recordset> m_rows;
};

constexpr std::int64_t kRowsBetweenTurns = 1000;

std::int64_t CopyTable(Database& from, Database& to, const TableToCopy& table, const CopyProgress& progress) {
  const std::int64_t all = CountRows(from, table);
  const std::string start =
      std::string("INSERT INTO [") + table.name + "] (" + ColumnList(table) + ") VALUES (";
  std::int64_t done = 0;
  std::string sql;
  for (Rows rows(from, table); !rows.AtEnd(); rows.Next()) {
    if (done++ % kRowsBetweenTurns == 0) progress("copying", table.name, done - 1, all);
    sql = start;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      if (i > 0) sql += ", ";
      AppendLiteral(sql, table.columns[i].kind, rows.Value(i));
    }
    sql += ")";
    to.Execute(sql, engine::kFailOnError);
  }
  progress("copying", table.name, done, all);
  return done;
}

[[noreturn]] void RaiseDifferent(const TableToCopy& table, std::int64_t row) {
  engine::Raise(engine::error_number::kDamaged, std::string("The copy is not the same: table '") +
                                                    table.name + "', row " + std::to_string(row) + ".");
}

void CompareTable(Database& from, Database& to, const TableToCopy& table, std::int64_t all,
                  const CopyProgress& progress) {
  if (CountRows(to, table) != all) RaiseDifferent(table, all);
  Rows left(from, table), right(to, table);
  std::int64_t done = 0;
  if (table.key == nullptr) {
    std::vector<std::string> ofLeft, ofRight;
    for (; !left.AtEnd(); left.Next()) ofLeft.push_back(left.Comparable());
    for (; !right.AtEnd(); right.Next()) ofRight.push_back(right.Comparable());
    std::sort(ofLeft.begin(), ofLeft.end());
    std::sort(ofRight.begin(), ofRight.end());
    if (ofLeft != ofRight) RaiseDifferent(table, 0);
    done = all;
  }
  for (; !left.AtEnd() && !right.AtEnd(); left.Next(), right.Next()) {
    if (done++ % kRowsBetweenTurns == 0) progress("comparing", table.name, done - 1, all);
    if (left.Comparable() != right.Comparable()) RaiseDifferent(table, done);
  }
  if (!left.AtEnd() || !right.AtEnd() || done != all) RaiseDifferent(table, done);
  progress("comparing", table.name, done, all);
}

// The definition of the client's saved query, where it exists.
void CopyFullCatalog(Database& from, Database& to) {
  constexpr const char* kName = "FullCatalog";
  std::string text;
  try {
    text = from.QueryText(kName);
  } catch (const Error& error) {
    if (error.Number() == engine::error_number::kItemNotFound) return;
    throw;
  }
  try {
    to.DeleteQueryDef(kName);
  } catch (const Error& error) {
    if (error.Number() != engine::error_number::kItemNotFound) throw;
  }
  to.CreateQueryDef(kName, text);
}

}  // namespace

std::vector<CopiedTable> CopyCatalog(engine::Workspace& workspace, const std::string& source,
                                     const std::string& target, const CopyProgress& progress) {
  const bool server = target.starts_with("ODBC;");
  const auto from = workspace.OpenDatabase({.name = source, .connect = {}});
  const std::filesystem::path path(std::u8string(target.begin(), target.end()));
  if (!server) {
    if (std::filesystem::exists(path)) {
      engine::Raise(engine::error_number::kObjectExists, "Object '" + target + "' already exists.");
    }
    sample::WriteCatalogFile(target, [](sample::CatalogSink&) {});
  }
  try {
    const auto to = workspace.OpenDatabase(server ? engine::OpenRequest{.connect = target}
                                                  : engine::OpenRequest{.name = target, .connect = {}});
    for (const TableToCopy& table : Tables()) {
      if (CountRows(*to, table) != 0) {
        engine::Raise(engine::error_number::kObjectExists,
                      std::string("The table '") + table.name + "' of the target has rows already.");
      }
    }
    std::vector<CopiedTable> copied;
    to->BeginTrans();
    for (const TableToCopy& table : Tables()) {
      copied.push_back({table.name, CopyTable(*from, *to, table, progress)});
    }
    for (std::size_t i = 0; i < copied.size(); ++i) {
      CompareTable(*from, *to, Tables()[i], copied[i].rows, progress);
    }
    CopyFullCatalog(*from, *to);
    to->CommitTrans();
    to->Close();
    return copied;
  } catch (...) {
    std::error_code ignored;
    if (!server) std::filesystem::remove(path, ignored);
    throw;
  }
}

}  // namespace kxrestore::host
