#include "engine/jet_sql/reading/mask.h"

#include <utility>

#include "base/text.h"

namespace kxrestore::engine::jet_sql {
namespace {

using Kind = MaskElement::Kind;

// `list` is the text between the brackets.
void AppendList(std::vector<MaskElement>& elements, std::string_view list) {
  if (list.empty()) return;
  MaskElement element{.kind = Kind::kList};
  element.negated = list.front() == '!' && list.size() > 1;
  if (element.negated) list.remove_prefix(1);
  for (std::size_t position = 0; position < list.size();) {
    element.character = NextCharacter(list, position);
    char32_t first = FoldCase(element.character), last = first;
    if (position + 1 < list.size() && list[position] == '-') {
      last = FoldCase(NextCharacter(list, ++position));
      if (last < first) std::swap(first, last);
    }
    element.ranges.push_back({first, last});
  }
  const MaskElement::Range& only = element.ranges.front();
  if (element.ranges.size() == 1 && only.first == only.last && !element.negated) {
    element.kind = Kind::kLiteral;
    element.ranges.clear();
  }
  elements.push_back(std::move(element));
}

void Append(std::string& text, char32_t character, std::string_view escaped) {
  if (character < 0x80 && escaped.find(static_cast<char>(character)) != std::string_view::npos) text += '\\';
  AppendCharacter(text, character);
}

}  // namespace

std::vector<MaskElement> ParseMask(std::string_view mask) {
  std::vector<MaskElement> elements;
  for (std::size_t position = 0; position < mask.size();) {
    const char32_t character = NextCharacter(mask, position);
    const std::size_t close = character == '[' ? mask.find(']', position) : std::string_view::npos;
    if (close != std::string_view::npos) {
      AppendList(elements, mask.substr(position, close - position));
      position = close + 1;
    } else if (character != '*') {
      elements.push_back({.kind = character == '?'   ? Kind::kAnyOne
                                  : character == '#' ? Kind::kDigit
                                                     : Kind::kLiteral,
                          .character = character});
    } else if (elements.empty() || !elements.back().IsRun()) {
      elements.push_back({.kind = Kind::kAnyRun});
    }
  }
  return elements;
}

std::string PrintMask(const std::vector<MaskElement>& mask, const MaskSyntax& syntax) {
  std::string text;
  for (const MaskElement& element : mask) {
    switch (element.kind) {
      case Kind::kAnyRun:
        text += syntax.anyRun;
        break;
      case Kind::kAnyOne:
        text += syntax.anyOne;
        break;
      case Kind::kDigit:
        text += "[0-9]";
        break;
      case Kind::kLiteral:
        Append(text, element.character, syntax.literals);
        break;
      case Kind::kList:
        text += element.negated ? "[^" : "[";
        for (const auto& [first, last] : element.ranges) {
          Append(text, first, syntax.members);
          if (last == first) continue;
          text += '-';
          Append(text, last, syntax.members);
        }
        text += ']';
        break;
    }
  }
  return text;
}

}  // namespace kxrestore::engine::jet_sql
