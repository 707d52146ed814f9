#include "engine/jet_sql/printing/server_dialects.h"

namespace kxrestore::engine::jet_sql {

std::string ServerDialect::Identifier(std::string_view name) const {
  std::string quoted(1, m_openQuote);
  for (const char c : name) {
    if (c == m_closeQuote) quoted += c;
    quoted += c;
  }
  return quoted + m_closeQuote;
}

}  // namespace kxrestore::engine::jet_sql
