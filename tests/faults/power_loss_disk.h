// What a disk holds after a power failure. While an object lives, everything that SQLite does to the files of
// one folder is written down, and at any moment the folder can be made again as a failure would leave it: of
// what was not synced, some has reached the disk and some has not. New and deleted names count as synced when
// their folder is.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace kxrestore::faults {

class PowerLossDisk {
 public:
  // The files that are there are safe. `step` is called before each change of a file or of the folder.
  PowerLossDisk(std::string folder, std::function<void()> step);
  ~PowerLossDisk();
  PowerLossDisk(const PowerLossDisk&) = delete;
  PowerLossDisk& operator=(const PowerLossDisk&) = delete;

  // How many of the unsynced changes have reached the disk.
  enum class Reached { kNone, kSome, kAll };
  // Makes the folder `target` as it would be found if power failed now. `seed` chooses what has reached it.
  void Fail(const std::string& target, Reached reached, unsigned seed) const;

  std::size_t Syncs() const;

  struct Model;

 private:
  std::unique_ptr<Model> m_model;
};

}  // namespace kxrestore::faults
