#include "engine/jet_file/row_filter.h"

#include <algorithm>
#include <cstring>

#include "base/text.h"
#include "base/utf16.h"
#include "engine/jet_file/decode.h"

namespace kxrestore::engine::jet_file {
namespace {

constexpr std::size_t kLongList = 8;

bool Same(const Bytes& stored, std::string_view bytes) {
  return stored.Size() == bytes.size() && std::memcmp(stored.Data(), bytes.data(), bytes.size()) == 0;
}

bool IsCompressed(const Bytes& stored) {
  return stored.Size() >= 2 && stored.Data()[0] == 0xFF && stored.Data()[1] == 0xFE;
}

}  // namespace

Wanted Wanted::Number(std::int64_t number) {
  Wanted wanted;
  wanted.number = number;
  return wanted;
}

Wanted Wanted::Text(std::string_view text) {
  Wanted wanted;
  wanted.isText = true;
  wanted.text = text;
  wanted.latin = "\xFF\xFE";
  wanted.hasLatin = true;
  for (const char16_t unit : ToUtf16<char16_t>(text)) {
    wanted.unicode += static_cast<char>(unit & 0xFF);
    wanted.unicode += static_cast<char>(unit >> 8);
    wanted.latin += static_cast<char>(unit & 0xFF);
    if (unit == 0 || unit > 0xFF) wanted.hasLatin = false;
  }
  return wanted;
}

std::int64_t WholeNumberOf(const Column& column, const Bytes& stored) {
  switch (column.type) {
    case ColumnType::kByte:
      return stored.U8(0);
    case ColumnType::kInteger:
      return static_cast<std::int16_t>(stored.U16(0));
    case ColumnType::kBigInteger:
      return static_cast<std::int64_t>(stored.U64(0));
    default:
      return static_cast<std::int32_t>(stored.U32(0));
  }
}

void RowFilter::Add(const Column& column, Test test, std::vector<Wanted> wanted) {
  Condition condition{&column, test, {}, {}, {}};
  if (test == Test::kIsOneOf && wanted.size() > kLongList) {
    for (Wanted& one : wanted) {
      if (one.isText) {
        condition.texts.insert(std::move(one.text));
      } else {
        condition.numbers.insert(one.number);
      }
    }
  } else {
    condition.wanted = std::move(wanted);
  }
  m_conditions.push_back(std::move(condition));
  // Numbers compare faster than texts.
  std::stable_sort(m_conditions.begin(), m_conditions.end(), [](const Condition& a, const Condition& b) {
    return IsWholeNumber(a.column->type) && !IsWholeNumber(b.column->type);
  });
}

bool RowFilter::Passes(const Table& table, Condition& condition, const Bytes& stored) {
  const Column& column = *condition.column;
  if (IsWholeNumber(column.type)) {
    const std::int64_t number = WholeNumberOf(column, stored);
    if (!condition.numbers.empty()) return condition.numbers.contains(number);
    const bool is = std::any_of(condition.wanted.begin(), condition.wanted.end(),
                                [&](const Wanted& one) { return one.number == number; });
    return is == (condition.test != Test::kIsNot);
  }
  const bool direct =
      column.type == ColumnType::kText && !table.File().Format().jet3 && condition.texts.empty();
  if (direct && !(IsCompressed(stored) && std::memchr(stored.Data(), 0, stored.Size()) != nullptr)) {
    const bool compressed = IsCompressed(stored);
    return std::any_of(condition.wanted.begin(), condition.wanted.end(), [&](const Wanted& one) {
      return compressed ? one.hasLatin && Same(stored, one.latin) : Same(stored, one.unicode);
    });
  }
  m_text.clear();
  table.AppendText(m_text, column, stored);
  if (!condition.texts.empty()) return condition.texts.contains(m_text);
  return std::any_of(condition.wanted.begin(), condition.wanted.end(),
                     [&](const Wanted& one) { return one.text == m_text; });
}

bool RowFilter::Passes(const Table& table, const Marks& marks, const FoundRow& found) {
  for (Condition& condition : m_conditions) {
    if (condition.column->type == ColumnType::kYesNo) {
      const std::int64_t number = marks.At(found, *condition.column) ? 1 : 0;
      const bool is = condition.numbers.contains(number) ||
                      std::any_of(condition.wanted.begin(), condition.wanted.end(),
                                  [&](const Wanted& one) { return one.number == number; });
      if (is != (condition.test != Test::kIsNot)) return false;
      continue;
    }
    const auto stored = found.row.Stored(*condition.column);
    if (!stored || !Passes(table, condition, *stored)) return false;
  }
  return true;
}

}  // namespace kxrestore::engine::jet_file
