#include "catalog/type_counts.h"

#include <algorithm>

#include "base/text.h"

namespace kxrestore::catalog {

void TypeCounts::AddType(std::string_view extension, FileKind kind) {
  std::size_t letter = 0;
  for (const char character : extension) {
    auto& next = m_letters[letter].next;
    const auto known =
        std::find_if(next.begin(), next.end(), [&](const auto& edge) { return edge.first == character; });
    if (known != next.end()) {
      letter = known->second;
      continue;
    }
    next.emplace_back(character, m_letters.size());
    letter = m_letters.size();
    m_letters.emplace_back();
  }
  m_letters[letter].type = m_types.size();
  m_types.push_back({{}, kind});
}

void TypeCounts::Count(std::string_view name) {
  m_folded.clear();
  AppendFolded(m_folded, name);
  ++m_name;
  const auto count = [this](Counter& counter) {
    if (std::exchange(counter.lastName, m_name) != m_name) ++counter.files;
  };
  for (std::size_t point = m_folded.find('.'); point != std::string::npos;
       point = m_folded.find('.', point + 1)) {
    std::size_t letter = 0;
    for (std::size_t i = point + 1; i < m_folded.size(); ++i) {
      const auto& next = m_letters[letter].next;
      const auto edge =
          std::find_if(next.begin(), next.end(), [&](const auto& each) { return each.first == m_folded[i]; });
      if (edge == next.end()) break;
      letter = edge->second;
      if (m_letters[letter].type == Letter::kNoType) continue;
      Type& type = m_types[m_letters[letter].type];
      count(type);
      count(m_kinds[static_cast<std::size_t>(type.kind)]);
    }
  }
}

}  // namespace kxrestore::catalog
