// Details of the nodes in the detail tree: tips with size, date and totals, and the badge of files that are
// already marked.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

// The path of a node. Plug-in headings count as folders.
std::string PathOf(controls::Node node);

class NodeInfo {
 public:
  // Handles the tree's tips and badges.
  explicit NodeInfo(FormContext& context);

  // Called when the tree shows another run.
  void RunChanged();
  // Called after the restore list was refilled: the files that it lists of the run shown get the badge.
  void MarksListed();

  // The path, and below it the size, date and mark of a file, or the number of files in a folder with their
  // total size once that is known. After a failed query the catalog is not queried again for this run.
  std::string Tip(controls::Node node);

  // Whether SumUp works on a node: a folder, or the root of a plug-in.
  bool CanSumUp(controls::Node branch) const;
  // Adds up the files of a branch and shows the result. Reports its own errors; shows nothing when the user
  // stops it.
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
