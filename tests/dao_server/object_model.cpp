#include "tests/dao_server/object_model.h"

#include <algorithm>

#include "base/error.h"
#include "engine/error_numbers.h"

namespace kxrestore::dao_server {
namespace {

class Collection final : public DispatchObject {
 public:
  using MakeItem = std::function<ComPtr<DispatchObject>(const VARIANT&)>;
  Collection(Journal& journal, std::string name, std::size_t count, VARTYPE key, MakeItem makeItem)
      : DispatchObject(journal, std::move(name)) {
    Property(L"Count",
             [count](Arguments, VARIANT& result) { Answer(result, static_cast<std::int64_t>(count)); });
    Method(L"Item", {key}, [makeItem](Arguments arguments, VARIANT& result) {
      Answer(result, makeItem(arguments[0]).Get());
    });
  }
  using DispatchObject::Method;
};

std::size_t Position(const VARIANT& position, std::size_t count) {
  if (position.lVal < 0 || position.lVal >= static_cast<LONG>(count)) {
    throw Error(engine::error_number::kItemNotFound, "Item not found in this collection.", "Engine");
  }
  return static_cast<std::size_t>(position.lVal);
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

class DaoRecordset;

class DaoField final : public DispatchObject {
 public:
  DaoField(Journal& journal, ComPtr<DaoRecordset> recordset, std::size_t index);
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
        return ComPtr<DispatchObject>(new DaoField(self->m_journal, self, Position(which, count)));
      };
      Answer(result, new Collection(m_journal, "Fields", count, VT_I4, makeItem));
    });
    Method(L"MoveNext", {}, [this](Arguments, VARIANT&) { m_rows->MoveNext(); });
    Method(L"Edit", {}, [this](Arguments, VARIANT&) { m_rows->Edit(); });
    Method(L"Update", {}, [this](Arguments, VARIANT&) { m_rows->Update(); });
    Method(L"Close", {}, [this](Arguments, VARIANT&) { m_rows->Close(); });
    Method(L"GetRows", {VT_I4},
           [this](Arguments arguments, VARIANT& result) { GetRows(arguments[0].lVal, result); });
  }

  engine::Recordset& Rows() { return *m_rows; }

  engine::ValueView Read(std::size_t field) {
    const engine::ValueView value = m_rows->FieldValue(field);
    if (value == engine::ValueView(kUnreadable)) throw Error(3197, "The data has been changed.", "Engine");
    return value;
  }

 private:
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

DaoField::DaoField(Journal& journal, ComPtr<DaoRecordset> recordset, std::size_t index)
    : DispatchObject(journal, "Field") {
  Property(L"Name", [recordset, index](Arguments, VARIANT& result) {
    Answer(result, recordset->Rows().FieldName(index));
  });
  Property(L"Value",
           [recordset, index](Arguments, VARIANT& result) { Answer(result, recordset->Read(index)); });
  WritableProperty(L"Value", [recordset, index](Arguments arguments, VARIANT&) {
    recordset->Rows().SetFieldValue(index, ValueOf(arguments[0]));
  });
}

class DaoQueryDef final : public DispatchObject {
 public:
  DaoQueryDef(Journal& journal, std::string sql) : DispatchObject(journal, "QueryDef") {
    Property(L"SQL", [sql](Arguments, VARIANT& result) { Answer(result, std::string_view(sql)); });
  }
};

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
      Answer(result, new DaoQueryDef(m_journal, TextOf(arguments[1])));
    });
    Property(L"QueryDefs", [this](Arguments, VARIANT& result) { Answer(result, QueryDefs()); });
    Method(L"Close", {}, [this](Arguments, VARIANT&) { m_database->Close(); });
  }

 private:
  DispatchObject* QueryDefs() {
    const ComPtr<DaoDatabase> self(this);
    auto* collection = new Collection(m_journal, "QueryDefs", 0, VT_BSTR, [self](const VARIANT& name) {
      return ComPtr<DispatchObject>(
          new DaoQueryDef(self->m_journal, self->m_database->QueryText(TextOf(name))));
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

class DaoError final : public DispatchObject {
 public:
  DaoError(Journal& journal, const Journal::Entry& entry) : DispatchObject(journal, "Error") {
    Property(L"Number", [entry](Arguments, VARIANT& result) { Answer(result, std::int64_t{entry.number}); });
    Property(L"Description",
             [entry](Arguments, VARIANT& result) { Answer(result, std::string_view(entry.description)); });
    Property(L"Source",
             [entry](Arguments, VARIANT& result) { Answer(result, std::string_view(entry.source)); });
  }
};

class DaoErrors final : public DispatchObject {
 public:
  explicit DaoErrors(Journal& journal) : DispatchObject(journal, "Errors") {
    Property(L"Count", [&journal](Arguments, VARIANT& result) {
      Answer(result, static_cast<std::int64_t>(journal.errors.size()));
    });
    Method(L"Item", {VT_I4}, [&journal](Arguments arguments, VARIANT& result) {
      Answer(result, new DaoError(journal, journal.errors[Position(arguments[0], journal.errors.size())]));
    });
  }
};

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
      Answer(result, new Collection(m_journal, "Workspaces", 1, VT_I4, makeItem));
    });
    Property(L"Errors", [this](Arguments, VARIANT& result) { Answer(result, new DaoErrors(m_journal)); });
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
