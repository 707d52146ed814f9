#include "engine/jet_sql/reading/view_text.h"

#include <algorithm>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/printing/dialect.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/reading/lexer.h"
#include "engine/jet_sql/reading/parser.h"
#include "engine/jet_sql/reading/source_text.h"

namespace kxrestore::engine::jet_sql {
namespace {

struct Piece {
  enum class Kind { kWord, kName, kText, kMatch, kOther, kBlank } kind;
  std::string_view text;
};

std::size_t QuotedEnd(std::string_view text, std::size_t start, char closing, bool doubled) {
  for (std::size_t i = start + 1; i < text.size(); ++i) {
    if (text[i] != closing) continue;
    if (!doubled || i + 1 == text.size() || text[i + 1] != closing) return i + 1;
    ++i;
  }
  return text.size();
}

// Finds the end of a cast such as x::character varying(20)[].
std::size_t CastEnd(std::string_view text, std::size_t start) {
  std::size_t end = start + 2;
  const auto word = [&] {
    std::size_t next = end;
    while (next < text.size() && (IsWordCharacter(text[next]) || text[next] == '"')) ++next;
    return text.substr(end, next - end);
  };
  end += word().size();
  for (;;) {
    const std::size_t before = end;
    if (end < text.size() && text[end] == '(') end = std::min(text.find(')', end), text.size() - 1) + 1;
    if (text.substr(end, 2) == "[]") end += 2;
    if (end >= text.size() || text[end] != ' ') return end;
    ++end;
    const std::string_view more = word();
    bool belongs = false;
    for (const char* name : {"VARYING", "PRECISION", "WITHOUT", "WITH", "TIME", "ZONE"}) {
      belongs = belongs || IsKeyword(more, name);
    }
    if (!belongs) return before;
    end += more.size();
  }
}

// Splits off the next token of SQLite, PostgreSQL or SQL Server. Comments and casts count as blanks.
Piece NextPiece(std::string_view text, std::size_t start) {
  const char c = text[start];
  std::size_t end = start + 1;
  Piece::Kind kind = Piece::Kind::kOther;
  if (IsBlank(c)) {
    kind = Piece::Kind::kBlank;
    while (end < text.size() && IsBlank(text[end])) ++end;
  } else if (text.substr(start, 2) == "--") {
    kind = Piece::Kind::kBlank;
    end = std::min(text.find('\n', start), text.size());
  } else if (text.substr(start, 2) == "/*") {
    kind = Piece::Kind::kBlank;
    const std::size_t close = text.find("*/", start + 2);
    end = close == std::string_view::npos ? text.size() : close + 2;
  } else if (text.substr(start, 2) == "::") {
    kind = Piece::Kind::kBlank;
    end = CastEnd(text, start);
  } else if (text.substr(start, 2) == "~~" || text.substr(start, 3) == "!~~") {
    kind = Piece::Kind::kMatch;
    end = std::min(text.find_first_not_of("~*", end), text.size());
  } else if ((c == 'N' || c == 'n') && text.substr(end, 1) == "'") {
    kind = Piece::Kind::kBlank;  // SQL Server's N'national text'
  } else if (c == '\'') {
    kind = Piece::Kind::kText;
    end = QuotedEnd(text, start, '\'', true);
  } else if (c == '"' || c == '`') {
    kind = Piece::Kind::kName;
    end = QuotedEnd(text, start, c, true);
  } else if (c == '[') {
    kind = Piece::Kind::kName;
    end = QuotedEnd(text, start, ']', false);
  } else if (IsWordStart(c)) {
    kind = Piece::Kind::kWord;
    while (end < text.size() && IsWordCharacter(text[end])) ++end;
  }
  return {kind, text.substr(start, end - start)};
}

std::string Unquoted(std::string_view quoted) {
  const char closing = quoted.back();
  std::string text;
  for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
    text += quoted[i];
    if (closing != ']' && quoted[i] == closing) ++i;
  }
  return text;
}

struct Sign {
  char c;
  bool escaped;
  bool Is(char plain) const { return c == plain && !escaped; }
};

std::vector<Sign> SignsOf(std::string_view mask, char escape) {
  std::vector<Sign> signs;
  for (std::size_t i = 0; i < mask.size(); ++i) {
    const bool escaped = escape != '\0' && mask[i] == escape && i + 1 < mask.size();
    if (escaped) ++i;
    signs.push_back({mask[i], escaped});
  }
  return signs;
}

// Converts a quoted LIKE pattern to a quoted mask.
std::string MaskOf(std::string_view literal, char escape, bool hasLists) {
  const std::vector<Sign> signs = SignsOf(Unquoted(literal), escape);
  std::string mask;
  for (auto sign = signs.begin(); sign != signs.end(); ++sign) {
    const auto close = hasLists && sign->Is('[')
                           ? std::find_if(sign, signs.end(), [](const Sign& one) { return one.Is(']'); })
                           : signs.end();
    if (close != signs.end()) {
      const bool negated = (++sign)->Is('^');
      std::string members;
      for (sign += negated ? 1 : 0; sign != close; ++sign) members += sign->c;
      // A leading "!" would negate the list.
      if (members.starts_with('!')) std::rotate(members.begin(), members.begin() + 1, members.end());
      mask += (negated ? "[!" : "[") + members + "]";
    } else if (sign->Is('%')) {
      mask += '*';
    } else if (sign->Is('_')) {
      mask += '?';
    } else if (sign->c == '*' || sign->c == '?' || sign->c == '#' || sign->c == '[') {
      mask += {'[', sign->c, ']'};
    } else {
      mask += sign->c;
    }
  }
  return SqliteDialect(true).Text(mask);
}

void AppendInDialect(std::string& result, const Piece& piece) {
  if (piece.kind == Piece::Kind::kBlank) {
    result += IsBlank(piece.text.front()) ? piece.text : " ";
  } else if (piece.kind == Piece::Kind::kMatch) {
    result += piece.text.front() == '!' ? "Not Like" : "Like";
  } else if (piece.kind == Piece::Kind::kName && piece.text.size() > 2 && piece.text.front() != '[') {
    result += "[" + Unquoted(piece.text) + "]";
  } else {
    result += piece.text;
  }
}

// Iterates over the tokens of a text.
class Reader {
 public:
  explicit Reader(std::string_view text) : m_text(text) {}

