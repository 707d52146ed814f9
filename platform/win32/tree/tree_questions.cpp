#include "platform/win32/tree/tree_questions.h"

#include "platform/win32/tree/tree_check_boxes.h"

namespace kxrestore::win32 {

std::optional<LRESULT> TreeQuestions::Answer(UINT message, WPARAM wide, LPARAM extra) {
  switch (message) {
    case TVM_GETITEMW:
    case TVM_GETITEMA: {
      auto& item = *reinterpret_cast<TVITEMW*>(extra);  // the texts differ in size, not in place
      const LRESULT result = m_native.Send(message, wide, extra);
      if (result != 0 && (item.mask & TVIF_STATE) != 0) item.state = TrueState(item.hItem, item.state, ~0U);
      return result;
    }
    case TVM_GETITEMSTATE: {
      const auto state = static_cast<UINT>(m_native.Send(message, wide, extra));
      return TrueState(reinterpret_cast<HTREEITEM>(wide), state, static_cast<UINT>(extra));
    }
    case TVM_SETITEMW:
    case TVM_SETITEMA: {
      auto& item = *reinterpret_cast<TVITEMW*>(extra);
      if ((item.mask & TVIF_STATE) == 0 || (item.stateMask & TVIS_STATEIMAGEMASK) == 0) return std::nullopt;
      const std::uint32_t node = m_items.NodeOf(item.hItem);
      if (node == 0) return FALSE;
      const bool checked = (item.state & TVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(CheckBoxes::kTicked);
      if (checked != At(node).Checked()) Toggled(node);
      return TRUE;
    }
    case TVM_EXPAND: {
      const auto item = reinterpret_cast<HTREEITEM>(extra);
      const std::uint32_t node = m_items.NodeOf(item);
      if (node == 0) return FALSE;
      const UINT action = wide & TVE_TOGGLE;
      const bool expand =
          action == TVE_TOGGLE ? m_native.State(item, TVIS_EXPANDED) == 0 : action == TVE_EXPAND;
      if (At(node).HasChildren() && expand != At(node).Expanded()) {
        if (expand) m_items.Open(node);
        m_native.Expand(item, expand);
        Expanded(node, expand);
      }
      return TRUE;
    }
    default:
      return std::nullopt;
  }
}

UINT TreeQuestions::TrueState(HTREEITEM item, UINT state, UINT mask) const {
  const std::uint32_t node = m_tree.CheckBoxes() ? m_items.NodeOf(item) : 0;
  if (node == 0 || (state & TVIS_STATEIMAGEMASK & mask) == 0) return state;
  const UINT image = INDEXTOSTATEIMAGEMASK(CheckBoxes::ImageOf(At(node)));
  return (state & ~TVIS_STATEIMAGEMASK) | (image & mask);
}

}  // namespace kxrestore::win32
