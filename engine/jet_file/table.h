// The rows of one table: walking them, finding one again, reading their values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/jet_file/row.h"
#include "engine/jet_file/table_definition.h"

namespace kxrestore::engine::jet_file {

// A row and the page that holds it. `home` is what indexes and numbers of rows mean: a row that has outgrown
// its page is stored elsewhere, behind a pointer.
struct FoundRow {
  RowPointer home;
  Page page;
  Row row;
};

class Table {
 public:
  // Both must outlive this. The pages are listed when the first row is asked for.
  Table(const PageFile& file, CodePage& codePage, TableDefinition definition)
      : m_file(file), m_codePage(codePage), m_definition(std::move(definition)) {}
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  const TableDefinition& Definition() const { return m_definition; }
  const PageFile& File() const { return m_file; }

  // The rows in the order of the file. Error 3049 for a page that is not the table's.
  class Walk {
   public:
    explicit Walk(Table& table) : m_table(&table) {}
    bool Next(FoundRow& found);

   private:
    Table* m_table;
    std::size_t m_index = 0;  // of the next page
    Page m_page;
    std::size_t m_slot = 0, m_slots = 0;
  };

  // The row at home there; nothing when it is deleted or was never there.
  bool Find(RowPointer home, FoundRow& found);

  // Text and memo columns, appended as UTF-8.
  void AppendText(std::string& out, const Column& column, const Bytes& stored) const;
  // What is stored of a memo or OLE column beyond the row. Error 3049 for a chain without an end.
  std::vector<std::uint8_t> LongValue(const Bytes& stored) const;

  // Forgets which pages there are: somebody else has changed the file.
  void Forget() { m_pages.reset(); }

 private:
  const std::vector<std::uint32_t>& Pages();
  Page DataPage(std::uint32_t number) const;
  // False when the slot holds no row of its own. `follow`: a row that has moved here counts, too.
  bool Take(const Page& page, std::uint8_t slot, FoundRow& found);
  void AppendStoredText(std::string& out, const Bytes& bytes) const;

  const PageFile& m_file;
  CodePage& m_codePage;
  TableDefinition m_definition;
  std::optional<std::vector<std::uint32_t>> m_pages;
};

}  // namespace kxrestore::engine::jet_file