  bool AtEnd() const { return m_position == m_text.size(); }
  Piece Next() {
    const Piece piece = NextPiece(m_text, m_position);
    m_position += piece.text.size();
    return piece;
  }

  // Reads ESCAPE 'x' after a mask and returns its character; `usual` if there is none.
  char Escape(char usual) {
    Reader ahead = *this;
    const Piece word = ahead.NextNotBlank();
    if (word.kind != Piece::Kind::kWord || !IsKeyword(word.text, "ESCAPE")) return usual;
    const Piece sign = ahead.NextNotBlank();
    const std::string text = sign.kind == Piece::Kind::kText ? Unquoted(sign.text) : "";
    if (text.size() != 1) Raise(error_number::kSyntax, "Syntax error in query: ESCAPE without its sign.");
    *this = ahead;
    return text.front();
  }

  // Consumes "(ARRAY[" if it comes next.
  bool ArrayStart() {
    Reader ahead = *this;
    if (ahead.NextNotBlank().text != "(" || !IsKeyword(ahead.NextNotBlank().text, "ARRAY")) return false;
    if (!ahead.IsAt('[')) return false;
    ++ahead.m_position;
    *this = ahead;
    return true;
  }

  bool IsAt(char c) const { return !AtEnd() && m_text[m_position] == c; }

