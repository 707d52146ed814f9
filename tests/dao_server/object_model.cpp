#include "tests/dao_server/object_model.h"

#include <algorithm>

#include "base/error.h"
#include "engine/dao/values.h"
#include "engine/error_numbers.h"

namespace kxrestore::dao_server {
namespace {

std::size_t Position(const VARIANT& position, std::size_t count) {
  if (position.lVal < 0 || position.lVal >= static_cast<LONG>(count)) {
    throw Error(engine::error_number::kItemNotFound, "Item not found in this collection.", "Engine");
  }
  return static_cast<std::size_t>(position.lVal);
}

DispatchObject* MakeCollection(Journal& journal, std::string name, std::function<std::size_t()> count,
                               VARTYPE key, std::function<ComPtr<DispatchObject>(const VARIANT&)> makeItem) {
  auto* collection = new DispatchObject(journal, std::move(name));
  collection->Property(
      L"Count", [count](Arguments, VARIANT& result) { Answer(result, static_cast<std::int64_t>(count())); });
  collection->Method(L"Item", {key}, [makeItem](Arguments arguments, VARIANT& result) {
    Answer(result, makeItem(arguments[0]).Get());
  });
  return collection;
}

// A transaction is the workspace's; a database joins it with its first write.
struct Transaction {
  bool begun = false;
  std::vector<engine::Database*> databases;

  void Join(engine::Database& database) {
    if (!begun || std::find(databases.begin(), databases.end(), &database) != databases.end()) return;
    database.BeginTrans();
    databases.push_back(&database);
  }
  void End(void (engine::Database::*how)()) {
    if (!begun) throw Error(engine::error_number::kNoTransaction, "No transaction.", "Engine");
    for (engine::Database* database : databases) (database->*how)();
    databases.clear();
    begun = false;
  }
};

class DaoRecordset final : public DispatchObject {
 public:
  DaoRecordset(Journal& journal, std::unique_ptr<engine::Recordset> rows)
      : DispatchObject(journal, "Recordset"), m_rows(std::move(rows)) {
    Property(L"EOF", [this](Arguments, VARIANT& result) { Answer(result, m_rows->Eof()); });
    Property(L"Fields", [this](Arguments, VARIANT& result) {
      const std::size_t count = m_rows->FieldCount();
      const ComPtr<DaoRecordset> self(this);
      const auto makeItem = [self, count](const VARIANT& which) {
        return ComPtr<DispatchObject>(MakeField(self, Position(which, count)));
      };
      Answer(result, MakeCollection(
                         m_journal, "Fields", [count] { return count; }, VT_I4, makeItem));
    });
    Method(L"MoveNext", {}, [this](Arguments, VARIANT&) { m_rows->MoveNext(); });
    Method(L"Edit", {}, [this](Arguments, VARIANT&) { m_rows->Edit(); });
    Method(L"Update", {}, [this](Arguments, VARIANT&) { m_rows->Update(); });
    Method(L"Close", {}, [this](Arguments, VARIANT&) { m_rows->Close(); });
    Method(L"GetRows", {VT_I4},
           [this](Arguments arguments, VARIANT& result) { GetRows(arguments[0].lVal, result); });
  }

 private:
  static DispatchObject* MakeField(const ComPtr<DaoRecordset>& recordset, std::size_t index) {
    auto* field = new DispatchObject(recordset->m_journal, "Field");
    field->Property(L"Name", engine::Value(std::string(recordset->m_rows->FieldName(index))));
    field->Property(L"Value", [recordset, index](Arguments, VARIANT& result) {
      const engine::ValueView value = recordset->m_rows->FieldValue(index);
      if (value == engine::ValueView(kUnreadable)) throw Error(3197, "The data has been changed.", "Engine");
      Answer(result, value);
    });
    field->WritableProperty(L"Value", [recordset, index](Arguments arguments, VARIANT&) {
      std::string text;
      recordset->m_rows->SetFieldValue(index, engine::OwnedOf(engine::dao::ToValue(arguments[0], text)));
    });
    return field;
  }

  bool CanRead() {
    for (std::size_t i = 0; i < m_rows->FieldCount(); ++i) {
      if (m_rows->FieldValue(i) == engine::ValueView(kUnreadable)) return false;
    }
    return true;
  }

  void GetRows(LONG count, VARIANT& result) {
    std::vector<VARIANT> cells;
    const std::size_t fields = m_rows->FieldCount();
    ULONG rows = 0;
    for (; static_cast<LONG>(rows) < count && !m_rows->Eof() && CanRead(); m_rows->MoveNext(), ++rows) {
      for (std::size_t i = 0; i < fields; ++i) Answer(cells.emplace_back(), m_rows->FieldValue(i));
    }
    SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(fields), 0}, {rows, 0}};
    result.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
    result.vt = VT_ARRAY | VT_VARIANT;
    for (ULONG row = 0; row < rows; ++row) {
      for (std::size_t i = 0; i < fields; ++i) {
        LONG at[] = {static_cast<LONG>(i), static_cast<LONG>(row)};
        VARIANT& cell = cells[row * fields + i];
        SafeArrayPutElement(result.parray, at, &cell);
        VariantClear(&cell);
      }
    }
  }

  std::unique_ptr<engine::Recordset> m_rows;
};

DispatchObject* MakeQueryDef(Journal& journal, std::string sql) {
  auto* query = new DispatchObject(journal, "QueryDef");
  query->Property(L"SQL", engine::Value(std::move(sql)));
  return query;
}

