#include "dialog/archive_headers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <type_traits>

#include "base/error.h"
#include "base/text.h"
#include "catalog/text_routines.h"
#include "engine/error_numbers.h"

namespace kxrestore::dialog {

namespace {

template <class Number>
void AppendNumber(std::string& list, Number number) {
  char digits[32];
  list.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void AppendLiteral(std::string& list, const engine::ValueView& value) {
  std::visit(
      [&](const auto& content) {
        using Content = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<Content, bool>) {
          list += content ? "True" : "False";
        } else if constexpr (std::is_same_v<Content, std::int64_t>) {
          AppendNumber(list, content);
        } else if constexpr (std::is_same_v<Content, double>) {
          if (std::isfinite(content)) {
            AppendNumber(list, content);
          } else {
            list += "Null";
          }
        } else if constexpr (std::is_same_v<Content, std::string_view>) {
          list += '\'';
          catalog::AppendWithFixedQuotes(list, content);
          list += '\'';
        } else if constexpr (std::is_same_v<Content, engine::DateTime>) {
          list.append("#").append(engine::ToText(content)).append("#");
        } else {
          list += "Null";
        }
      },
      value);
}

}  // namespace

std::vector<std::string> HeaderColumns(const engine::Recordset& rows) {
  std::vector<std::string> columns;
  for (std::size_t index = 0; index < rows.FieldCount(); ++index) {
    if (!EqualIgnoringCase(rows.FieldName(index), "ID")) columns.emplace_back(rows.FieldName(index));
  }
  return columns;
}

HeaderValues::HeaderValues(const engine::Recordset& rows, const std::vector<std::string>& columns)
    : m_rows(rows) {
  bool any = false;
  for (const std::string& column : columns) {
    std::optional<std::size_t>& position = m_positions.emplace_back();
    for (std::size_t index = 0; index < rows.FieldCount() && !position; ++index) {
      if (EqualIgnoringCase(rows.FieldName(index), column)) position = index;
    }
    any = any || position;
  }
  if (!any) {
    throw Error(engine::error_number::kItemNotFound,
                "Item not found in this collection: the columns of ArchiveHeader.", "KXRestore");
  }
}

std::string HeaderValues::Current() const {
  std::string list;
  for (const auto& position : m_positions) {
    if (!list.empty()) list += ", ";
    AppendLiteral(list, position ? m_rows.FieldValue(*position) : engine::ValueView());
  }
  return list;
}

std::string InsertHeader(const std::vector<std::string>& columns, std::string_view values) {
  std::string sql = "INSERT INTO ArchiveHeader (";
  for (std::size_t index = 0; index < columns.size(); ++index) {
    sql.append(index == 0 ? "[" : ", [").append(columns[index]).append("]");
  }
  return sql.append(") VALUES (").append(values).append(");");
}

}  // namespace kxrestore::dialog
