// An endless depth-first walk over the files of an invented computer, as a backup would meet them. The same
// seed gives the same walk; no two files of a walk have the same path.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/catalog_maker/random.h"

namespace kxrestore::sample {

class FolderWalk {
 public:
  struct Shape {
    std::uint64_t filesOnFirstDrive = UINT64_MAX;  // after this many files the walk moves from C:\ to D:\.
    bool flat = false;                             // all files in one folder
  };
  FolderWalk(std::uint64_t seed, Shape shape);

  // The current file; the walk starts on one.
  const std::string& Folder() const { return m_folder; }  // ends in a backslash
  const std::string& Name() const { return m_name; }
  std::int64_t Size() const { return m_size; }
  std::int64_t Modified() const { return m_modified; }  // before any run of the sample
  int Attributes() const { return m_attributes; }

  void Next();

 private:
  struct Level {
    std::size_t pathLength;  // of m_folder with this folder's name
    std::uint32_t firstName;
    std::uint32_t children = 0;
  };

  void StartDrive(char letter);
  void NextFolder();
  void EnterChild();
  void MakeFile();

  Random m_random;
  Shape m_shape;
  std::uint64_t m_count = 0;
  std::vector<Level> m_levels;
  std::string m_folder;
  std::uint32_t m_filesLeft = 0;
  std::uint32_t m_fileNumber = 0;
  std::uint32_t m_firstStem = 0;
  std::uint32_t m_flavour = 0;

  std::string m_name;
  std::int64_t m_size = 0;
  std::int64_t m_modified = 0;
  int m_attributes = 0;
};

}  // namespace kxrestore::sample
