// Reading files of the desktop engine without that engine. A sample has the same rows as its twin, a SQLite
// file that was made from it.
#include <sqlite3.h>

#include <algorithm>
#include <fstream>

#include "engine/jet_file/decode.h"
#include "engine/jet_file/query_text.h"
#include "engine/jet_file/virtual_table.h"
#include "tests/engine/desktop_samples.h"
#include "tests/engine/server_statements.h"

namespace kxrestore::engine::testing {
namespace {

class DesktopSamples : public ::testing::TestWithParam<SampleFile> {
 protected:
  const SampleCopy m_twinCopy{GetParam().twin};
  std::unique_ptr<Workspace> m_workspace = MakeReaderWorkspace();
  std::unique_ptr<Database> m_database = m_workspace->OpenDatabase({.name = DesktopSample(GetParam().name)});
  std::unique_ptr<Database> m_twin = m_workspace->OpenDatabase(m_twinCopy.Request());
};

TEST_P(DesktopSamples, HaveTheRowsOfTheirTwins) {
  ExpectSameCatalog(*m_database, *m_twin);
  const char* const sums = "SELECT Count(*), Sum(ID), Max(DateStamp) FROM Catalog";
  EXPECT_EQ(Rows(*m_database, sums), Rows(*m_twin, sums));
  const std::string id = Rows(*m_twin, "SELECT Min(ID) FROM Catalog").front();
  EXPECT_EQ(Rows(*m_database, "SELECT ID FROM Catalog WHERE ID = " + id + " / 1"), Strings{id})
      << "a floating-point number may equal a whole one";
  ExpectError(error_number::kTableNotFound, "MSysObjects", [&] { Rows(*m_database, "MSysObjects"); });
}

TEST_P(DesktopSamples, AnswerWhatThePanelsAsk) {
  for (const auto& [text, ignored] : PanelStatements()) {
    const bool ordered = text.find("ORDER BY") != std::string::npos;
    const Strings rows = Rows(*m_database, text), wanted = Rows(*m_twin, text);
    EXPECT_EQ(ordered ? rows : Sorted(rows), ordered ? wanted : Sorted(wanted)) << text;
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, DesktopSamples, ::testing::ValuesIn(kSoundSamples), [](const auto& kind) {
  std::string name = kind.param.name;
  std::ranges::replace_if(
      name, [](char c) { return c == '-' || c == '.'; }, '_');
  return name;
});

TEST(DesktopFile, Of1997) {
  const auto workspace = MakeReaderWorkspace();
  const auto database = workspace->OpenDatabase({.name = DesktopSample("sample-1997.mdb")});
  EXPECT_EQ(Rows(*database, "Table1"),
            (Strings{"a|b|0|0|0|0|1981-12-12 00:00:00|0|False",
                     "abcdefg|hijklmnop|2|222|333333333|444.555|1974-09-21 00:00:00|3.5|True"}));
  // Rows of more than 255 bytes have offsets of two bytes. The text file has the rows as mdbtools reads them.
  const auto made = workspace->OpenDatabase({.name = DesktopSample("made-1997.mdb")});
  std::ifstream expected(DesktopSample("made-1997-Table2.txt"));
  Strings rows;
  for (std::string line; std::getline(expected, line);) rows.push_back(line);
  EXPECT_EQ(Rows(*made, "Table2"), rows);
  EXPECT_EQ(rows.size(), 4u);
  // A column whose name has a letter beyond ASCII, and a map of pages that begins with page 24 instead of 0.
  const SampleCopy copy("sample-1997.mdb");
  copy.Change([](std::string& bytes) {
    bytes[0xE8DE] = '\xC6';
    bytes.replace(0xF77C, 8, std::string_view("\x18\0\0\0\x80\0\0\0", 8));
  });
  EXPECT_EQ(Rows(*workspace->OpenDatabase(copy.Request()), "SELECT [Æ] FROM Table1"),
            (Strings{"a", "abcdefg"}));
}

TEST(DesktopFile, TextsOf1997HaveACodePage) {
  const struct {
    std::uint16_t page;
    std::string_view bytes, text;
  } cases[] = {{1252, "\x80\x81\xE4", "€\xC2\x81ä"},
               {1251, "\xC6\xF3\xB9", "Жу№"},
               {1255, "\xF9\xEC\xE5\xED", "שלום"},
               {1258, "file", "file"},
               {932, "C:\\\x83\x5C\\\xB1", "C:\\ソ\\ｱ"},
               {949, "\xC7\xD1\xB1\xDB", "한글"},
               {9999, "\xE9", "é"}};
  for (const auto& [page, bytes, text] : cases) {
    const std::string file = "x.mdb";
    std::string decoded;
    jet_file::CodePage::Find(page)->Append(
        decoded, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), &file});
    EXPECT_EQ(decoded, text) << page;
  }
}

TEST(DesktopFile, SavedQueriesAreBuiltFromTheirLines) {
  const jet_file::QueryLine lines[] = {
      {.attribute = 5, .name1 = "a b", .name2 = "Order"},
      {.attribute = 5, .name1 = "u"},
      {.attribute = 6, .name1 = "1st", .expression = "u.x"},
      {.attribute = 7, .flag = 2, .name1 = "u", .name2 = "order", .expression = "u.x = 1"},
      {.attribute = 7, .flag = 2, .name1 = "u", .name2 = "order", .expression = "u.y = 2"},
      {.attribute = 11, .name1 = "D", .expression = "u.x"},
      {.attribute = 11, .expression = "u.y"}};
  EXPECT_EQ(jet_file::BuildQueryText("q", lines),
            "SELECT u.x AS [1st] FROM u LEFT JOIN [a b] AS [Order] ON (u.x = 1) AND (u.y = 2) ORDER BY u.x "
            "DESC, u.y;");
}

// Decodes a row of one fixed column as each type.
TEST(DesktopFile, ValuesOfEveryType) {
  using jet_file::ColumnType;
  const jet_file::PageFile pages(DesktopSample("telling-2003.mdb"));
  const auto codePage = jet_file::CodePage::Find(1252);
  const struct {
    ColumnType type;
    std::string_view bytes;
    std::string text;
    std::uint8_t scale = 0;
  } cases[] = {
      {ColumnType::kByte, "\xFE", "254"},
      {ColumnType::kInteger, "\xFE\xFF", "-2"},
      {ColumnType::kLong, "\xFE\xFF\xFF\xFF", "-2"},
      {ColumnType::kBigInteger, "\x01\x02\x03\x04\x05\x06\x07\x88", "-8644934341102468607"},
      {ColumnType::kCurrency, {"\x40\xE2\x01\0\0\0\0\0", 8}, "12.3456"},
      {ColumnType::kCurrency, "\xE0\xB1\xFF\xFF\xFF\xFF\xFF\xFF", "-2"},
      {ColumnType::kSingle, {"\0\0\xC0\xBF", 4}, "-1.5"},
      {ColumnType::kDouble, {"\0\0\0\0\x40\x3A\xE0\x41", 8}, "2178023424"},
      {ColumnType::kDate, {"\0\0\0\0\0\0\xF4\xBF", 8}, "1899-12-29 06:00:00"},
      {ColumnType::kDate, {"\0\0\0\0\0\x80\x46\x40", 8}, "1900-02-13 00:00:00"},
      {ColumnType::kGuid, "\x0E\xA0\xCB\xB1\x0F\xD6\x21\x47\xB4\x8F\x2D\x34\x21\x10\xEB\x9C",
       "{B1CBA00E-D60F-4721-B48F-2D342110EB9C}"},
      {ColumnType::kNumeric, {"\x80\0\0\0\0\0\0\0\0\x01\0\0\0\x01\0\0\0", 17}, "-42949672.97", 2},
  };
  for (const auto& [type, bytes, text, scale] : cases) {
    jet_file::TableDefinition definition;
    jet_file::Column column;
    column.type = type;
    column.fixed = true;
    column.scale = scale;
    column.length = static_cast<std::uint16_t>(bytes.size());
    definition.columns = {column};
    const jet_file::Table table(pages, *codePage, definition);
    const std::string row = std::string("\1\0", 2) + std::string(bytes) + "\1";
    const jet_file::FoundRow found{
        {},
        {},
        {pages.Format(),
         definition,
         {reinterpret_cast<const std::uint8_t*>(row.data()), row.size(), &pages.Path()}}};
    std::string buffer;
    EXPECT_EQ(ToText(jet_file::DecodeColumn(table, found, column, buffer)), text) << static_cast<int>(type);
  }
}

// Rows of two variable columns whose stored offsets are not all in use.
TEST(DesktopFile, ColumnsOfUnusualRows) {
  const jet_file::Column columns[] = {{.number = 0, .variableIndex = 0}, {.number = 1, .variableIndex = 1}};
  const std::string path = "x.mdb", wide(249, 'b');
  const struct {
    bool jet3;
    std::string bytes;
    std::optional<std::string> second;
  } cases[] = {
      // A row of 1997 with more than 256 bytes whose values end before them: its jump, 0, is a filler.
      {true, "\2a" + wide + std::string("\xFB\2\1\0\2\3", 6), wide},
      // A row from before the second column was made: it has the column's bit, but no offset for it.
      {false, std::string("\2\0a\3\0\2\0\1\0\3", 10), std::nullopt},
  };
  for (const auto& [jet3, bytes, second] : cases) {
    jet_file::TableDefinition definition;
    definition.variableColumns = 2;
    const jet_file::Row row({.jet3 = jet3}, definition,
                            {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), &path});
    EXPECT_EQ(row.Stored(columns[0])->Text(), "a");
    const auto stored = row.Stored(columns[1]);
    EXPECT_EQ(stored ? std::optional<std::string>(stored->Text()) : std::nullopt, second);
  }
}

