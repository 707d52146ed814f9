// What the detail tree tells of its nodes beside their names: tips with size, date and sums, and the badge of
// files that are marked already.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

// The folders and the name of a node, as one path. Plug-in headings count as folders.
std::string PathOf(controls::Node node);

class NodeInfo {
 public:
  // Takes over the tree's tips and badges.
  explicit NodeInfo(FormContext& context);

  // Another run's files are in the tree.
  void RunChanged();
  // The restore list was filled anew: what it lists of the run shown wears the badge.
  void MarksListed();

  // The path, and below it the size, date and mark of a file, or the number of files in a folder, with its
  // bytes once they have been summed up. A catalog that cannot be asked is not asked again for this run.
  std::string Tip(controls::Node node);

  // Whether SumUp can tell the files of a branch: a folder, or the whole of a plug-in.
  bool CanSumUp(controls::Node branch) const;
  // Adds up the files of a branch and says so. Reports its own errors; nothing when the user stops it.
  void SumUp(controls::Node branch);

 private:
  struct Sum {
    std::int64_t files = 0, bytes = 0;
  };
  std::string FileLines(controls::Node file);
  std::string FolderLine(controls::Node folder) const;
  bool Add(controls::Node branch, Sum& sum);
  bool IsFolder(controls::Node branch) const;  // of a drive, not of a plug-in
  bool IsMarked(controls::Node node);
  void ReadMarked();

  FormContext& m_context;
  bool m_askCatalog = true;
  std::unordered_map<std::uint32_t, Sum> m_sums;  // by the branch's index
  bool m_markedKnown = true;
  std::vector<std::uint64_t> m_marked;  // hashes of stored names, sorted
};

}  // namespace kxrestore::dialog
