// Stored bytes as values of the engine.
#pragma once

#include <string>

#include "engine/jet_file/table.h"
#include "engine/value.h"

namespace kxrestore::engine::jet_file {

// A column of a found row. Texts and bytes are put into `text`, which the value then views; dates are texts
// "YYYY-MM-DD HH:MM:SS", as catalog files have them. Currency and numeric columns are whole numbers where
// they have no fraction, else floating point. Error 3049 for bytes of a wrong size, 3259 for a type that only
// the desktop engine reads.
ValueView DecodeColumn(const Table& table, const FoundRow& found, const Column& column, std::string& text);

// Whether it is a type whose values this back end reads.
bool CanDecode(ColumnType type);
bool IsWholeNumber(ColumnType type);
inline bool IsText(ColumnType type) {
  return type == ColumnType::kText || type == ColumnType::kMemo;
}
inline bool IsBytes(ColumnType type) {
  return type == ColumnType::kBinary || type == ColumnType::kOle;
}

// Days since 1899-12-30; the fraction counts forwards on either side of it. Empty when the date is none.
std::string DateText(double days);

}  // namespace kxrestore::engine::jet_file
