// Walks the tokens of one statement; the common base of the parsers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/reading/lexer.h"

namespace kxrestore::engine::jet_sql {

class TokenReader {
 public:
  explicit TokenReader(std::string_view source) : m_source(source), m_tokens(Tokenize(source)) {}

 protected:
  ~TokenReader() = default;

  const Token& Current() const { return m_tokens[m_index]; }
  const Token& Ahead(std::size_t count = 1) const;
  const Token& Advance();

  static bool IsWord(const Token& token, std::string_view keyword);
  static bool IsSymbol(const Token& token, std::string_view symbol);
  static bool IsReserved(std::string_view word);  // a name only in brackets or after a point
  bool TakeWord(std::string_view keyword);
  bool TakeSymbol(std::string_view symbol);
  void NeedWord(std::string_view keyword);
  void NeedSymbol(std::string_view symbol);

  bool AtName() const;
  std::string NeedName();
  std::string NeedMember();     // after a point every word is a name
  std::string NeedTableName();  // without the schema
  std::string TakeAlias();

  std::string_view Rest() const;
  [[noreturn]] void RaiseHere(std::string_view what) const;

  // Limits the nesting depth.
  class DepthGuard {
   public:
    explicit DepthGuard(TokenReader& reader);
    ~DepthGuard() { --m_reader.m_depth; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;

   private:
    TokenReader& m_reader;
  };

 private:
  std::string_view m_source;
  std::vector<Token> m_tokens;
  std::size_t m_index = 0;
  int m_depth = 0;
};

}  // namespace kxrestore::engine::jet_sql
