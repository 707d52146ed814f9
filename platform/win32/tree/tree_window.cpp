#include "platform/win32/tree/tree_window.h"

#include "controls/check_propagation.h"
#include "platform/win32/controls/empty_text.h"
#include "platform/win32/controls/footer_strip.h"
#include "platform/win32/tree/tree_check_boxes.h"
#include "platform/win32/tree/tree_items.h"
#include "platform/win32/tree/tree_painter.h"
#include "platform/win32/tree/tree_questions.h"
#include "platform/win32/tree/tree_tips.h"

namespace kxrestore::win32 {

using controls::Node;
using controls::NodeProperty;

namespace {

constexpr UINT_PTR kWorkTimer = 0x4B58;
constexpr UINT kPause = 10;  // milliseconds between slices of work, for input and painting
constexpr auto kSlice = std::chrono::milliseconds(20);
constexpr std::size_t kMaxAnnounced = 64;

// What the user did, posted to be reported. The first parameter is the node, the second the tree's generation
// and, in its lowest bit, the new state of expansion.
enum Report : UINT { kClicked = WM_APP + 0x100, kToggled, kExpansion, kExpandBranch };

class TreeWindow final : public WindowPeer<controls::TreePeer> {
 public:
  TreeWindow(WindowContext& context, controls::TreeView& tree, HWND parent)
      : WindowPeer(context, tree),
        m_tree(tree),
        m_checkBoxes(m_native, tree.CheckBoxes()),
        m_items(tree, m_native, m_checkBoxes.ItemState()),
        m_questions(tree, m_native, m_items),
        m_tips(context, tree, m_native, m_items),
        m_painter(context, tree, m_native, m_checkBoxes),
        m_footer(context) {
    m_questions.Toggled = [this](std::uint32_t node) { Report(kToggled, node); };
    m_questions.Expanded = [this](std::uint32_t node, bool expanded) { Report(kExpansion, node, expanded); };
    DWORD style = WS_TABSTOP | TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS |
                  TVS_DISABLEDRAGDROP;
    if (tree.Tip) style |= TVS_NOTOOLTIPS;  // the tip says the whole name, too
    if (tree.DescribeFooter) {
      parent = CreateAround(parent);
      m_footer.Create(parent);
      Later(kArrangeFlag | kFooterFlag);
    }
    Create(parent, WC_TREEVIEWW, {}, style, WS_EX_CLIENTEDGE);
    m_native.Attach(Handle());
    m_painter.MakeImages();
    m_selectionChanged = static_cast<bool>(tree.SelectedItem());
    Later(kWorkFlag);
  }

  ~TreeWindow() override {
    *m_alive = false;
    LetGo();
    Destroy();
  }

  // --- TreePeer

  void NodeAdded(std::uint32_t node) override {
    FooterLater();
    Context().Guarded([&] {
      m_items.NodeAdded(node);
      if (m_items.HasWork(!Frozen())) Later(kWorkFlag);
      const auto parent = At(node).Parent().Index();
      if (m_items.ItemOf(parent) != nullptr) Later(kRepaintFlag);  // its button
    });
  }

  void NodeRemoved(std::uint32_t node) override {
    Context().Guarded([&] { m_items.NodeRemoved(node); });
    Later(kWorkFlag | kRepaintFlag);
  }

  void NodeChanged(std::uint32_t node, NodeProperty property) override {
    if (property == NodeProperty::kChecked) FooterLater();
    if (property == NodeProperty::kSelected) {
      m_selectionChanged = true;
      Later(kWorkFlag);
      return;
    }
    if (m_items.ItemOf(node) == nullptr) return;
    const bool isState = property == NodeProperty::kChecked || property == NodeProperty::kMixed;
    if (isState || property == NodeProperty::kImage) {
      Context().Guarded([&] {
        if (isState && m_announced.size() < kMaxAnnounced) m_announced.push_back(node);
      });
      Later(kRepaintFlag);
      return;
    }
    Context().Guarded([&] { m_items.NodeChanged(node, property); });
    Later(kWorkFlag);
  }

  void Cleared() override {
    FooterLater();
    ++m_generation;
    m_announced.clear();
    m_selectionChanged = true;
    Context().Guarded([&] { m_items.Cleared(); });
    Later(kWorkFlag | kRepaintFlag);
  }

  void BadgesChanged() override { Later(kRepaintFlag); }

  // --- ControlWindow