class DaoDatabase final : public DispatchObject {
 public:
  DaoDatabase(Journal& journal, Transaction& transaction, std::unique_ptr<engine::Database> database)
      : DispatchObject(journal, "Database"), m_transaction(transaction), m_database(std::move(database)) {
    Method(L"OpenRecordset", {VT_BSTR, VT_I4}, [this](Arguments arguments, VARIANT& result) {
      const auto type = static_cast<engine::RecordsetType>(arguments[1].lVal);
      Answer(result, new DaoRecordset(m_journal, m_database->OpenRecordset(TextOf(arguments[0]), type)));
    });
    Method(L"Execute", {VT_BSTR, VT_I4}, [this](Arguments arguments, VARIANT&) {
      m_transaction.Join(*m_database);
      m_changed = m_database->Execute(TextOf(arguments[0]), arguments[1].lVal);
    });
    Property(L"RecordsAffected", [this](Arguments, VARIANT& result) { Answer(result, m_changed); });
    Method(L"CreateQueryDef", {VT_BSTR, VT_BSTR}, [this](Arguments arguments, VARIANT& result) {
      m_transaction.Join(*m_database);
      m_database->CreateQueryDef(TextOf(arguments[0]), TextOf(arguments[1]));
      Answer(result, MakeQueryDef(m_journal, TextOf(arguments[1])));
    });
    Property(L"QueryDefs", [this](Arguments, VARIANT& result) { Answer(result, QueryDefs()); });
    Method(L"Close", {}, [this](Arguments, VARIANT&) { m_database->Close(); });
  }

 private:
  DispatchObject* QueryDefs() {
    const ComPtr<DaoDatabase> self(this);
    auto* collection = MakeCollection(
        m_journal, "QueryDefs", [] { return 0; }, VT_BSTR,
        [self](const VARIANT& name) {
          return ComPtr<DispatchObject>(
              MakeQueryDef(self->m_journal, self->m_database->QueryText(TextOf(name))));
        });
    collection->Method(L"Delete", {VT_BSTR}, [self](Arguments arguments, VARIANT&) {
      self->m_transaction.Join(*self->m_database);
      self->m_database->DeleteQueryDef(TextOf(arguments[0]));
    });
    return collection;
  }

  Transaction& m_transaction;
  std::unique_ptr<engine::Database> m_database;
  std::int64_t m_changed = 0;
};

class DaoWorkspace final : public DispatchObject {
 public:
  DaoWorkspace(Journal& journal, engine::Workspace& workspace) : DispatchObject(journal, "Workspace") {
    Method(L"OpenDatabase", {VT_BSTR, VT_BOOL, VT_BOOL, VT_BSTR},
           [this, &workspace](Arguments arguments, VARIANT& result) {
             engine::OpenRequest request;
             request.name = TextOf(arguments[0]);
             request.name.replace(request.name.rfind('.'), std::string::npos, ".db");
             request.exclusive = arguments[1].boolVal != VARIANT_FALSE;
             request.readOnly = arguments[2].boolVal != VARIANT_FALSE;
             Answer(result, new DaoDatabase(m_journal, m_transaction, workspace.OpenDatabase(request)));
           });
    Method(L"BeginTrans", {}, [this](Arguments, VARIANT&) { m_transaction.begun = true; });
    Method(L"CommitTrans", {VT_I4},
           [this](Arguments, VARIANT&) { m_transaction.End(&engine::Database::CommitTrans); });
    Method(L"Rollback", {}, [this](Arguments, VARIANT&) { m_transaction.End(&engine::Database::Rollback); });
  }

 private:
  Transaction m_transaction;
};

DispatchObject* MakeErrors(Journal& journal) {
  const auto count = [&journal] { return journal.errors.size(); };
  return MakeCollection(journal, "Errors", count, VT_I4, [&journal](const VARIANT& which) {
    const auto& [number, description, source] = journal.errors[Position(which, journal.errors.size())];
    auto* error = new DispatchObject(journal, "Error");
    error->Property(L"Number", engine::Value(std::int64_t{number}));
    error->Property(L"Description", engine::Value(description));
    error->Property(L"Source", engine::Value(source));
    return ComPtr<DispatchObject>(error);
  });
}

class DbEngine final : public DispatchObject {
 public:
  DbEngine(Journal& journal, engine::Workspace& workspace)
      : DispatchObject(journal, "DBEngine"), m_workspace(new DaoWorkspace(journal, workspace)) {
    Property(L"Workspaces", [this](Arguments, VARIANT& result) {
      const ComPtr<DispatchObject> only = m_workspace;
      const auto makeItem = [only](const VARIANT& which) {
        Position(which, 1);
        return only;
      };
      Answer(result, MakeCollection(
                         m_journal, "Workspaces", [] { return 1; }, VT_I4, makeItem));
    });
    Property(L"Errors", [this](Arguments, VARIANT& result) { Answer(result, MakeErrors(m_journal)); });
    Method(L"Idle", {VT_I4}, [](Arguments, VARIANT&) {});
  }

 private:
  ComPtr<DispatchObject> m_workspace;
};

}  // namespace

ComPtr<IDispatch> MakeDbEngine(Journal& journal, engine::Workspace& workspace) {
  return ComPtr<IDispatch>(new DbEngine(journal, workspace));
}

}  // namespace kxrestore::dao_server
