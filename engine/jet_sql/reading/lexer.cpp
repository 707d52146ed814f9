#include "engine/jet_sql/reading/lexer.h"

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/reading/date_literal.h"
#include "engine/sql.h"

namespace kxrestore::engine::jet_sql {

bool IsWordStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsWordCharacter(char c) {
  return IsWordStart(c) || IsDigit(c) || c == '$';
}
bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsKeyword(std::string_view word, std::string_view keyword) {
  if (word.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const char upper = word[i] >= 'a' && word[i] <= 'z' ? static_cast<char>(word[i] - 32) : word[i];
    if (upper != keyword[i]) return false;
  }
  return true;
}

void RaiseSyntax(std::string_view what, std::string_view piece) {
  constexpr std::size_t kShown = 80;
  std::string shown(LeftCharacters(piece, kShown));
  if (shown.size() < piece.size()) shown += "...";
  for (char& c : shown) {
    if (c == '\0') c = ' ';
  }
  Raise(error_number::kSyntax, std::string(what) + " in query expression '" + shown + "'.");
}

namespace {

class Lexer {
 public:
  explicit Lexer(std::string_view source) : m_source(source) {}

  std::vector<Token> Run() {
    std::vector<Token> tokens;
    tokens.reserve(m_source.size() / 4 + 2);
    for (;;) {
      while (m_position < m_source.size() && IsBlank(m_source[m_position])) ++m_position;
      const std::size_t start = m_position;
      Token token;
      if (m_position < m_source.size()) Read(token);
      token.piece = m_source.substr(start, m_position - start);
      tokens.push_back(std::move(token));
      if (tokens.back().kind == TokenKind::kEnd) return tokens;
    }
  }

 private:
  char Peek(std::size_t ahead = 0) const {
    return m_position + ahead < m_source.size() ? m_source[m_position + ahead] : '\0';
  }

  void Read(Token& token) {
    const char c = Peek();
    if (IsWordStart(c)) {
      ReadWord(token);
    } else if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) {
      ReadNumber(token);
    } else if (c == '\'' || c == '"') {
      ReadText(token, c);
    } else if (c == '[') {
      ReadBracketed(token);
    } else if (c == '#') {
      ReadDate(token);
    } else if (c == Sql::kPlace) {
      token.kind = TokenKind::kParameter;
      ++m_position;
    } else {
      ReadSymbol(token);
    }
  }

  void ReadWord(Token& token) {
    const std::size_t start = m_position;
    while (m_position < m_source.size() && IsWordCharacter(m_source[m_position])) ++m_position;
    token.kind = TokenKind::kWord;
    token.value = m_source.substr(start, m_position - start);
  }

  void ReadNumber(Token& token) {
    const std::size_t start = m_position;
    while (IsDigit(Peek())) ++m_position;
    if (Peek() == '.') {
      ++m_position;
      while (IsDigit(Peek())) ++m_position;
    }
    if ((Peek() | 0x20) == 'e') {
      const std::size_t sign = Peek(1) == '+' || Peek(1) == '-' ? 1 : 0;
      if (IsDigit(Peek(1 + sign))) {
        m_position += 1 + sign;
        while (IsDigit(Peek())) ++m_position;
      }
    }
    if (IsWordCharacter(Peek())) RaiseSyntax("Syntax error (missing operator)", m_source.substr(start));
    token.kind = TokenKind::kNumber;
    token.value = m_source.substr(start, m_position - start);
  }

  void ReadText(Token& token, char quote) {
    const std::size_t start = m_position++;
    token.kind = TokenKind::kText;
    for (;;) {
      const std::size_t end = m_source.find(quote, m_position);
      if (end == std::string_view::npos) RaiseSyntax("Syntax error in string", m_source.substr(start));
      token.value.append(m_source.substr(m_position, end - m_position));
      m_position = end + 1;
      if (Peek() != quote) break;
      token.value.push_back(quote);
      ++m_position;
    }
    // It would be taken for the place of a value.
    if (token.value.find(Sql::kPlace) != std::string::npos) {
      RaiseSyntax("Syntax error in string", m_source.substr(start));
    }
  }

  void ReadBracketed(Token& token) {
    const std::size_t end = m_source.find(']', m_position);
    if (end == std::string_view::npos || end == m_position + 1) {
      RaiseSyntax("Invalid bracketing of name", m_source.substr(m_position));
    }
    token.kind = TokenKind::kBracketed;
    token.value = m_source.substr(m_position + 1, end - m_position - 1);
    m_position = end + 1;
  }

  void ReadDate(Token& token) {
    const std::size_t end = m_source.find('#', m_position + 1);
    if (end == std::string_view::npos) RaiseSyntax("Syntax error in date", m_source.substr(m_position));
    const auto date = ParseDateLiteral(m_source.substr(m_position + 1, end - m_position - 1));
    if (!date) RaiseSyntax("Syntax error in date", m_source.substr(m_position, end + 1 - m_position));
    token.kind = TokenKind::kDate;
    token.date = *date;
    m_position = end + 1;
  }

  void ReadSymbol(Token& token) {
    constexpr std::string_view kLong[] = {"<=", ">=", "<>", "!=", "==", "||"};
    constexpr std::string_view kShort = "(),.;=<>+-*/\\&%";
    token.kind = TokenKind::kSymbol;
    for (const std::string_view symbol : kLong) {
      if (m_source.substr(m_position, symbol.size()) == symbol) {
        m_position += symbol.size();
        return;
      }
    }
    if (Peek() == '\0' || kShort.find(Peek()) == std::string_view::npos) {
      RaiseSyntax("Syntax error", m_source.substr(m_position));
    }
    ++m_position;
  }

  std::string_view m_source;
  std::size_t m_position = 0;
};

}  // namespace

std::vector<Token> Tokenize(std::string_view source) {
  return Lexer(source).Run();
}

}  // namespace kxrestore::engine::jet_sql
