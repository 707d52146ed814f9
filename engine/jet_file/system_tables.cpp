#include "engine/jet_file/system_tables.h"

#include <algorithm>

#include "base/text.h"
#include "engine/jet_file/decode.h"

namespace kxrestore::engine::jet_file {
namespace {

constexpr std::uint32_t kObjectsPage = 2;
constexpr std::uint32_t kSystemFlags = 0x80000002;

enum ObjectType { kTable = 1, kDriverLink = 4, kQuery = 5, kFileLink = 6 };

// Columns of a system table by name; a missing column reads as Null.
class Columns {
 public:
  explicit Columns(const Table& table) : m_table(table) {}

  std::string Text(const FoundRow& found, std::string_view name) { return ToText(Value(found, name)); }
  std::int64_t Number(const FoundRow& found, std::string_view name) {
    const ValueView value = Value(found, name);
    const auto* number = std::get_if<std::int64_t>(&value);
    return number == nullptr ? 0 : *number;
  }

 private:
  ValueView Value(const FoundRow& found, std::string_view name) {
    const Column* column = m_table.Definition().Find(name);
    if (column == nullptr || !CanDecode(column->type)) return std::monostate();
    return DecodeColumn(m_table, found, *column, m_text);
  }

  const Table& m_table;
  std::string m_text;
};

}  // namespace

SystemTables ReadSystemTables(const PageFile& file, CodePage& codePage) {
  SystemTables found;
  FoundRow row;
  std::uint32_t queriesPage = 0;
  Table objects(file, codePage, ReadTableDefinition(file, codePage, kObjectsPage, "MSysObjects"));
  Columns ofObjects(objects);
  for (Table::Walk walk(objects); walk.Next(row);) {
    FileObject object;
    object.name = ofObjects.Text(row, "Name");
    object.id = static_cast<std::int32_t>(ofObjects.Number(row, "Id"));
    object.page = static_cast<std::uint32_t>(object.id) & 0xFFFFFF;
    const auto flags = static_cast<std::uint32_t>(ofObjects.Number(row, "Flags"));
    switch (ofObjects.Number(row, "Type")) {
      case kTable:
        if (object.name == "MSysQueries") queriesPage = object.page;
        if ((flags & kSystemFlags) != 0) continue;
        break;
      case kDriverLink:
      case kFileLink:
        object.kind = FileObject::Kind::kLinkedTable;
        object.linkedTo = ofObjects.Text(row, "Database");
        if (object.linkedTo.empty()) object.linkedTo = ofObjects.Text(row, "Connect");
        break;
      case kQuery:
        object.kind = FileObject::Kind::kQuery;
        break;
      default:
        continue;
    }
    found.objects.push_back(std::move(object));
  }
  if (queriesPage == 0) return found;
  Table queries(file, codePage, ReadTableDefinition(file, codePage, queriesPage, "MSysQueries"));
  Columns ofQueries(queries);
  for (Table::Walk walk(queries); walk.Next(row);) {
    QueryLine line;
    line.query = static_cast<std::int32_t>(ofQueries.Number(row, "ObjectId"));
    line.attribute = static_cast<int>(ofQueries.Number(row, "Attribute"));
    line.flag = static_cast<int>(ofQueries.Number(row, "Flag"));
    line.order = ofQueries.Text(row, "Order");
    line.name1 = ofQueries.Text(row, "Name1");
    line.name2 = ofQueries.Text(row, "Name2");
    line.expression = ofQueries.Text(row, "Expression");
    found.queryLines.push_back(std::move(line));
  }
  std::stable_sort(found.queryLines.begin(), found.queryLines.end(),
                   [](const QueryLine& a, const QueryLine& b) {
                     return std::tie(a.query, a.attribute, a.order) < std::tie(b.query, b.attribute, b.order);
                   });
  return found;
}

}  // namespace kxrestore::engine::jet_file
