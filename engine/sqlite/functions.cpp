#include "engine/sqlite/functions.h"

#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "base/sorting.h"
#include "base/text.h"
#include "engine/jet_sql/meaning/like_pattern.h"
#include "engine/jet_sql/printing/dialect.h"
#include "engine/sqlite/api.h"

namespace kxrestore::engine::sqlite {
namespace {

using jet_sql::LikePattern;

// The text of a value that is not null; nothing if SQLite is out of memory.
std::optional<std::string_view> TextOf(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (text == nullptr && sqlite3_value_type(value) == SQLITE_BLOB) return std::string_view();
  if (text == nullptr) return std::nullopt;
  return std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

bool IsNull(sqlite3_value* value) {
  return sqlite3_value_type(value) == SQLITE_NULL;
}

// No exception may pass through SQLite, so running out of memory is reported as its own error.
void Like(sqlite3_context* context, int, sqlite3_value** values) noexcept try {
  if (IsNull(values[0]) || IsNull(values[1])) return;
  const auto text = TextOf(values[0]);
  if (!text) return sqlite3_result_error_nomem(context);
  if (auto* pattern = static_cast<LikePattern*>(sqlite3_get_auxdata(context, 1))) {
    sqlite3_result_int(context, pattern->Matches(*text) ? 1 : 0);
    return;
  }
  const auto mask = TextOf(values[1]);
  if (!mask) return sqlite3_result_error_nomem(context);
  auto compiled = std::make_unique<LikePattern>(*mask);
  sqlite3_result_int(context, compiled->Matches(*text) ? 1 : 0);
  sqlite3_set_auxdata(context, 1, compiled.release(),
                      [](void* kept) { delete static_cast<LikePattern*>(kept); });
} catch (const std::bad_alloc&) {
  sqlite3_result_error_nomem(context);
}

// Positions are counted in characters.
void LastPlace(sqlite3_context* context, int, sqlite3_value** values) noexcept {
  if (IsNull(values[0]) || IsNull(values[1])) return;
  const auto text = TextOf(values[0]), piece = TextOf(values[1]);
  if (!text || !piece) return sqlite3_result_error_nomem(context);
  const std::size_t place = text->rfind(*piece);
  const bool found = place != std::string_view::npos;
  sqlite3_result_int64(context,
                       found ? static_cast<sqlite3_int64>(CharacterCount(text->substr(0, place))) + 1 : 0);
}

// Values other than texts are returned unchanged.
void Fold(sqlite3_context* context, int, sqlite3_value** values) noexcept try {
  if (sqlite3_value_type(values[0]) != SQLITE_TEXT) return sqlite3_result_value(context, values[0]);
  const auto text = TextOf(values[0]);
  if (!text) return sqlite3_result_error_nomem(context);
  const std::string folded = FoldCase(*text);
  sqlite3_result_text64(context, folded.data(), folded.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
} catch (const std::bad_alloc&) {
  sqlite3_result_error_nomem(context);
}

int Collate(void*, int leftSize, const void* left, int rightSize, const void* right) {
  return CompareForSorting({static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                           {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}

}  // namespace

int RegisterFunctions(sqlite3* connection) {
  using jet_sql::SqliteDialect;
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  const struct {
    const char* name;
    int arguments;
    void (*function)(sqlite3_context*, int, sqlite3_value**);
  } functions[] = {{SqliteDialect::kLikeFunction, 2, Like},
                   {SqliteDialect::kLastPlaceFunction, 2, LastPlace},
                   {SqliteDialect::kFoldFunction, 1, Fold}};
  for (const auto& [name, arguments, function] : functions) {
    const int code = sqlite3_create_function_v2(connection, name, arguments, kFlags, nullptr, function,
                                                nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) return code;
  }
  return sqlite3_create_collation_v2(connection, SqliteDialect::kCollation, SQLITE_UTF8, nullptr, Collate,
                                     nullptr);
}

}  // namespace kxrestore::engine::sqlite
