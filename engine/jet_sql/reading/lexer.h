// Tokens of the catalog's SQL dialect. Every failure is error 3075 naming the offending piece.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "engine/value.h"

namespace kxrestore::engine::jet_sql {

enum class TokenKind {
  kEnd,
  kWord,       // name or keyword
  kBracketed,  // [name]
  kText,       // 'text' or "text", quotes doubled inside
  kNumber,
  kDate,       // #11/16/2026 2:25 PM# or #2026-11-16#
  kParameter,  // the place of a value
  kSymbol,     // an operator or a punctuation mark, as it stands in `piece`
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::string_view piece;  // as it stands in the source
  std::string value;       // name, text or number without its quotes
  DateTime date;
};

std::vector<Token> Tokenize(std::string_view source);

bool IsWordStart(char c);
bool IsWordCharacter(char c);
bool IsDigit(char c);
bool IsBlank(char c);

// Compares with a keyword that is given in capitals.
bool IsKeyword(std::string_view word, std::string_view keyword);

[[noreturn]] void RaiseSyntax(std::string_view what, std::string_view piece);

}  // namespace kxrestore::engine::jet_sql
