// Creating items: the pieces in which folders are opened, and their order.
#include "platform/win32/tree/tree_items.h"

namespace kxrestore::win32 {

using controls::Node;

namespace {

constexpr std::uint32_t kMinPiece = 256;  // more than a window shows
constexpr auto kOpeningTime = std::chrono::milliseconds(50);

}  // namespace

void TreeItems::MakeItem(std::uint32_t node, HTREEITEM parent, HTREEITEM after) {
  const Node shown = At(node);
  const UINT state = m_state | (shown.Expanded() ? TVIS_EXPANDED : 0U) | (shown.Bold() ? TVIS_BOLD : 0U);
  const HTREEITEM item = m_native.Insert(parent, after, node, shown.Text(), state);
  if (item == nullptr) return;
  if (node >= m_items.size()) m_items.resize(node + std::size_t{1});
  m_items[node] = item;
  ++m_count;
}

bool TreeItems::WantsOpening(std::uint32_t node) const {
  if (ItemOf(node) == nullptr || Has(node, kOpened)) return false;
  const Node shown = At(node);
  return shown.Expanded() && shown.HasChildren();
}

// Creates the folders among the first piece of a node's children; MakeFiles adds the files. So folders, which
// the system looks up whenever an item is added to them, are the oldest items.
void TreeItems::OpenFolders(std::uint32_t node) {
  MarkOpened(node);
  std::uint32_t seen = 0, last = 0;
  Node child = FirstChild(node);
  for (; child && seen < kFirstPiece; child = child.Next(), ++seen) {
    last = child.Index();
    if (!child.HasChildren()) {
      Mark(node, kFilesMissing);
      continue;
    }
    MakeItem(last, ParentItem(node), TVI_LAST);
    if (WantsOpening(last)) m_ahead.push_back(last);
  }
  if (child) m_rests[node] = {child.Index(), last};
}

// Inserts each sequence of files after its preceding folder, the last one first, so that only folders are
// looked up.
void TreeItems::MakeFiles(std::uint32_t node) {
  Unmark(node, kFilesMissing);
  const auto rest = m_rests.find(node);
  const std::uint32_t end = rest == m_rests.end() ? 0 : rest->second.next;
  HTREEITEM after = TVI_FIRST;
  const auto makeRun = [&] {
    for (; !m_run.empty(); m_run.pop_back()) MakeItem(m_run.back(), ParentItem(node), after);
  };
  m_run.clear();
  for (Node child = FirstChild(node); child; child = child.Next()) {
    const auto index = child.Index();
    if (index == end) break;
    if (const HTREEITEM item = ItemOf(index)) {
      makeRun();
      after = item;
    } else {
      m_run.push_back(index);
    }
  }
  makeRun();
}

void TreeItems::MakeRest(std::uint32_t node, std::uint32_t most, Clock::time_point until) {
  if (Has(node, kFilesMissing)) MakeFiles(node);
  const auto rest = m_rests.find(node);
  if (rest == m_rests.end()) return;
  Node child = At(rest->second.next);
  for (std::uint32_t made = 0; child && made < most; child = child.Next()) {
    const auto index = child.Index();
    MakeItem(index, ParentItem(node), TVI_LAST);
    rest->second.last = index;
    if (WantsOpening(index)) m_ahead.push_back(index);
    if (++made % 64 == 0 && made >= kMinPiece && Clock::now() >= until) most = made;
  }
  if (child) {
    rest->second.next = child.Index();
  } else {
    m_rests.erase(rest);
  }
}

void TreeItems::OpenPiece(std::uint32_t node, Clock::time_point until) {
  const Node child = FirstChild(node);
  if (!child) return;
  MarkOpened(node);
  m_rests[node] = {child.Index(), 0};
  MakeRest(node, kFirstPiece, until);
}

void TreeItems::Open(std::uint32_t node) {
  if (!Has(node, kOpened)) {
    OpenPiece(node, Clock::now() + kOpeningTime);
  } else if (Has(node, kFilesMissing)) {
    MakeFiles(node);
  }
}

void TreeItems::MakeGrown(Clock::time_point until) {
  for (const std::uint32_t node : std::exchange(m_grown, {})) {
    if (Has(node, kOpened)) MakeRest(node, kFirstPiece, until);
  }
}

void TreeItems::MakeNear(Clock::time_point until) {
  std::size_t done = 0;
  while (done < m_near.size()) {
    const std::uint32_t node = m_near[done++];
    Unmark(node, kInQueue);
    if (Has(node, kOpened)) {
      MakeRest(node, Has(node, kFilesMissing) ? 0 : kNextPiece, until);
    } else if (WantsOpening(node)) {
      OpenPiece(node, until);
      const HTREEITEM item = ItemOf(node);
      if (m_native.State(item, TVIS_EXPANDED) == 0) m_native.Expand(item, true);
    }
    if (Clock::now() >= until) break;
  }
  m_near.erase(m_near.begin(), m_near.begin() + static_cast<std::ptrdiff_t>(done));
}

void TreeItems::MakeAhead(Clock::time_point until) {
  while (m_aheadFiles < m_ahead.size() && m_count < kMaxAhead) {
    if (Clock::now() >= until) return;
    if (m_aheadFolders < m_ahead.size()) {
      const std::uint32_t node = m_ahead[m_aheadFolders++];
      if (WantsOpening(node)) OpenFolders(node);
    } else {
      const std::uint32_t node = m_ahead[m_aheadFiles++];
      if (Has(node, kFilesMissing)) MakeFiles(node);
    }
  }
  m_ahead = {};
  m_aheadFolders = m_aheadFiles = 0;
}

}  // namespace kxrestore::win32