  std::optional<LRESULT> OnNotify(NMHDR& header) override {
    switch (header.code) {
      case TVN_GETDISPINFOW: {
        TVITEMW& item = reinterpret_cast<NMTVDISPINFOW&>(header).item;
        m_painter.Describe(item, m_items.NodeOf(item.hItem));
        return 0;
      }
      case NM_CUSTOMDRAW:
        return OnCustomDraw(reinterpret_cast<NMTVCUSTOMDRAW&>(header));
      case TVN_ITEMEXPANDINGW:
        return OnExpanding(reinterpret_cast<NMTREEVIEWW&>(header));
      case TVN_ITEMEXPANDEDW: {
        const auto& change = reinterpret_cast<NMTREEVIEWW&>(header);
        if (!m_items.Quiet()) ReportExpansion(m_items.NodeOf(change.itemNew.hItem));
        return 0;
      }
      case TVN_SELCHANGEDW: {
        const auto& change = reinterpret_cast<NMTREEVIEWW&>(header);
        if (!m_items.Quiet() && !m_selecting) Report(kClicked, m_items.NodeOf(change.itemNew.hItem));
        return 0;
      }
      case TVN_DELETEITEMW: {
        const TVITEMW& item = reinterpret_cast<NMTREEVIEWW&>(header).itemOld;
        m_items.ItemDeleted(static_cast<std::uint32_t>(item.lParam), item.hItem);
        return 0;
      }
      default:
        return std::nullopt;
    }
  }

  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM extra) override {
    m_tips.See(message, extra);
    switch (message) {
      case WM_LBUTTONDOWN:
      case WM_LBUTTONDBLCLK:
        return OnPress(message, wide, extra);
      case WM_SIZE:
        if (m_tree.Count() == 0) InvalidateRect(Handle(), nullptr, TRUE);
        return std::nullopt;
      case WM_RBUTTONDOWN:
        return HandledByControl(message, wide, extra);
      case WM_KEYDOWN:
        return OnKey(wide);
      case WM_CHAR:
        // Keys handled by OnKey must not start a type-ahead search.
        if ((wide == L' ' && m_tree.CheckBoxes()) || wide == L'*') return 0;
        return std::nullopt;
      case WM_SETFOCUS: {
        // A tree that gets the focus may select its first item, which is not a choice of the user.
        const bool was = std::exchange(m_selecting, true);
        const LRESULT result = m_native.Send(message, wide, extra);
        m_selecting = was;
        return result;
      }
      case WM_THEMECHANGED:
        m_checkBoxes.ThemeChanged();
        return std::nullopt;
      case WM_PAINT:
        return Paint(wide, extra);
      case WM_SETREDRAW:
        if (wide != 0) m_frozen.reset();
        if (wide == 0 && !m_frozen) m_frozen.emplace(m_native);
        return 0;
      case WM_DESTROY:
        LetGo();
        return std::nullopt;
      case WM_TIMER:
        if (wide != kWorkTimer) return std::nullopt;
        Work();
        return 0;
      case kClicked:
      case kToggled:
      case kExpansion:
      case kExpandBranch:
        OnReport(message, static_cast<std::uint32_t>(wide), extra);
        return 0;
      default:
        if (message < TV_FIRST || message > TV_FIRST + 0xFF) return std::nullopt;
        return OnQuestion(message, wide, extra);
    }
  }

  std::optional<MenuRequest> MenuAt(std::optional<POINT> pointer) override {
    MenuRequest request;
    HTREEITEM item = m_native.Selected();
    if (pointer) {
      POINT place = *pointer;
      ScreenToClient(Handle(), &place);
      item = m_native.HitTest(place).hItem;
      request.place = *pointer;
    } else if (RECT text{}; item != nullptr && m_native.TextBounds(item, text)) {
      request.place = {text.left, text.bottom};
      ClientToScreen(Handle(), &request.place);
    }
    request.subject = m_items.NodeOf(item);
    return request;
  }

  void OnDpiChanged() override {
    WindowPeer::OnDpiChanged();
    m_footer.OnDpiChanged();
    ArrangeLater();
    m_painter.MakeImages();
  }

