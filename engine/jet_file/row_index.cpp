#include "engine/jet_file/row_index.h"

#include <bit>
#include <cstring>

#include "engine/jet_file/decode.h"

namespace kxrestore::engine::jet_file {
namespace {

constexpr std::size_t kRowsBetweenTurns = 4096;
constexpr std::uint64_t kMix = 0x9E3779B97F4A7C15;

std::uint64_t Mixed(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * kMix;
  return hash ^ hash >> 29;
}

std::uint64_t HashOf(std::uint64_t hash, std::string_view text) {
  while (text.size() >= 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data(), 8);
    hash = Mixed(hash, word);
    text.remove_prefix(8);
  }
  std::uint64_t word = text.size() + 1;
  for (const char c : text) word = word << 8 | static_cast<unsigned char>(c);
  return Mixed(hash, word);
}

std::uint64_t Finished(std::uint64_t hash) {
  return Mixed(hash, hash >> 32);
}

}  // namespace

bool RowIndex::Build(Table& table, const std::vector<const Column*>& columns,
                     const std::function<bool()>& turn) {
  struct Hashed {
    std::uint64_t hash, home;
  };
  std::vector<Hashed> rows;
  FoundRow found;
  std::string text;
  std::size_t seen = 0;
  for (Table::Walk walk(table); walk.Next(found);) {
    if (++seen % kRowsBetweenTurns == 0 && !turn()) return false;
    std::uint64_t hash = 0;
    bool hasNull = false;
    for (const Column* column : columns) {
      const auto stored = found.row.Stored(*column);
      if (!stored) {
        hasNull = true;  // NULL equals nothing
        break;
      }
      if (IsWholeNumber(column->type)) {
        hash = Mixed(hash, static_cast<std::uint64_t>(WholeNumberOf(*column, *stored)));
      } else {
        text.clear();
        table.AppendText(text, *column, *stored);
        hash = HashOf(hash, text);
      }
    }
    if (!hasNull) rows.push_back({Finished(hash), std::uint64_t{found.home.page} << 8 | found.home.slot});
  }
  // About one row in each bucket, at least two buckets.
  m_shift = 64 - static_cast<unsigned>(std::bit_width(rows.size() | 1));
  m_starts.assign((std::size_t{1} << (64 - m_shift)) + 1, 0);
  for (const Hashed& row : rows) ++m_starts[BucketOf(row.hash) + 1];
  for (std::size_t i = 1; i < m_starts.size(); ++i) m_starts[i] += m_starts[i - 1];
  m_entries.resize(rows.size());
  std::vector<std::uint32_t> next(m_starts.begin(), m_starts.end() - 1);
  for (const Hashed& row : rows) m_entries[next[BucketOf(row.hash)]++] = row.home;
  return true;
}

std::span<const std::uint64_t> RowIndex::Find(const std::vector<Wanted>& wanted) const {
  std::uint64_t hash = 0;
  for (const Wanted& one : wanted) {
    hash = one.isText ? HashOf(hash, one.text) : Mixed(hash, static_cast<std::uint64_t>(one.number));
  }
  const std::size_t bucket = BucketOf(Finished(hash));
  return {m_entries.data() + m_starts[bucket], m_entries.data() + m_starts[bucket + 1]};
}

}  // namespace kxrestore::engine::jet_file