// The first search by some columns reads the whole table; without an index every later one would, too.
TEST(DesktopFile, SearchesByTheSameColumnsUseAnIndex) {
  jet_file::JetFile file(DesktopSample("telling-2003.mdb"));
  jet_file::Marks marks(file, [](bool) { return false; });
  jet_file::TableServer server{file, marks};
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection(
      [] {
        sqlite3* opened = nullptr;
        sqlite3_open(":memory:", &opened);
        return opened;
      }(),
      sqlite3_close);
  jet_file::AttachTables(connection.get(), server);
  for (const bool indexed : {false, true, true}) {
    EXPECT_EQ(
        sqlite3_exec(connection.get(), "SELECT * FROM Catalog WHERE Filename = 'x' AND Extension = '001'",
                     nullptr, nullptr, nullptr),
        SQLITE_OK);
    ASSERT_EQ(server.lookUps.size(), 1u);
    EXPECT_EQ(server.lookUps.begin()->second.index != nullptr, indexed);
  }
}

TEST(DesktopFile, SearchesFollowTheirCollation) {
  const auto workspace = MakeReaderWorkspace();
  const auto database = workspace->OpenDatabase({.name = DesktopSample("telling-2003.mdb")});
  const std::string where = "SELECT Name FROM SetNames WHERE Name = 'daily documents'";
  EXPECT_TRUE(Rows(*database, where).empty());
  EXPECT_EQ(Rows(*database, where + " COLLATE NOCASE"), Strings{"Daily Documents"});
}

}  // namespace
}  // namespace kxrestore::engine::testing