 private:
  Piece NextNotBlank() {
    Piece piece{Piece::Kind::kBlank, {}};
    while (!AtEnd() && piece.kind == Piece::Kind::kBlank) piece = Next();
    return piece;
  }

  std::string_view m_text;
  std::size_t m_position = 0;
};

// PostgreSQL writes In and Not In as = ANY (ARRAY[...]) and <> ALL (ARRAY[...]). Called after "ARRAY[".
void ReplaceByIn(std::string& result, bool any) {
  const std::string_view sign = any ? "=" : "<>";
  while (!result.empty() && IsBlank(result.back())) result.pop_back();
  if (!result.ends_with(sign)) Raise(error_number::kSyntax, "Syntax error in query: a list is compared.");
  result.resize(result.size() - sign.size());
  result += any ? "In (" : "Not In (";
}

// The catalog's own dialect: masks and functions stay as they are.
class CatalogDialect final : public SqliteDialect {
 public:
  CatalogDialect() : SqliteDialect(true, kOwnWords) {}
  PrintedSql Like(const PrintedSql& operand, const Expression& /*pattern*/, const PrintedSql& printed,
                  bool negated) const override {
    return operand + (negated ? " Not Like " : " Like ") + printed;
  }

 private:
  static constexpr DialectWords kOwnWords = [] {
    DialectWords words = kWords;
    words.functions = nullptr;
    return words;
  }();
};

}  // namespace

std::string QueryTextOfView(std::string_view createView, const LikeSigns& signs) {
  std::string result;
  std::vector<std::string> names;  // CREATE VIEW name (names) AS
  bool inBody = false, inNames = false, afterLike = false, inArray = false;
  for (Reader reader(createView); !reader.AtEnd();) {
    const Piece piece = reader.Next();
    if (inBody && afterLike && piece.kind != Piece::Kind::kBlank) {
      // A computed pattern cannot be translated.
      if (piece.kind != Piece::Kind::kText) {
        Raise(error_number::kSyntax,
              "Syntax error in query: the mask at '" + std::string(piece.text) + "' is not a text.");
      }
      result += MaskOf(piece.text, reader.Escape(signs.escape), signs.hasLists);
      afterLike = false;
      continue;
    }
    if (inBody) {
      const bool isWord = piece.kind == Piece::Kind::kWord;
      const bool any = isWord && IsKeyword(piece.text, "ANY"), all = isWord && IsKeyword(piece.text, "ALL");
      if ((any || all) && reader.ArrayStart()) {
        ReplaceByIn(result, any);
        inArray = true;
      } else if (inArray && piece.text == "]") {
        inArray = false;
      } else if (piece.text.front() == '"' && reader.IsAt('(')) {
        result += Unquoted(piece.text);  // a function whose name is a keyword
      } else {
        AppendInDialect(result, piece);
      }
      afterLike = afterLike || piece.kind == Piece::Kind::kMatch || (isWord && IsKeyword(piece.text, "LIKE"));
      continue;
    }
    if (piece.text == "(") inNames = true;
    if (piece.text == ")") inNames = false;
    if (inNames && piece.kind == Piece::Kind::kWord) names.emplace_back(piece.text);
    if (inNames && piece.kind == Piece::Kind::kName) names.push_back(Unquoted(piece.text));
    inBody = !inNames && piece.kind == Piece::Kind::kWord && IsKeyword(piece.text, "AS");
  }
  while (!result.empty() && (IsBlank(result.back()) || result.back() == ';')) result.pop_back();
  result.erase(0, std::min(result.find_first_not_of(" \t\r\n\v\f"), result.size()));
  if (!names.empty()) {
    Statement statement = ParseReading(result);
    auto& items = std::get<SelectStatement>(statement).cores.front().items;
    for (std::size_t i = 0; i < names.size() && i < items.size(); ++i) items[i].alias = names[i];
    result = Print(statement, CatalogDialect());
  }
  return result + ";";
}

}  // namespace kxrestore::engine::jet_sql