 protected:
  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kWorkFlag) != 0) Work();
    if ((flags & kFooterFlag) != 0 && m_footer.Handle() != nullptr) m_footer.Show(m_tree.DescribeFooter());
    SayName();
    if ((flags & kRepaintFlag) == 0) return;
    if (!Frozen() || m_items.Emptying()) InvalidateRect(Handle(), nullptr, FALSE);
    for (const std::uint32_t node : std::exchange(m_announced, {})) m_native.Announce(m_items.ItemOf(node));
  }

  std::string EmptyHint() const override { return m_tree.Count() == 0 ? m_tree.EmptyText() : std::string(); }

  void OnArrange(int width, int height) override {
    const int footer = std::min(m_footer.Height(), height);
    SetWindowPos(Handle(), nullptr, 0, 0, width, height - footer, SWP_NOZORDER | SWP_NOACTIVATE);
    m_footer.Place(0, height - footer, width, footer);
  }
  std::optional<LRESULT> OnAroundMessage(UINT message, WPARAM /*wide*/, LPARAM extra) override {
    if (message == WM_DRAWITEM && m_footer.Draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(extra))) return TRUE;
    return std::nullopt;
  }

  void SetRedraw(bool redraw) override {
    if (redraw) Work();
    WindowPeer::SetRedraw(redraw);
  }

 private:
  static constexpr unsigned kWorkFlag = kFirstOwnFlag, kRepaintFlag = kFirstOwnFlag << 1,
                            kFooterFlag = kFirstOwnFlag << 2;

  void FooterLater() { Later(kFooterFlag, WindowContext::When::kThrottled); }

  Node At(std::uint32_t node) const { return {&m_tree, node}; }

  // Before the window is destroyed. Some systems destroy a state image list together with it.
  void LetGo() {
    m_native.Send(TVM_SETIMAGELIST, TVSIL_STATE, 0);
    m_native.Detach();
  }

  LRESULT OnCustomDraw(const NMTVCUSTOMDRAW& draw) {
    const auto item = reinterpret_cast<HTREEITEM>(draw.nmcd.dwItemSpec);
    const auto node = static_cast<std::uint32_t>(draw.nmcd.lItemlParam);
    switch (draw.nmcd.dwDrawStage) {
      case CDDS_PREPAINT:
        return CDRF_NOTIFYITEMDRAW;
      case CDDS_ITEMPREPAINT:
        if (item == nullptr || m_items.ItemOf(node) != item) return CDRF_DODEFAULT;
        m_items.Painted(node);
        if (m_items.HasWork(!Frozen())) Later(kWorkFlag);
        return m_painter.DrawsOverItems() ? CDRF_NOTIFYPOSTPAINT : CDRF_DODEFAULT;
      case CDDS_ITEMPOSTPAINT:
        if (m_items.ItemOf(node) == item) m_painter.DrawOver(draw.nmcd, item, node);
        return CDRF_DODEFAULT;
      default:
        return CDRF_DODEFAULT;
    }
  }

  LRESULT OnExpanding(const NMTREEVIEWW& change) {
    if (m_items.Quiet()) return FALSE;
    const std::uint32_t node = m_items.NodeOf(change.itemNew.hItem);
    if (node == 0) return TRUE;  // an item waiting for removal
    if (change.action == TVE_EXPAND) m_items.Open(node);
    return FALSE;
  }

  // --- what the user does

  void Report(UINT message, std::uint32_t node, bool expanded = false) {
    if (node != 0) PostMessageW(Handle(), message, node, m_generation << 1 | (expanded ? 1 : 0));
  }

  void ReportExpansion(std::uint32_t node) {
    if (node == 0) return;
    Report(kExpansion, node, m_native.State(m_items.ItemOf(node), TVIS_EXPANDED) != 0);
  }

  void OnReport(UINT message, std::uint32_t node, LPARAM extra) {
    if (extra >> 1 != m_generation || m_items.ItemOf(node) == nullptr) return;
    switch (message) {
      case kClicked:
        m_tree.UserClickNode(At(node));
        break;
      case kToggled:
        m_tree.UserCheck(At(node), !At(node).Checked());
        break;
      case kExpansion:
        m_tree.UserExpand(At(node), (extra & 1) != 0);
        break;
      default:
        controls::ExpandBelow(At(node), [this, alive = m_alive, generation = m_generation](Node folder) {
          m_tree.UserExpand(folder, true);
          return *alive && generation == m_generation;
        });
    }
  }

  // Passes a mouse message to the control, which may wait for the button and process other messages.
  LRESULT HandledByControl(UINT message, WPARAM wide, LPARAM extra) {
    const auto alive = m_alive;
    m_items.Hold(true);
    const LRESULT result = m_native.Send(message, wide, extra);
    if (*alive) {
      m_items.Hold(false);
      if (m_items.HasWork(!Frozen())) Later(kWorkFlag);
    }
    return result;
  }

  std::optional<LRESULT> OnPress(UINT message, WPARAM wide, LPARAM extra) {
    const TVHITTESTINFO hit = m_native.HitTest({GET_X_LPARAM(extra), GET_Y_LPARAM(extra)});
    if ((hit.flags & TVHT_ONITEMSTATEICON) != 0 && (hit.flags & (TVHT_ONITEMICON | TVHT_ONITEMLABEL)) == 0 &&
        m_tree.CheckBoxes()) {
      ::SetFocus(Handle());
      Report(kToggled, m_items.NodeOf(hit.hItem));
      return 0;
    }
    const bool onName = (hit.flags & (TVHT_ONITEMICON | TVHT_ONITEMLABEL)) != 0;
    const std::uint32_t node = m_items.NodeOf(hit.hItem);
    if (message == WM_LBUTTONDBLCLK && onName && node != 0 && m_tree.CheckBoxes() &&
        !At(node).HasChildren()) {
      Report(kToggled, node);
      return 0;
    }
    const bool again =
        message == WM_LBUTTONDOWN && hit.hItem != nullptr && onName && hit.hItem == m_native.Selected();
    const LPARAM generation = m_generation;
    const auto alive = m_alive;
    const LRESULT result = HandledByControl(message, wide, extra);
    // The control does not notify a click on the selected item.
    if (*alive && again && generation == m_generation) Report(kClicked, m_items.NodeOf(hit.hItem));
    return result;
  }

  LRESULT Paint(WPARAM wide, LPARAM extra) {
    if (m_native.Paused()) {
      if (m_items.Emptying())
        PaintBlank(Handle());  // don't leave stale items on screen while they are deleted
      ValidateRect(Handle(), nullptr);
      return 0;
    }
    const LRESULT result = m_native.Send(WM_PAINT, wide, extra);
    DrawEmptyText(Handle(), Context().Font(), EmptyHint());
    return result;
  }

  std::optional<LRESULT> OnKey(WPARAM key) {
    if (key == VK_SPACE && m_tree.CheckBoxes()) {
      Report(kToggled, m_items.NodeOf(m_native.Selected()));
      return 0;
    }
    if (key == VK_MULTIPLY) {
      Report(kExpandBranch, m_items.NodeOf(m_native.Selected()));
      return 0;
    }
    return std::nullopt;
  }

  // Messages of the control's interface come from other code; this class bypasses this function. Before they
  // are handled all items are created and all states are current.
  std::optional<LRESULT> OnQuestion(UINT message, WPARAM wide, LPARAM extra) {
    m_items.Work(TreeItems::Clock::time_point::max(), !Frozen());
    ShowSelection();
    return m_questions.Answer(message, wide, extra);
  }

  void Work() {
    m_items.Work(TreeItems::Clock::now() + kSlice, !Frozen());
    if (m_items.HasWork(!Frozen())) {
      if (!std::exchange(m_timing, true)) SetTimer(Handle(), kWorkTimer, kPause, nullptr);
    } else if (std::exchange(m_timing, false)) {
      KillTimer(Handle(), kWorkTimer);
    }
    ShowSelection();
  }

  void ShowSelection() {
    if (Frozen() || m_items.HasWork(true)) return;
    const Node selected = m_tree.SelectedItem();
    if (const auto anchor = m_items.TakeRebuilt()) {
      if (selected && !m_selectionChanged) Select(m_items.NearestShown(selected.Index()));
      if (*anchor != 0) ScrollTo(*anchor);
    }
    if (!std::exchange(m_selectionChanged, false)) return;
    const HTREEITEM item = selected ? m_items.Reach(selected.Index()) : nullptr;
    Select(item);
    if (item == nullptr) return;
    // The control has expanded the ancestors.
    for (Node above = selected.Parent(); above; above = above.Parent()) {
      if (!above.Expanded()) Report(kExpansion, above.Index(), true);
    }
  }

  void Select(HTREEITEM item) {
    if (m_native.Selected() == item) return;
    const bool was = std::exchange(m_selecting, true);
    m_native.Select(item);
    m_selecting = was;
  }

  void ScrollTo(std::uint32_t node) {
    if (const HTREEITEM item = m_items.NearestShown(node)) m_native.ScrollTo(item);
  }

  controls::TreeView& m_tree;
  NativeTree m_native;
  CheckBoxes m_checkBoxes;
  TreeItems m_items;
  TreeQuestions m_questions;
  TreeTips m_tips;
  TreePainter m_painter;
  FooterStrip m_footer;
  std::optional<NativeTree::Pause> m_frozen;
  std::vector<std::uint32_t> m_announced;
  LPARAM m_generation = 0;
  bool m_selectionChanged = false;
  bool m_selecting = false;
  bool m_timing = false;
  std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

}  // namespace

std::unique_ptr<controls::Peer> MakeTreeWindow(WindowContext& context, controls::TreeView& tree,
                                               HWND parent) {
  return std::make_unique<TreeWindow>(context, tree, parent);
}

}  // namespace kxrestore::win32
