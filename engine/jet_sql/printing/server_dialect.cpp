#include <charconv>

#include "engine/jet_sql/printing/server_dialects.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr char kParameterMark = '\x01';

}  // namespace

std::string ServerDialect::Identifier(std::string_view name) const {
  std::string quoted(1, m_openQuote);
  for (const char c : name) {
    if (c == m_closeQuote) quoted += c;
    quoted += c;
  }
  return quoted + m_closeQuote;
}

std::string ServerDialect::Parameter(std::int64_t number) const {
  return kParameterMark + std::to_string(number) + kParameterMark;
}

std::vector<std::int64_t> ServerDialect::NumberParameters(std::string& sql) {
  std::vector<std::int64_t> numbers;
  std::string result;
  std::size_t copied = 0;
  for (std::size_t mark; (mark = sql.find(kParameterMark, copied)) != std::string::npos;) {
    const std::size_t end = sql.find(kParameterMark, mark + 1);
    result.append(sql, copied, mark - copied) += '?';
    std::from_chars(sql.data() + mark + 1, sql.data() + end, numbers.emplace_back());
    copied = end + 1;
  }
  result.append(sql, copied);
  sql = std::move(result);
  return numbers;
}

}  // namespace kxrestore::engine::jet_sql
