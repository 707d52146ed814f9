#include "engine/jet_sql/view_text.h"

#include <vector>

#include "base/text.h"
#include "engine/jet_sql/dialect.h"
#include "engine/jet_sql/lexer.h"
#include "engine/jet_sql/parser.h"
#include "engine/jet_sql/printer.h"

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

// x::character varying(20)[]: servers write down what they compared as.
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

// The tokens of SQLite, PostgreSQL and SQL Server, as far as they matter here. A comment counts as a blank,
// and so does a cast behind its value.
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
  } else if (c == '~' || text.substr(start, 3) == "!~~") {
    kind = Piece::Kind::kMatch;
    end = std::min(text.find_first_not_of("~*", end), text.size());
  } else if ((c == 'N' || c == 'n') && text.substr(end, 1) == "'") {
    kind = Piece::Kind::kBlank;  // SQL Server's mark of a text that is not of its code page
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

// 'a%b_' in the masks of the catalog's dialect, its quotes kept.
std::string MaskOf(std::string_view literal) {
  std::string mask;
  for (const char c : literal) {
    if (c == '%') {
      mask += '*';
    } else if (c == '_') {
      mask += '?';
    } else if (c == '*' || c == '?' || c == '#' || c == '[') {
      mask += {'[', c, ']'};
    } else {
      mask += c;
    }
  }
  return mask;
}

void AppendInDialect(std::string& result, const Piece& piece, bool afterLike) {
  if (piece.kind == Piece::Kind::kBlank) {
    result += IsBlank(piece.text.front()) ? piece.text : " ";
  } else if (piece.kind == Piece::Kind::kMatch) {
    result += piece.text.front() == '!' ? "Not Like" : "Like";
  } else if (piece.kind == Piece::Kind::kName && piece.text.size() > 2 && piece.text.front() != '[') {
    result += "[" + Unquoted(piece.text) + "]";
  } else if (piece.kind == Piece::Kind::kText && afterLike) {
    result += MaskOf(piece.text);
  } else {
    result += piece.text;
  }
}

}  // namespace

std::string QueryTextOfView(std::string_view createView) {
  std::string result;
  std::vector<std::string> names;  // CREATE VIEW name (names) AS
  bool inBody = false, inNames = false, afterLike = false;
  for (std::size_t position = 0; position < createView.size();) {
    const Piece piece = NextPiece(createView, position);
    position += piece.text.size();
    if (inBody) {
      AppendInDialect(result, piece, afterLike);
      if (piece.kind != Piece::Kind::kBlank) {
        afterLike = piece.kind == Piece::Kind::kMatch ||
                    (piece.kind == Piece::Kind::kWord && IsKeyword(piece.text, "LIKE"));
      }
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
    auto statement = Parse(result);
    auto& select = std::get<SelectStatement>(statement);
    auto& items = select.cores.front().items;
    for (std::size_t i = 0; i < names.size() && i < items.size(); ++i) items[i].alias = names[i];
    result = Print(select, SqliteDialect(true));
  }
  return result + ";";
}

}  // namespace kxrestore::engine::jet_sql
