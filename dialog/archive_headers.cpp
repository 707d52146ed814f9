#include "dialog/archive_headers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <type_traits>

#include "base/error.h"
#include "base/phrases.h"
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

void AppendKey(std::string& key, const engine::ValueView& value) {
  if (engine::IsNull(value)) {
    key += '-';
    return;
  }
  std::string text;
  if (const auto* number = std::get_if<double>(&value)) {
    AppendNumber(text, *number);
  } else if (const auto* truth = std::get_if<bool>(&value)) {
    text = *truth ? "1" : "0";
  } else {
    text = engine::ToText(value);
  }
  AppendNumber(key, text.size());
  key.append(":").append(text);
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
  std::vector<std::string> others = HeaderColumns(rows);
  std::string lacking, unknown;
  for (const std::string& column : columns) {
    std::size_t index = 0;
    while (index < rows.FieldCount() && !EqualIgnoringCase(rows.FieldName(index), column)) ++index;
    if (index == rows.FieldCount()) lacking.append(lacking.empty() ? "" : ", ").append(column);
    m_positions.push_back(index);
    std::erase_if(others, [&](const std::string& other) { return EqualIgnoringCase(other, column); });
  }
  for (const std::string& other : others) unknown.append(unknown.empty() ? "" : ", ").append(other);
  if (lacking.empty() && unknown.empty()) return;
  std::string description = Say(Phrase::kArchiveColumnsDiffer);
  if (!lacking.empty()) description += " " + Say(Phrase::kArchiveColumnsMissing, {lacking});
  if (!unknown.empty()) description += " " + Say(Phrase::kArchiveColumnsUnknown, {unknown});
  throw Error(engine::error_number::kItemNotFound, std::move(description), "KXRestore");
}

std::string HeaderValues::Key() const {
  std::string key;
  for (const std::size_t position : m_positions) AppendKey(key, m_rows.FieldValue(position));
  return key;
}

std::string HeaderValues::Literals() const {
  std::string list;
  for (const std::size_t position : m_positions) {
    if (!list.empty()) list += ", ";
    AppendLiteral(list, m_rows.FieldValue(position));
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
