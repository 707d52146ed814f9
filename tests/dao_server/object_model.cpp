#include "tests/dao_server/object_model.h"

#include <algorithm>
#include <memory>

#include "base/error.h"
#include "engine/error_numbers.h"

namespace kxrestore::dao_server {
namespace {

using Rows = std::shared_ptr<engine::Recordset>;

std::string TextOf(const VARIANT& variant) {
  std::string text;
  engine::dao::ToValue(variant, text);
  return text;
}

// Of items that are asked for by their positions.
Variant MakeCollection(Journal& journal, std::string name, std::function<std::size_t()> count,
                       std::function<Variant(std::size_t)> makeItem) {
  return MakeObject(journal, std::move(name),
                    {{"get Count", [=](Arguments) { return static_cast<std::int64_t>(count()); }},
                     {"call Item i", [=](Arguments arguments) {
                        const auto position = static_cast<std::size_t>(arguments[0].lVal);
                        if (position >= count()) {
                          throw Error(engine::error_number::kItemNotFound,
                                      "Item not found in this collection.", "Engine");
                        }
                        return makeItem(position);
                      }}});
}

// A transaction is the workspace's; a database joins it with its first write.
struct Transaction {
  bool begun = false;
  std::vector<engine::Database*> databases;

  void Join(engine::Database& database) {
    if (!begun || std::ranges::find(databases, &database) != databases.end()) return;
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

Variant MakeField(Journal& journal, const Rows& rows, std::size_t index) {
  return MakeObject(journal, "Field",
                    {{"get Name", [=](Arguments) { return std::string(rows->FieldName(index)); }},
                     {"get Value",
                      [=](Arguments) {
                        const engine::ValueView value = rows->FieldValue(index);
                        if (value == engine::ValueView(kUnreadable)) {
                          throw Error(3197, "The data has been changed.", "Engine");
                        }
                        return engine::OwnedOf(value);
                      }},
                     {"put Value v", [=](Arguments arguments) {
                        std::string text;
                        rows->SetFieldValue(index, engine::OwnedOf(engine::dao::ToValue(arguments[0], text)));
                      }}});
}

Variant GetRows(engine::Recordset& rows, LONG count) {
  const auto fields = static_cast<LONG>(rows.FieldCount());
  std::vector<Variant> cells;
  LONG read = 0;
  for (; read < count && !rows.Eof(); ++read, rows.MoveNext()) {
    bool readable = true;
    for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
      readable &= rows.FieldValue(i) != engine::ValueView(kUnreadable);
    }
    if (!readable) break;
    for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
      cells.push_back(engine::dao::FromValue(engine::OwnedOf(rows.FieldValue(i))));
    }
  }
  SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(fields), 0}, {static_cast<ULONG>(read), 0}};
  Variant result;
  result.Raw().vt = VT_ARRAY | VT_VARIANT;
  result.Raw().parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  for (LONG cell = 0; cell < read * fields; ++cell) {
    LONG at[] = {cell % fields, cell / fields};
    SafeArrayPutElement(result.Raw().parray, at, &cells[static_cast<std::size_t>(cell)].Raw());
  }
  return result;
}

Variant MakeRecordset(Journal& journal, const Rows& rows) {
  return MakeObject(
      journal, "Recordset",
      {{"get EOF", [=](Arguments) { return rows->Eof(); }},
       {"get Fields",
        [&journal, rows](Arguments) {
          return MakeCollection(
              journal, "Fields", [rows] { return rows->FieldCount(); },
              [&journal, rows](std::size_t index) { return MakeField(journal, rows, index); });
        }},
       {"call MoveNext", [=](Arguments) { rows->MoveNext(); }},
       {"call Edit", [=](Arguments) { rows->Edit(); }},
       {"call Update", [=](Arguments) { rows->Update(); }},
       {"call Close", [=](Arguments) { rows->Close(); }},
       {"call GetRows i", [=](Arguments arguments) { return GetRows(*rows, arguments[0].lVal); }}});
}

Variant MakeQueryDef(Journal& journal, const std::string& sql) {
  return MakeObject(journal, "QueryDef", {{"get SQL", [=](Arguments) { return sql; }}});
}

