// Sets and clears yes/no bits of rows in place. Nothing else in a file is ever modified.
//
// Changes are collected in memory, visible through At, until they are written as a whole, in the order in
// which they were made: a crash meanwhile leaves the first of the marks, each complete.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "engine/jet_file/jet_file.h"
#include "engine/jet_file/write_access.h"

namespace kxrestore::engine::jet_file {

class Marks {
 public:
  Marks(JetFile& file, WaitForOther wait) : m_file(file), m_wait(std::move(wait)) {}

  // Acquires the right to write; call before changing anything. Returns whether another program has changed
  // the file since rows were read. Errors: those of WriteAccess.
  bool Begin();
  // Keeps the right to write until the end.
  void Keep() { m_kept = true; }

  // The value including pending changes.
  bool At(const FoundRow& found, const Column& column) const;
  // Error 3027 for a row without this bit, 3197 when the row's page is no longer what was read.
  void Set(const Table& table, const FoundRow& found, const Column& column, bool value);

  // Changes since a savepoint can be rolled back. Savepoints are numbered from 0.
  void Save(std::size_t number);
  void TakeBackTo(std::size_t number);

  // Writes pending changes and syncs. After an error nothing is written, or only the first of the marks.
  void Write();
  // Discards pending changes and releases the right to write.
  void End();

 private:
  struct Change {
    std::uint64_t offset;
    std::uint8_t bit;
    bool value;
  };
  static std::uint64_t PlaceOf(const FoundRow& found, const Column& column);
  void CheckPage(const Page& page);
  void WritePage(std::size_t first, std::size_t last);

  JetFile& m_file;
  WaitForOther m_wait;
  bool m_kept = false;
  std::unique_ptr<WriteAccess> m_access;
  std::vector<Change> m_changes;
  // The history of Set, in order: which change, and its previous pending value, if any.
  struct Step {
    std::size_t change;
    bool isNew, before;
  };
  std::vector<Step> m_steps;
  std::vector<std::size_t> m_savepoints;                     // how many steps there were
  std::unordered_map<std::uint64_t, std::size_t> m_byPlace;  // offset * 8 + bit number
  std::unordered_set<std::uint32_t> m_checked;               // pages
  bool m_readAgain = false;                                  // a page was not what was read
  std::vector<std::uint8_t> m_page;
};

}  // namespace kxrestore::engine::jet_file
