// The server's tables and views, looked up by the names in statements. Cached until Forget.
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

// The saved queries that one user action has created and deleted, by case-folded name.
struct SavedTexts {
  // Created in this action. They are read by these texts, even if another program replaces the views
  // meanwhile.
  std::map<std::string, std::string> byName;
  std::set<std::string> freed;                  // deleted in this action; the name is free again
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
  // The table or view of that name; null when there is none. `fresh`: do not use the cache.
  const Entry* FindEntry(std::string_view name, bool fresh = false);
  // Whether all names are lower case, as on a server that folds unquoted names. New names then are, too.
  bool IsFolded();
  std::vector<std::string> PrimaryKeyOf(const jet_sql::KnownRelation& table);
  // The columns that identify a row: the primary key, else ID.
  std::vector<std::string> KeyOf(const jet_sql::KnownRelation& table);

  // Texts of saved queries that are stored on the server beside the views; see SavedQueries.
  struct StoredText {
    std::string text;
    bool bound = true;  // false: the query refers to something missing; its view returns no rows
  };
  const StoredText* FindStoredText(std::string_view viewName);

  // Whether saved queries are expanded to their texts, as they are while a view is created, so that no view
  // of ours depends on another.
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
  std::map<std::string, std::unique_ptr<jet_sql::KnownRelation>> m_relations;  // by the name in the statement
};

}  // namespace kxrestore::engine::odbc
