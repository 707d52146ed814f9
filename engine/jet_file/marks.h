// Setting and clearing yes/no bits of rows in place. Nothing else of a file is ever changed.
//
// What is set waits in memory and shows through At until it is written as a whole, in the order in which it
// was set: a program that dies meanwhile leaves the first of the marks, each whole.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "engine/jet_file/jet_file.h"
#include "engine/jet_file/write_access.h"

namespace kxrestore::engine::jet_file {

class Marks {
 public:
  Marks(JetFile& file, WaitForOther wait) : m_file(file), m_wait(std::move(wait)) {}

  // Gets the right to write, before anything is set. Errors: those of WriteAccess. Whether another program
  // has changed the file since rows were read.
  bool Begin();
  // Keeps the right to write until the end.
  void Keep() { m_kept = true; }

  // The value as it will be.
  bool At(const FoundRow& found, const Column& column) const;
  // Error 3027 for a row that has no such bit.
  void Set(const Table& table, const FoundRow& found, const Column& column, bool value);

  // What was set since a savepoint can be taken back. Savepoints are numbered from 0.
  void Save(std::size_t number);
  void TakeBackTo(std::size_t number);

  // Writes what waits, and has the system write it to the disk. What fails was not written, or in part: the
  // first marks.
  void Write();
  // Forgets what waits and lets others write.
  void End();

 private:
  struct Change {
    std::uint64_t offset;
    std::uint8_t bit;
    bool value;
  };
  static std::uint64_t PlaceOf(const FoundRow& found, const Column& column);
  void WritePage(std::size_t first, std::size_t last);

  JetFile& m_file;
  WaitForOther m_wait;
  bool m_kept = false;
  std::unique_ptr<WriteAccess> m_access;
  std::vector<Change> m_changes;
  // What Set has done, in its order: which change, and the value that it had, if it was there.
  struct Step {
    std::size_t change;
    bool isNew, before;
  };
  std::vector<Step> m_steps;
  std::vector<std::size_t> m_savepoints;                     // how many steps there were
  std::unordered_map<std::uint64_t, std::size_t> m_byPlace;  // offset * 8 + bit number
  std::vector<std::uint8_t> m_page;
};

}  // namespace kxrestore::engine::jet_file
