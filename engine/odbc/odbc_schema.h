// The server's tables and views, as statements name them. What was read is kept until Forget.
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

// Of saved queries within one user action, by their folded names.
struct SavedTexts {
  // Made: they are read by the text that was given, whatever others make of the views of that name meanwhile.
  std::map<std::string, std::string> byName;
  std::set<std::string> freed;                  // deleted, so that their names may be used
  std::map<std::string, std::string> refusals;  // why one could not be deleted
};

class Schema final : public jet_sql::Relations {
 public:
  Schema(Session& session, SavedTexts& texts) : m_session(session), m_texts(texts) {}

  const jet_sql::KnownRelation* Find(std::string_view name) override;

  struct Entry {
    std::string name, schema;
    bool isTable = false;
  };
  // The table or view of that name; null when there is none. `fresh`: others may have made or deleted it.
  const Entry* FindEntry(std::string_view name, bool fresh = false);
  // Whether the catalog was made without quotes on a server that then folds names: new ones follow it.
  bool IsFolded();
  std::vector<std::string> PrimaryKeyOf(const jet_sql::KnownRelation& table);
  // The columns by which the rows of a table are told apart: its primary key, or ID.
  std::vector<std::string> KeyOf(const jet_sql::KnownRelation& table);

  // Texts of saved queries that the server keeps beside its views; see SavedQueries.
  struct StoredText {
    std::string text;
    bool bound = true;  // false: the view shows nothing, because it names what is not there
  };
  const StoredText* FindStoredText(std::string_view viewName);

  // While a view is made, saved queries are read by their texts, so that no view stands on another of ours.
  void ReadQueriesByText(bool byText);

  SavedTexts& Texts() { return m_texts; }
  void Forget();

 private:
  void ReadEntries();
  std::unique_ptr<jet_sql::KnownRelation> ReadRelation(const Entry& entry) const;

  Session& m_session;
  SavedTexts& m_texts;
  bool m_entriesRead = false, m_byText = false;
  std::multimap<std::string, Entry> m_entries;                                 // by folded name
  std::optional<std::map<std::string, StoredText>> m_stored;                   // by the view's own name
  std::map<std::string, std::unique_ptr<jet_sql::KnownRelation>> m_relations;  // by name as asked for
};

}  // namespace kxrestore::engine::odbc