Variant MakeDatabase(Journal& journal, const std::shared_ptr<Transaction>& transaction,
                     const std::shared_ptr<engine::Database>& database) {
  const auto changed = std::make_shared<std::int64_t>(0);
  const auto makeQueries = [&journal, transaction, database](Arguments) {
    return MakeObject(journal, "QueryDefs",
                      {{"call Item s",
                        [&journal, database](Arguments arguments) {
                          return MakeQueryDef(journal, database->QueryText(TextOf(arguments[0])));
                        }},
                       {"call Delete s", [=](Arguments arguments) {
                          transaction->Join(*database);
                          database->DeleteQueryDef(TextOf(arguments[0]));
                        }}});
  };
  return MakeObject(journal, "Database",
                    {{"call OpenRecordset si",
                      [&journal, database](Arguments arguments) {
                        const auto type = static_cast<engine::RecordsetType>(arguments[1].lVal);
                        return MakeRecordset(journal, database->OpenRecordset(TextOf(arguments[0]), type));
                      }},
                     {"call Execute si",
                      [=](Arguments arguments) {
                        transaction->Join(*database);
                        *changed = database->Execute(TextOf(arguments[0]), arguments[1].lVal);
                      }},
                     {"get RecordsAffected", [=](Arguments) { return *changed; }},
                     {"call CreateQueryDef ss",
                      [&journal, transaction, database](Arguments arguments) {
                        transaction->Join(*database);
                        database->CreateQueryDef(TextOf(arguments[0]), TextOf(arguments[1]));
                        return MakeQueryDef(journal, TextOf(arguments[1]));
                      }},
                     {"get QueryDefs", makeQueries},
                     {"call Close", [=](Arguments) { database->Close(); }}});
}

Variant MakeWorkspace(Journal& journal, engine::Workspace& workspace) {
  const auto transaction = std::make_shared<Transaction>();
  return MakeObject(
      journal, "Workspace",
      {{"call OpenDatabase sbbs",
        [&journal, &workspace, transaction](Arguments arguments) {
          engine::OpenRequest request;
          request.name = TextOf(arguments[0]);
          request.name.replace(request.name.rfind('.'), std::string::npos, ".db");
          request.exclusive = arguments[1].boolVal != VARIANT_FALSE;
          request.readOnly = arguments[2].boolVal != VARIANT_FALSE;
          return MakeDatabase(journal, transaction, workspace.OpenDatabase(request));
        }},
       {"call BeginTrans", [=](Arguments) { transaction->begun = true; }},
       {"call CommitTrans i", [=](Arguments) { transaction->End(&engine::Database::CommitTrans); }},
       {"call Rollback", [=](Arguments) { transaction->End(&engine::Database::Rollback); }}});
}

Variant MakeErrors(Journal& journal) {
  return MakeCollection(
      journal, "Errors", [&journal] { return journal.errors.size(); },
      [&journal](std::size_t which) {
        const Journal::Entry entry = journal.errors[which];
        return MakeObject(journal, "Error",
                          {{"get Number", [=](Arguments) { return std::int64_t{entry.number}; }},
                           {"get Description", [=](Arguments) { return entry.description; }},
                           {"get Source", [=](Arguments) { return entry.source; }}});
      });
}

}  // namespace

Variant MakeDbEngine(Journal& journal, engine::Workspace& workspace) {
  const auto only = std::make_shared<Variant>(MakeWorkspace(journal, workspace));
  const auto makeWorkspaces = [&journal, only](Arguments) {
    return MakeCollection(
        journal, "Workspaces", [] { return 1; },
        [only](std::size_t) {
          Variant copy;
          VariantCopy(&copy.Raw(), &only->Raw());
          return copy;
        });
  };
  return MakeObject(journal, "DBEngine",
                    {{"get Workspaces", makeWorkspaces},
                     {"get Errors", [&journal](Arguments) { return MakeErrors(journal); }},
                     {"call Idle i", [](Arguments) {}}});
}

}  // namespace kxrestore::dao_server
