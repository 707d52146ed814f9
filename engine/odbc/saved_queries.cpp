#include "engine/odbc/saved_queries.h"

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/reading/lexer.h"
#include "engine/jet_sql/reading/view_text.h"
#include "engine/odbc/odbc_session.h"

namespace kxrestore::engine::odbc {
namespace {

namespace number = error_number;

constexpr std::string_view kBound = "KXRestore query: ";
constexpr std::string_view kUnbound = "KXRestore query without rows: ";
constexpr const char* kLock = "SELECT pg_advisory_xact_lock(1264079699)";
constexpr int kMaxTries = 5;

std::string Terminated(std::string_view sql) {
  while (!sql.empty() && (jet_sql::IsBlank(sql.back()) || sql.back() == ';')) sql.remove_suffix(1);
  return std::string(sql) + ";";
}

// The server's own text of a view: a CREATE VIEW statement, or what follows its AS.
std::string Definition(Session& session, const Schema::Entry& entry) {
  const ServerFacts& facts = session.Facts();
  std::vector<Value> values = {entry.name};
  std::string question = "SELECT VIEW_DEFINITION FROM INFORMATION_SCHEMA.VIEWS WHERE TABLE_NAME = ?";
  if (facts.IsPostgres()) {
    question =
        "SELECT pg_catalog.pg_get_viewdef(c.oid, true) FROM pg_catalog.pg_class c JOIN "
        "pg_catalog.pg_namespace "
        "n ON n.oid = c.relnamespace WHERE c.relname = ? AND n.nspname = ?";
    values.emplace_back(entry.schema);
  } else if (facts.IsSqlServer()) {
    question = "SELECT OBJECT_DEFINITION(OBJECT_ID(?))";
    values.front() = session.Dialect().Identifier(entry.name);
  }
  const auto rows = session.Ask(question, values);
  if (rows.empty() || rows.front().front().empty()) {
    Raise(number::kOdbcFailed,
          "ODBC - call failed: the server does not show the text of '" + entry.name + "' to this user.");
  }
  std::string text = rows.front().front();
  const std::size_t start = text.find_first_not_of(" \t\r\n");
  if (start != std::string::npos && jet_sql::IsKeyword(std::string_view(text).substr(start, 6), "CREATE")) {
    return text;
  }
  return "CREATE VIEW x AS " + text;
}

std::string EmptyBody(const Session& session, const std::vector<std::string>& columns) {
  std::string body;
  for (const std::string& column : columns) {
    body += (body.empty() ? "SELECT NULL AS " : ", NULL AS ") + session.Dialect().Identifier(column);
  }
  return (body.empty() ? "SELECT NULL AS Expr1000" : body) + " WHERE 1 = 0";
}

// The view's name, followed by its column names if they have to be folded like it.
std::string NameWithColumns(Session& session, const std::string& quoted,
                            const std::vector<std::string>& columns) {
  if (columns.empty() || !session.Tables().IsFolded()) return quoted;
  std::string list;
  for (const std::string& column : columns) {
    list += (list.empty() ? " (" : ", ") + session.Dialect().Identifier(FoldCase(column));
  }
  return quoted + list + ")";
}

void MakeView(Session& session, const std::string& name, const std::vector<std::string>& columns,
              const std::string& body, std::string_view kept, bool replaces) {
  const std::string quoted = session.Dialect().Identifier(name);
  const bool comments = session.Facts().IsPostgres();
  std::vector<std::string> statements;
  if (comments) statements.emplace_back(kLock);
  if (replaces) statements.push_back("DROP VIEW " + quoted);
  statements.push_back("CREATE VIEW " + NameWithColumns(session, quoted, columns) + " AS " + body);
  if (comments) statements.push_back("COMMENT ON VIEW " + quoted + " IS " + session.Dialect().Text(kept));
  session.RunSchemaChange(statements);
}

void MakeViewOrEmptyOne(Session& session, const std::string& name, const ViewBody& body,
                        const std::string& text, bool replaces) {
  if (!body.sql.empty()) {
    try {
      MakeView(session, name, body.columns, body.sql, std::string(kBound) + text, replaces);
      return;
    } catch (const Error& error) {
      const bool missing =
          error.Number() == number::kTableNotFound || error.Number() == number::kParameterMissing;
      if (!missing) throw;
    }
  }
  MakeView(session, name, body.columns, EmptyBody(session, body.columns), std::string(kUnbound) + text,
           replaces);
}

}  // namespace

std::map<std::string, Schema::StoredText> ReadStoredTexts(Session& session) {
  std::map<std::string, Schema::StoredText> texts;
  if (!session.Facts().IsPostgres()) return texts;
  const auto rows = session.Ask(
      "SELECT c.relname, d.description FROM pg_catalog.pg_class c JOIN pg_catalog.pg_description d ON "
      "d.objoid "
      "= c.oid AND d.objsubid = 0 AND d.classoid = 'pg_catalog.pg_class'::regclass JOIN "
      "pg_catalog.pg_namespace n ON n.oid = c.relnamespace WHERE c.relkind = 'v' AND n.nspname = "
      "current_schema() AND d.description LIKE 'KXRestore query%'");
  for (const std::vector<std::string>& row : rows) {
    for (const std::string_view start : {kBound, kUnbound}) {
      if (row[1].starts_with(start)) texts[row[0]] = {row[1].substr(start.size()), start == kBound};
    }
  }
  return texts;
}

std::string ViewText(Session& session, const Schema::Entry& view) {
  const ServerFacts& facts = session.Facts();
  return jet_sql::QueryTextOfView(Definition(session, view), {.escape = facts.IsPostgres() ? '\\' : '\0',
                                                              .hasLists = facts.IsSqlServer()});
}

std::string SavedQueryText(Session& session, std::string_view name) {
  Schema& schema = session.Tables();
  const auto own = schema.Texts().byName.find(FoldCase(name));
  if (own != schema.Texts().byName.end()) return own->second;
  const Schema::Entry* entry = schema.FindEntry(name, true);
  if (entry == nullptr || entry->isTable) RaiseItemNotFound(name);
  const Schema::StoredText* stored = schema.FindStoredText(entry->name);
  if (stored != nullptr) return stored->text;
  return ViewText(session, *entry);
}

void CreateSavedQuery(Session& session, std::string_view name, std::string_view sql) {
  SavedTexts& texts = session.Tables().Texts();
  const std::string folded = FoldCase(name);
  const std::string text = Terminated(sql);
  const ViewBody body = TranslateSavedQuery(session, text);
  const bool freed = texts.freed.contains(folded);
  for (int tried = 1;; ++tried) {
    const Schema::Entry* entry = session.Tables().FindEntry(name, true);
    // Another dialog may have created its own query of that name since this one deleted it.
    const bool replaces = entry != nullptr && freed && !entry->isTable &&
                          session.Tables().FindStoredText(entry->name) != nullptr;
    if (entry != nullptr && !replaces) {
      const auto refusal = texts.refusals.find(folded);
      Raise(number::kObjectExists,
            "Object '" + std::string(name) + "' already exists" +
                (refusal == texts.refusals.end() ? "." : " and could not be replaced. " + refusal->second));
    }
    const std::string spelled = replaces                      ? entry->name
                                : session.Tables().IsFolded() ? FoldCase(name)
                                                              : std::string(name);
    try {
      MakeViewOrEmptyOne(session, spelled, body, text, replaces);
      break;
    } catch (const Error& error) {
      const bool lostRace =
          error.Number() == number::kObjectExists || error.Number() == number::kTableNotFound;
      if (!freed || !lostRace || tried == kMaxTries) throw;
    }
  }
  texts.freed.erase(folded);
  texts.byName[folded] = text;
  session.ForgetPlans();
}

void DeleteSavedQuery(Session& session, std::string_view name) {
  SavedTexts& texts = session.Tables().Texts();
  const std::string folded = FoldCase(name);
  const Schema::Entry* entry = session.Tables().FindEntry(name, true);
  if (entry != nullptr && entry->isTable) RaiseItemNotFound(name);
  const bool own = texts.byName.erase(folded) > 0;
  texts.freed.insert(folded);
  session.ForgetPlans();
  entry = session.Tables().FindEntry(name);
  if (entry == nullptr) {
    if (own) return;
    RaiseItemNotFound(name);
  }
  std::vector<std::string> statements;
  if (session.Facts().IsPostgres()) statements.emplace_back(kLock);
  statements.push_back("DROP VIEW " + session.Dialect().Identifier(entry->name));
  try {
    session.RunSchemaChange(statements);
  } catch (const Error& error) {
    if (error.Number() == number::kTableNotFound && own) return;
    if (error.Number() == number::kTableNotFound) RaiseItemNotFound(name);
    texts.freed.erase(folded);
    texts.refusals[folded] = error.Description();
    throw;
  }
}

}  // namespace kxrestore::engine::odbc
