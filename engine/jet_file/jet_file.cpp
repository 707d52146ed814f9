#include "engine/jet_file/jet_file.h"

#include <algorithm>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_file/query_text.h"

namespace kxrestore::engine::jet_file {

JetFile::JetFile(std::string path)
    : m_pages(std::move(path)), m_codePage(CodePage::Find(m_pages.Format().codePage)) {
  const SystemTables system = ReadSystemTables(m_pages, *m_codePage);
  for (const FileObject& object : system.objects) {
    switch (object.kind) {
      case FileObject::Kind::kTable:
        AddTable(object);
        break;
      case FileObject::Kind::kLinkedTable:
        m_problems.emplace(
            FoldCase(object.name),
            Error(error_number::kCannotCreateObject,
                  "ActiveX component can't create object: the table '" + object.name + "' in '" +
                      m_pages.Path() + "' is linked to '" + object.linkedTo +
                      "'. Only the desktop database engine can follow the link, and that is not "
                      "installed.",
                  "Engine"));
        break;
      case FileObject::Kind::kQuery: {
        FileQuery query;
        query.name = object.name;
        const auto [first, last] = std::equal_range(
            system.queryLines.begin(), system.queryLines.end(), QueryLine{.query = object.id},
            [](const QueryLine& a, const QueryLine& b) { return a.query < b.query; });
        try {
          query.text = BuildQueryText(object.name, {first, last});
        } catch (const Error& problem) {
          query.problem = problem;
        }
        m_queries.push_back(std::move(query));
        break;
      }
    }
  }
}

// A damaged table does not make the others unusable. A definition belongs to one table, which also bounds
// what all definitions together can take.
void JetFile::AddTable(const FileObject& object) {
  if (FindTable(object.name) != nullptr) return;
  try {
    if (!m_definitions.insert(object.page).second) {
      m_pages.RaiseDamaged("the definition on page " + std::to_string(object.page) +
                           " belongs to two tables");
    }
    m_tables.push_back(std::make_unique<Table>(
        m_pages, *m_codePage, ReadTableDefinition(m_pages, *m_codePage, object.page, object.name)));
  } catch (const Error& problem) {
    m_problems.emplace(FoldCase(object.name), problem);
  }
}

Table* JetFile::FindTable(std::string_view name) const {
  const auto found = std::find_if(m_tables.begin(), m_tables.end(), [&](const auto& table) {
    return EqualIgnoringCase(table->Definition().name, name);
  });
  return found == m_tables.end() ? nullptr : found->get();
}

const FileQuery* JetFile::FindQuery(std::string_view name) const {
  const auto found = std::find_if(m_queries.begin(), m_queries.end(), [&](const FileQuery& query) {
    return EqualIgnoringCase(query.name, name);
  });
  return found == m_queries.end() ? nullptr : &*found;
}

const Error* JetFile::Problem(std::string_view name) const {
  const auto found = m_problems.find(FoldCase(name));
  return found == m_problems.end() ? nullptr : &found->second;
}

bool JetFile::Refresh() {
  if (!m_pages.Refresh()) return false;
  for (const auto& table : m_tables) {
    table->Forget();
    const TableDefinition& known = table->Definition();
    const TableDefinition now = ReadTableDefinition(m_pages, *m_codePage, known.page, known.name);
    if (now.columns != known.columns || !(now.ownedPages == known.ownedPages)) {
      Raise(error_number::kDataHasChanged, "The data has changed: another program has changed the table '" +
                                               known.name + "' in '" + m_pages.Path() + "'. Try again.");
    }
  }
  return true;
}

}  // namespace kxrestore::engine::jet_file
