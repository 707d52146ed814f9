// Peers that record their notifications, for tests of the control models and of the form's code.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "controls/control.h"
#include "controls/peer.h"

namespace kxrestore::platform {

// The notifications of a peer. Owned by the test; outlives the peer.
struct PeerLog {
  std::vector<controls::Property> changed;
  std::vector<std::pair<std::uint32_t, controls::NodeProperty>> nodesChanged;
  std::vector<std::uint32_t> nodesAdded, nodesRemoved;
  std::vector<std::pair<std::size_t, std::size_t>> ticksChanged;
  std::size_t entries = 0;
  int cleared = 0, broughtToFront = 0, focused = 0, refreshed = 0;
  int frozen = 0;  // nesting depth

  std::size_t Count(controls::Property property) const {
    return static_cast<std::size_t>(std::count(changed.begin(), changed.end(), property));
  }
};

// One peer class for each interface that it implements.
template <typename Base>
class RecordingPeerOf : public Base {
 public:
  explicit RecordingPeerOf(PeerLog& log) : m_log(log) {}
  void Changed(controls::Property property) override { m_log.changed.push_back(property); }
  void BringToFront() override { ++m_log.broughtToFront; }
  void SetFocus() override { ++m_log.focused; }
  void Refresh() override { ++m_log.refreshed; }
  void FreezeRedraw(bool frozen) override { m_log.frozen += frozen ? 1 : -1; }

 protected:
  PeerLog& m_log;
};

using RecordingPeer = RecordingPeerOf<controls::Peer>;

class RecordingTreePeer : public RecordingPeerOf<controls::TreePeer> {
 public:
  using RecordingPeerOf::RecordingPeerOf;
  void NodeAdded(std::uint32_t node) override { m_log.nodesAdded.push_back(node); }
  void NodeRemoved(std::uint32_t node) override { m_log.nodesRemoved.push_back(node); }
  void NodeChanged(std::uint32_t node, controls::NodeProperty property) override {
    m_log.nodesChanged.emplace_back(node, property);
  }
  void Cleared() override { ++m_log.cleared; }
};

class RecordingListPeer : public RecordingPeerOf<controls::ListPeer> {
 public:
  using RecordingPeerOf::RecordingPeerOf;
  void EntriesAdded(std::size_t newCount) override { m_log.entries = newCount; }
  void TicksChanged(std::size_t first, std::size_t last) override {
    m_log.ticksChanged.emplace_back(first, last);
  }
  void Cleared() override {
    m_log.entries = 0;
    ++m_log.cleared;
  }
};

// Attaches the matching recorder to a control.
inline void Record(controls::Control& control, PeerLog& log) {
  switch (control.GetKind()) {
    case controls::Kind::kTreeView:
      control.AttachPeer(std::make_unique<RecordingTreePeer>(log));
      break;
    case controls::Kind::kAutoSelect:
      control.AttachPeer(std::make_unique<RecordingListPeer>(log));
      break;
    default:
      control.AttachPeer(std::make_unique<RecordingPeer>(log));
  }
}

}  // namespace kxrestore::platform
