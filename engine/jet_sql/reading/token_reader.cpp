#include "engine/jet_sql/reading/token_reader.h"

#include <algorithm>
#include <array>

namespace kxrestore::engine::jet_sql {
namespace {

constexpr int kMaxDepth = 120;

constexpr std::array<std::string_view, 46> kReserved = {
    "ALL",   "AND",      "AS",          "ASC",  "BETWEEN", "BY",     "CASE",  "CAST",   "CROSS", "DELETE",
    "DESC",  "DISTINCT", "DISTINCTROW", "ELSE", "END",     "EXISTS", "FROM",  "FULL",   "GROUP", "HAVING",
    "IN",    "INNER",    "INSERT",      "INTO", "IS",      "JOIN",   "LEFT",  "LIKE",   "LIMIT", "MOD",
    "NOT",   "NULL",     "ON",          "OR",   "ORDER",   "OUTER",  "RIGHT", "SELECT", "SET",   "THEN",
    "UNION", "UPDATE",   "VALUES",      "WHEN", "WHERE",   "WITH"};

}  // namespace

const Token& TokenReader::Ahead(std::size_t count) const {
  return m_tokens[std::min(m_index + count, m_tokens.size() - 1)];
}

const Token& TokenReader::Advance() {
  const Token& token = m_tokens[m_index];
  if (m_index + 1 < m_tokens.size()) ++m_index;
  return token;
}

bool TokenReader::IsWord(const Token& token, std::string_view keyword) {
  return token.kind == TokenKind::kWord && IsKeyword(token.value, keyword);
}

bool TokenReader::IsSymbol(const Token& token, std::string_view symbol) {
  return token.kind == TokenKind::kSymbol && token.piece == symbol;
}

bool TokenReader::IsReserved(std::string_view word) {
  return std::any_of(kReserved.begin(), kReserved.end(),
                     [word](std::string_view keyword) { return IsKeyword(word, keyword); });
}

bool TokenReader::TakeWord(std::string_view keyword) {
  if (!IsWord(Current(), keyword)) return false;
  Advance();
  return true;
}

bool TokenReader::TakeSymbol(std::string_view symbol) {
  if (!IsSymbol(Current(), symbol)) return false;
  Advance();
  return true;
}

void TokenReader::NeedWord(std::string_view keyword) {
  if (!TakeWord(keyword)) RaiseHere("Syntax error (" + std::string(keyword) + " expected)");
}

void TokenReader::NeedSymbol(std::string_view symbol) {
  if (!TakeSymbol(symbol)) RaiseHere("Syntax error ('" + std::string(symbol) + "' expected)");
}

bool TokenReader::AtName() const {
  return Current().kind == TokenKind::kBracketed ||
         (Current().kind == TokenKind::kWord && !IsReserved(Current().value));
}

std::string TokenReader::NeedName() {
  if (!AtName()) RaiseHere("Syntax error (name expected)");
  return Advance().value;
}

std::string TokenReader::NeedMember() {
  if (Current().kind != TokenKind::kBracketed && Current().kind != TokenKind::kWord) {
    RaiseHere("Syntax error (name expected)");
  }
  return Advance().value;
}

std::string TokenReader::NeedTableName() {
  std::string name = NeedName();
  if (TakeSymbol(".")) name = NeedMember();
  return name;
}

std::string TokenReader::TakeAlias() {
  if (TakeWord("AS")) return NeedName();
  return AtName() ? Advance().value : std::string();
}

std::string_view TokenReader::Rest() const {
  return m_source.substr(static_cast<std::size_t>(Current().piece.data() - m_source.data()));
}

// At the end of the text, shows its last piece.
void TokenReader::RaiseHere(std::string_view what) const {
  constexpr std::size_t kShown = 40;
  const bool atEnd = Current().kind == TokenKind::kEnd;
  RaiseSyntax(what, atEnd ? m_source.substr(m_source.size() - std::min(m_source.size(), kShown)) : Rest());
}

TokenReader::DepthGuard::DepthGuard(TokenReader& reader) : m_reader(reader) {
  if (++m_reader.m_depth <= kMaxDepth) return;
  --m_reader.m_depth;
  m_reader.RaiseHere("Expression too complex");
}

}  // namespace kxrestore::engine::jet_sql
