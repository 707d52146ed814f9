#include "engine/jet_file/decode.h"

#include <cmath>
#include <cstdio>

#include "engine/error_numbers.h"

namespace kxrestore::engine::jet_file {
namespace {

[[noreturn]] void RaiseUnreadable(const Table& table, const Column& column) {
  Raise(error_number::kInvalidFieldType, "Invalid field data type: the column '" + column.name + "' of '" +
                                             table.Definition().name + "' in '" + table.File().Path() +
                                             "' is of type " + std::to_string(static_cast<int>(column.type)) +
                                             (column.type == ColumnType::kComplex ? " (attachments)" : "") +
                                             ", which only the desktop database engine reads.");
}

ValueView WholeIfExact(double number) {
  if (number == std::floor(number) && std::fabs(number) < 9e15) return static_cast<std::int64_t>(number);
  return number;
}

// A sign byte and four words, most significant first.
double NumericOf(const Bytes& bytes, std::uint8_t scale) {
  double number = 0;
  for (std::size_t i = 0; i < 4; ++i) number = number * 4294967296.0 + bytes.U32(1 + 4 * i);
  number /= std::pow(10.0, scale);
  return (bytes.U8(0) & 0x80) != 0 ? -number : number;
}

std::string GuidText(const Bytes& bytes) {
  char text[40];
  const auto rest = [&](std::size_t i) { return static_cast<unsigned>(bytes.U8(8 + i)); };
  std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", bytes.U32(0),
                static_cast<unsigned>(bytes.U16(4)), static_cast<unsigned>(bytes.U16(6)), rest(0), rest(1),
                rest(2), rest(3), rest(4), rest(5), rest(6), rest(7));
  return text;
}

}  // namespace

bool IsWholeNumber(ColumnType type) {
  return type == ColumnType::kYesNo || type == ColumnType::kByte || type == ColumnType::kInteger ||
         type == ColumnType::kLong || type == ColumnType::kBigInteger;
}

bool CanDecode(ColumnType type) {
  const auto number = static_cast<int>(type);
  return (number >= 1 && number <= 12) || type == ColumnType::kGuid || type == ColumnType::kNumeric ||
         type == ColumnType::kBigInteger;
}

ValueView DecodeColumn(const Table& table, const FoundRow& found, const Column& column, std::string& text) {
  if (column.type == ColumnType::kYesNo) return std::int64_t{found.row.Bit(column) ? 1 : 0};
  const std::optional<Bytes> stored = found.row.Stored(column);
  if (!stored) return std::monostate();
  const Bytes& bytes = *stored;
  text.clear();
  switch (column.type) {
    case ColumnType::kByte:
      return std::int64_t{bytes.U8(0)};
    case ColumnType::kInteger:
      return std::int64_t{static_cast<std::int16_t>(bytes.U16(0))};
    case ColumnType::kLong:
      return std::int64_t{static_cast<std::int32_t>(bytes.U32(0))};
    case ColumnType::kBigInteger:
      return static_cast<std::int64_t>(bytes.U64(0));
    case ColumnType::kCurrency: {
      const auto scaled = static_cast<std::int64_t>(bytes.U64(0));
      if (scaled % 10000 == 0) return scaled / 10000;
      return static_cast<double>(scaled) / 10000;
    }
    case ColumnType::kSingle:
      return static_cast<double>(bytes.Single(0));
    case ColumnType::kDouble:
      return WholeIfExact(bytes.Double(0));
    case ColumnType::kNumeric:
      return WholeIfExact(NumericOf(bytes, column.scale));
    case ColumnType::kDate: {
      const auto date = DateOfSerial(bytes.Double(0));
      if (!date) bytes.RaiseDamaged("a date of '" + column.name + "' is none");
      text = ToText(*date);
      return std::string_view(text);
    }
    case ColumnType::kText:
    case ColumnType::kMemo:
      table.AppendText(text, column, bytes);
      return std::string_view(text);
    case ColumnType::kBinary:
      text = bytes.Text();
      return std::string_view(text);
    case ColumnType::kOle: {
      const std::vector<std::uint8_t> value = table.LongValue(bytes);
      text.assign(value.begin(), value.end());
      return std::string_view(text);
    }
    case ColumnType::kGuid:
      text = GuidText(bytes);
      return std::string_view(text);
    default:
      RaiseUnreadable(table, column);
  }
}

}  // namespace kxrestore::engine::jet_file
