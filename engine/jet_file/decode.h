// Decodes stored bytes to values of the engine.
#pragma once

#include <string>

#include "engine/jet_file/table.h"
#include "engine/value.h"

namespace kxrestore::engine::jet_file {

// A column of a row. Texts and bytes are stored in `text`, which the value views; dates are texts "YYYY-MM-DD
// HH:MM:SS", as in catalog files. Currency and numeric values are integers if they have no fraction, else
// floating point. Error 3049 for bytes of a wrong size, 3259 for a type that only the desktop engine reads.
ValueView DecodeColumn(const Table& table, const FoundRow& found, const Column& column, std::string& text);

// Whether this back end reads values of this type.
bool CanDecode(ColumnType type);
bool IsWholeNumber(ColumnType type);
inline bool IsText(ColumnType type) {
  return type == ColumnType::kText || type == ColumnType::kMemo;
}
inline bool IsBytes(ColumnType type) {
  return type == ColumnType::kBinary || type == ColumnType::kOle;
}

}  // namespace kxrestore::engine::jet_file
