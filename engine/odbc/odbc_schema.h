// The server's tables and views, found by the names that statements use. What was read is kept until Forget.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/meaning/name_resolver.h"

namespace kxrestore::engine::odbc {

class Session;

// The saved queries that one user action has made and deleted, by their folded names.
struct SavedTexts {
  // Made in this action. They are read by these texts, even if another program replaces the views meanwhile.
  std::map<std::string, std::string> byName;
  std::set<std::string> freed;                  // deleted in this action; a new query may take the name
  std::map<std::string, std::string> refusals;  // why one could not be deleted
};

class Schema final : public jet_sql::Relations {
 public:
  explicit Schema(Session& session) : m_session(session) {}
  void SetTexts(SavedTexts& texts) { m_texts = &texts; }

  const jet_sql::KnownRelation* Find(std::string_view name) override;

  struct Entry {
    std::string name, schema;
    bool isTable = false;
  };
  // The table or view of that name; null when there is none. `fresh`: others may have made or deleted it.
  const Entry* FindEntry(std::string_view name, bool fresh = false);
  // Whether all names are in small letters, as on a server that folds names without quotes. New names follow.
  bool IsFolded();
  std::vector<std::string> PrimaryKeyOf(const jet_sql::KnownRelation& table);
  // The columns that identify a row of the table: its primary key, else ID.
  std::vector<std::string> KeyOf(const jet_sql::KnownRelation& table);

  // Texts of saved queries that the server keeps beside its views; see SavedQueries.
  struct StoredText {
    std::string text;
    bool bound = true;  // false: the query names something missing, and its view returns no rows
  };
  const StoredText* FindStoredText(std::string_view viewName);

  // Whether saved queries are replaced by their texts, as they are while a view is made, so that none of our
  // views depends on another.
  void ReadQueriesByText(bool byText);

  SavedTexts& Texts() { return *m_texts; }
  void Forget();

 private:
  void ReadEntries();
  std::unique_ptr<jet_sql::KnownRelation> ReadRelation(const Entry& entry) const;

  Session& m_session;
  SavedTexts* m_texts = nullptr;
  bool m_entriesRead = false, m_byText = false;
  std::multimap<std::string, Entry> m_entries;                                 // by folded name
  std::optional<std::map<std::string, StoredText>> m_stored;                   // by the view's own name
  std::map<std::string, std::unique_ptr<jet_sql::KnownRelation>> m_relations;  // by name as asked for
};

}  // namespace kxrestore::engine::odbc
