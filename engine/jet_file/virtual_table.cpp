#include "engine/jet_file/virtual_table.h"

#include <sqlite3.h>

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_file/decode.h"
#include "engine/jet_file/table_cursor.h"

namespace kxrestore::engine::jet_file {
namespace {

constexpr const char* kModule = "kx_jet_file";

struct VirtualTable : sqlite3_vtab {
  TableServer* server = nullptr;
  Table* table = nullptr;
};

struct Cursor : sqlite3_vtab_cursor {
  explicit Cursor(TableServer& server, Table& table) : rows(server, table) {}
  TableCursor rows;
};

VirtualTable& TableOf(sqlite3_vtab* table) {
  return *static_cast<VirtualTable*>(table);
}

// No exception may pass through SQLite: it is stored, and the caller of the statement rethrows it.
template <class Operation>
int Guarded(TableServer& server, Operation operation) noexcept {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    return SQLITE_NOMEM;
  } catch (...) {
    server.failure = std::current_exception();
    return SQLITE_ERROR;
  }
}

std::string Quoted(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

const char* DeclaredType(const Column& column) {
  switch (column.type) {
    case ColumnType::kYesNo:
      return "BOOLEAN";
    case ColumnType::kByte:
    case ColumnType::kInteger:
    case ColumnType::kLong:
    case ColumnType::kBigInteger:
      return "INTEGER";
    case ColumnType::kCurrency:
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kNumeric:
      return "NUMERIC";
    case ColumnType::kBinary:
    case ColumnType::kOle:
      return "BLOB";
    default:
      return "TEXT";
  }
}

std::string Declaration(const TableDefinition& definition) {
  std::string text = "CREATE TABLE x (";
  for (const Column& column : definition.columns) {
    if (&column != &definition.columns.front()) text += ", ";
    text += Quoted(column.name) + " " + DeclaredType(column);
    if (IsRowKey(definition, column)) text += " PRIMARY KEY";
  }
  return text + ")";
}

int Connect(sqlite3* connection, void* context, int count, const char* const* arguments, sqlite3_vtab** made,
            char**) noexcept {
  auto& server = *static_cast<TableServer*>(context);
  return Guarded(server, [&] {
    if (count < 4) return SQLITE_ERROR;
    auto table = std::make_unique<VirtualTable>();
    *static_cast<sqlite3_vtab*>(table.get()) = {};
    table->server = &server;
    table->table = server.file.Tables().at(static_cast<std::size_t>(std::stoul(arguments[3]))).get();
    const int code = sqlite3_declare_vtab(connection, Declaration(table->table->Definition()).c_str());
    if (code != SQLITE_OK) return code;
    sqlite3_vtab_config(connection, SQLITE_VTAB_INNOCUOUS);
    *made = table.release();
    return SQLITE_OK;
  });
}

int Disconnect(sqlite3_vtab* table) noexcept {
  delete &TableOf(table);
  return SQLITE_OK;
}

int BestIndex(sqlite3_vtab* table, sqlite3_index_info* info) noexcept {
  VirtualTable& self = TableOf(table);
  return Guarded(*self.server, [&] { return PlanAccess(self.table->Definition(), *info); });
}

int Open(sqlite3_vtab* table, sqlite3_vtab_cursor** made) noexcept {
  VirtualTable& self = TableOf(table);
  return Guarded(*self.server, [&] {
    *made = new Cursor(*self.server, *self.table);
    return SQLITE_OK;
  });
}

int Close(sqlite3_vtab_cursor* cursor) noexcept {
  delete static_cast<Cursor*>(cursor);
  return SQLITE_OK;
}

TableServer& ServerOf(sqlite3_vtab_cursor* cursor) {
  return *TableOf(cursor->pVtab).server;
}

int Filter(sqlite3_vtab_cursor* cursor, int, const char* plan, int count, sqlite3_value** values) noexcept {
  return Guarded(ServerOf(cursor),
                 [&] { return static_cast<Cursor*>(cursor)->rows.Start(plan, count, values); });
}

int Next(sqlite3_vtab_cursor* cursor) noexcept {
  return Guarded(ServerOf(cursor), [&] { return static_cast<Cursor*>(cursor)->rows.Next(); });
}

int Eof(sqlite3_vtab_cursor* cursor) noexcept {
  return static_cast<Cursor*>(cursor)->rows.AtEnd() ? 1 : 0;
}

int ReadColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int index) noexcept {
  if (sqlite3_vtab_nochange(context) != 0) return SQLITE_OK;
  return Guarded(ServerOf(cursor), [&] {
    static_cast<Cursor*>(cursor)->rows.Read(context, static_cast<std::size_t>(index));
    return SQLITE_OK;
  });
}

int ReadRowNumber(sqlite3_vtab_cursor* cursor, sqlite3_int64* number) noexcept {
  *number = static_cast<Cursor*>(cursor)->rows.Number();
  return SQLITE_OK;
}

// ---- updates

[[noreturn]] void RaiseNeedsEngine(const VirtualTable& self, const std::string& what) {
  Raise(error_number::kCannotCreateObject,
        "ActiveX component can't create object: " + what + " '" + self.table->Definition().name + "' in '" +
            self.server->file.Pages().Path() +
            "' needs the desktop database engine, which is not installed.");
}

[[noreturn]] void RaiseReadOnly(const VirtualTable& self, const std::string& reason) {
  Raise(error_number::kReadOnly, "Cannot update. Database or object is read-only: '" +
                                     self.table->Definition().name + "' in '" +
                                     self.server->file.Pages().Path() + "'. " + reason);
}

int Update(sqlite3_vtab* table, int count, sqlite3_value** values, sqlite3_int64*) noexcept {
  VirtualTable& self = TableOf(table);
  return Guarded(*self.server, [&] {
    if (count == 1) RaiseNeedsEngine(self, "deleting rows of");
    if (sqlite3_value_type(values[0]) == SQLITE_NULL) RaiseNeedsEngine(self, "adding rows to");
    const TableDefinition& definition = self.table->Definition();
    FoundRow found;
    if (!FindByNumber(*self.server, *self.table, sqlite3_value_int64(values[0]), found)) {
      Raise(error_number::kRecordDeleted, "Record is deleted: '" + definition.name + "'.");
    }
    const Column* mark = nullptr;
    bool marked = false;
    for (std::size_t i = 0; i < definition.columns.size(); ++i) {
      sqlite3_value* value = values[i + 2];
      if (sqlite3_value_nochange(value) != 0) continue;
      const Column& column = definition.columns[i];
      if (column.type != ColumnType::kYesNo || !EqualIgnoringCase(column.name, kMarkColumn)) {
        RaiseNeedsEngine(self, "changing the column '" + column.name + "' of");
      }
      if (definition.IsIndexed(column)) {
        RaiseReadOnly(self, "An index holds the column '" + column.name +
                                "', too, and only the desktop database engine keeps it right.");
      }
      mark = &column;
      marked = sqlite3_value_double(value) != 0;
    }
    if (mark != nullptr) self.server->marks.Set(*self.table, found, *mark, marked);
    return SQLITE_OK;
  });
}

int Begin(sqlite3_vtab* table) noexcept {
  VirtualTable& self = TableOf(table);
  return Guarded(*self.server, [&] {
    if (self.server->marks.Begin()) self.server->Forget();
    return SQLITE_OK;
  });
}

int Sync(sqlite3_vtab* table) noexcept {
  VirtualTable& self = TableOf(table);
  return Guarded(*self.server, [&] {
    self.server->marks.Write();
    return SQLITE_OK;
  });
}

int EndTransaction(sqlite3_vtab* table) noexcept {
  VirtualTable& self = TableOf(table);
  Guarded(*self.server, [&] {
    self.server->marks.End();
    return SQLITE_OK;
  });
  return SQLITE_OK;
}

// A failing statement rolls back its own changes.
int Save(sqlite3_vtab* table, int number) noexcept {
  VirtualTable& self = TableOf(table);
  return Guarded(*self.server, [&] {
    self.server->marks.Save(static_cast<std::size_t>(number));
    return SQLITE_OK;
  });
}

int Release(sqlite3_vtab*, int) noexcept {
  return SQLITE_OK;
}

int TakeBack(sqlite3_vtab* table, int number) noexcept {
  VirtualTable& self = TableOf(table);
  return Guarded(*self.server, [&] {
    self.server->marks.TakeBackTo(static_cast<std::size_t>(number));
    return SQLITE_OK;
  });
}

int Rename(sqlite3_vtab*, const char*) noexcept {
  return SQLITE_READONLY;
}

constexpr sqlite3_module MakeModule() {
  sqlite3_module module{};
  module.iVersion = 2;
  module.xCreate = Connect;
  module.xConnect = Connect;
  module.xBestIndex = BestIndex;
  module.xDisconnect = Disconnect;
  module.xDestroy = Disconnect;
  module.xOpen = Open;
  module.xClose = Close;
  module.xFilter = Filter;
  module.xNext = Next;
  module.xEof = Eof;
  module.xColumn = ReadColumn;
  module.xRowid = ReadRowNumber;
  module.xUpdate = Update;
  module.xBegin = Begin;
  module.xSync = Sync;
  module.xCommit = EndTransaction;
  module.xRollback = EndTransaction;
  module.xRename = Rename;
  module.xSavepoint = Save;
  module.xRelease = Release;
  module.xRollbackTo = TakeBack;
  return module;
}

}  // namespace

void TableServer::Forget() {
  ++epoch;
  lookUps.clear();
}

void AttachTables(sqlite3* connection, TableServer& server) {
  static constexpr sqlite3_module kFunctions = MakeModule();
  if (sqlite3_create_module_v2(connection, kModule, &kFunctions, &server, nullptr) != SQLITE_OK) {
    throw std::bad_alloc();
  }
  for (std::size_t i = 0; i < server.file.Tables().size(); ++i) {
    const std::string sql = "CREATE VIRTUAL TABLE " + Quoted(server.file.Tables()[i]->Definition().name) +
                            " USING " + kModule + "(" + std::to_string(i) + ")";
    sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
  }
  server.failure = nullptr;
}

}  // namespace kxrestore::engine::jet_file
