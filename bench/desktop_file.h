// Makes files of the desktop engine for tests and benchmarks: copies a sample and replaces the rows of its
// tables. New rows are written to new pages at the end of the file, and the maps of the tables then name only
// those pages. Indexes are not updated; the reader does not use them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_file/jet_file.h"
#include "engine/value.h"
#include "host/catalog_maker/table_writer.h"

namespace kxrestore::bench {

class DesktopFile : public sample::TableWriter {
 public:
  enum class Texts { kCompressed, kPlain, kMixed };  // kCompressed where the characters allow it
  enum class Memos { kInRow, kOnePage, kChain };     // where memos are stored
  struct Style {
    Texts texts = Texts::kCompressed;
    Memos memos = Memos::kInRow;
    int moveEvery = 0;  // every n-th row is on another page, reached by a pointer
  };

  // Copies the sample, one of a format from 2000 on, to `path`.
  DesktopFile(const std::string& sample, const std::string& path);

  void SetStyle(const Style& style) { m_style = style; }
  // A row with a value for each column, in the order of the table's definition.
  void Add(const std::string& table, const std::vector<engine::Value>& row);
  // Removes the sample's rows from the table, as the first Add to a table does.
  void Empty(const std::string& table) { OutputOf(table); }
  const engine::jet_file::TableDefinition& Definition(const std::string& table) const;
  // Writes the remaining pages. Tables that were not named keep the sample's rows.
  void Finish();

 private:
  struct Output {
    const engine::jet_file::TableDefinition* definition = nullptr;
    std::vector<std::uint32_t> pages;
    std::vector<std::string> rows;     // of the page being filled
    std::vector<std::uint16_t> flags;  // of their slots
    std::vector<std::string> moved;    // rows of the page of moved ones
    std::uint32_t movedPage = 0;
    std::size_t room = 0, movedRoom = 0;
    std::uint32_t count = 0;
  };

  void Insert(sample::Table table, std::initializer_list<sample::Cell> row) override;
  Output& OutputOf(const std::string& table);
  std::string Encoded(const engine::jet_file::TableDefinition& definition,
                      const std::vector<engine::Value>& row);
  std::string EncodedText(std::string_view text) const;
  std::string EncodedMemo(const std::string& text);
  void Put(Output& output, std::string row, std::uint16_t flag);
  void FinishPage(Output& output);
  void FinishMoved(Output& output);
  std::uint32_t PutLongValue(const std::string& bytes);
  std::uint32_t NewPage();
  void WriteDataPage(std::uint32_t page, std::uint32_t owner, const std::vector<std::string>& rows,
                     const std::vector<std::uint16_t>& flags);
  void WritePage(std::uint32_t page, const std::string& bytes);
  void WriteMap(const Output& output);

  engine::jet_file::JetFile m_sample;
  std::fstream m_file;
  std::uint32_t m_pages = 0;
  Style m_style;
  std::map<std::string, Output> m_outputs;
  std::int64_t m_runs = 0;
};

}  // namespace kxrestore::bench
