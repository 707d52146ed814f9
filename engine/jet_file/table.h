// The rows of one table: iterating over them, finding one again, reading their values.
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

// A row and the page that stores it. `home` identifies the row in indexes and row numbers: a row that has
// outgrown its page is stored elsewhere, and its home points there.
struct FoundRow {
  RowPointer home;
  Page page;
  Row row;
};

class Table {
 public:
  // Both must outlive this. The list of pages is read at the first row.
  Table(const PageFile& file, CodePage& codePage, TableDefinition definition)
      : m_file(file), m_codePage(codePage), m_definition(std::move(definition)) {}
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  const TableDefinition& Definition() const { return m_definition; }
  const PageFile& File() const { return m_file; }

  // The rows in file order. Error 3049 for a page that does not belong to the table.
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

  // The row with that home; nothing when it is deleted or never existed.
  bool Find(RowPointer home, FoundRow& found);

  // Text and memo columns, appended as UTF-8.
  void AppendText(std::string& out, const Column& column, const Bytes& stored) const;
  // The part of a memo or OLE column that is stored outside the row. Error 3049 for a chain without an end.
  std::vector<std::uint8_t> LongValue(const Bytes& stored) const;

  // Discards the list of pages, after another program has changed the file.
  void Forget() { m_pages.reset(); }

 private:
  const std::vector<std::uint32_t>& Pages();
  Page DataPage(std::uint32_t number) const;
  // False when the slot holds no row of its own. `follow`: also accept a row that has moved here.
  bool Take(const Page& page, std::uint8_t slot, FoundRow& found);
  void AppendStoredText(std::string& out, const Bytes& bytes) const;

  const PageFile& m_file;
  CodePage& m_codePage;
  TableDefinition m_definition;
  std::optional<std::vector<std::uint32_t>> m_pages;
};

}  // namespace kxrestore::engine::jet_file
