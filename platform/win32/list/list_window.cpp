#include "platform/win32/list/list_window.h"

#include <algorithm>
#include <vector>

#include "base/text.h"
#include "platform/win32/list/list_columns.h"
#include "platform/win32/services/regional.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

using controls::AutoSelect;

namespace {

constexpr UINT_PTR kSortTimer = 0x4B59;
constexpr UINT kSettled = 200;                   // milliseconds without a new entry after which a
                                                 // sorted list is sorted again
constexpr std::size_t kMostReselected = 10'000;  // rows; selecting one more costs more and more

class ListWindow final : public WindowPeer<controls::ListPeer> {
 public:
  ListWindow(WindowContext& context, AutoSelect& list, HWND parent)
      : WindowPeer(context, list), m_list(list), m_columns(context, list.GetStyle()), m_order(list) {
    Create(parent, WC_LISTVIEWW, {}, WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS,
           WS_EX_CLIENTEDGE);
    constexpr DWORD kStyle =
        LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_INFOTIP | LVS_EX_LABELTIP;
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, kStyle, kStyle);
    Send(LVM_SETCALLBACKMASK, LVIS_STATEIMAGEMASK);
    m_columns.Make(Handle());
    ShowCount();
  }
  ~ListWindow() override { Destroy(); }

  // --- ListPeer

  void EntriesAdded(std::size_t /*newCount*/) override { Later(kItemsFlag, WindowContext::When::kThrottled); }
  void TicksChanged(std::size_t /*first*/, std::size_t /*last*/) override { Later(kTicksFlag); }
  void Cleared() override {
    m_order.Clear();
    Later(kItemsFlag);
  }

  // --- ControlWindow

  std::optional<LRESULT> OnNotify(NMHDR& header) override {
    switch (header.code) {
      case LVN_GETDISPINFOW:
        Answer(reinterpret_cast<NMLVDISPINFOW&>(header).item);
        return 0;
      case LVN_ODFINDITEMW:
        return Find(reinterpret_cast<NMLVFINDITEMW&>(header));
      case LVN_COLUMNCLICK:
        Sort(reinterpret_cast<NMLISTVIEW&>(header).iSubItem);
        return 0;
      case NM_CLICK:
      case NM_DBLCLK:
        ClickAt(reinterpret_cast<NMITEMACTIVATE&>(header).ptAction);
        return 0;
      case LVN_KEYDOWN:
        Key(reinterpret_cast<NMLVKEYDOWN&>(header).wVKey);
        return 0;
      case NM_CUSTOMDRAW:
        return Draw(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
      default:
        return std::nullopt;
    }
  }

  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM extra) override {
    if (message == WM_TIMER && wide == kSortTimer) {
      KillTimer(Handle(), kSortTimer);
      m_order.Renew();
      InvalidateRect(Handle(), nullptr, FALSE);
      return 0;
    }
    if (message == WM_SIZE) m_columns.Fit(Handle());
    if (message == WM_NOTIFY) HeadingTells(*reinterpret_cast<const NMHDR*>(extra));
    return std::nullopt;
  }

  // Of the selected rows, beside the focused one when it was asked for by the keyboard.
  std::optional<MenuRequest> MenuAt(std::optional<POINT> pointer) override {
    const LRESULT focused = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
    MenuRequest request;
    if (focused >= 0) {
      const std::size_t number = m_order.Entry(static_cast<std::size_t>(focused));
      if (Exists(number)) request.subject = number;
    }
    if (pointer) {
      request.place = *pointer;
    } else {
      RECT row{};
      row.left = LVIR_LABEL;
      Send(LVM_GETITEMRECT, static_cast<WPARAM>(focused), reinterpret_cast<LPARAM>(&row));
      request.place = {row.left, row.bottom};
      ClientToScreen(Handle(), &request.place);
    }
    return request;
  }
  void AddToMenu(controls::Menu& menu) override {
    if (Send(LVM_GETSELECTEDCOUNT) == 0) return;
    menu.Add("&Tick selected", [this] { TickSelected(true); });
    menu.Add("&Untick selected", [this] { TickSelected(false); });
    menu.AddLine();
    menu.Add("&Copy", [this] { CopySelected(); }).keys = "Ctrl+C";
    menu.AddLine();
  }

  void OnDpiChanged() override {
    WindowPeer::OnDpiChanged();
    m_columns.Fit(Handle());
  }

 protected:
  static constexpr unsigned kTicksFlag = kFirstOwnFlag;

  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kItemsFlag) != 0) ShowCount();
    if ((flags & (kTicksFlag | unsigned{kItemsFlag})) != 0) InvalidateRect(Handle(), nullptr, FALSE);
    if ((flags & kItemsFlag) != 0 && m_order.Sorted()) SetTimer(Handle(), kSortTimer, kSettled, nullptr);
  }

 private:
  LRESULT Send(UINT message, WPARAM wide = 0, LPARAM extra = 0) const {
    return SendMessageW(Handle(), message, wide, extra);
  }
  bool Types() const { return m_list.GetStyle() == AutoSelect::Style::kTypes; }

  void ShowCount() {
    const WPARAM count = std::min<std::size_t>(m_list.Count(), 100'000'000);
    if (static_cast<WPARAM>(Send(LVM_GETITEMCOUNT)) == count) return;
    const bool fewer = static_cast<WPARAM>(Send(LVM_GETITEMCOUNT)) > count;
    Send(LVM_SETITEMCOUNT, count, fewer ? 0 : LVSICF_NOSCROLL | LVSICF_NOINVALIDATEALL);
    m_columns.Fit(Handle());  // the scroll bar may have come or gone
  }

  bool Exists(std::size_t number) const { return number >= 1 && number <= m_list.Count(); }

  void Answer(LVITEMW& item) const {
    const std::size_t number = m_order.Entry(static_cast<std::size_t>(item.iItem));
    const bool exists = Exists(number);
    if ((item.mask & LVIF_STATE) != 0) {
      const bool ticked = exists && m_list.TickedAt(number);
      item.state = (item.state & ~LVIS_STATEIMAGEMASK) | INDEXTOSTATEIMAGEMASK(ticked ? 2u : 1u);
      item.stateMask |= LVIS_STATEIMAGEMASK;
    }
    if ((item.mask & LVIF_IMAGE) != 0) item.iImage = I_IMAGENONE;
    if ((item.mask & LVIF_TEXT) != 0 && item.pszText != nullptr && item.cchTextMax > 0) {
      std::wstring text = exists ? WideShown(TextOf(m_list.At(number), item.iSubItem)) : std::wstring();
      // Right-aligned text may lose the last column of its last digit to the column's edge.
      if (m_columns.IsRightAligned(item.iSubItem)) text += L' ';
      lstrcpynW(item.pszText, text.c_str(), item.cchTextMax);
    }
  }

  std::string TextOf(const AutoSelect::Entry& entry, int column) const {
    if (!m_columns.Exists(column)) return {};
    switch (m_columns.At(column)) {
      case ListColumn::kSize:
        return entry.sizeKnown ? m_regional.Grouped(entry.size) : std::string();
      case ListColumn::kExtension:
        return std::string(entry.extension);
      case ListColumn::kSet:
        return std::string(entry.setName);
      case ListColumn::kDate:
        return entry.time == AutoSelect::kNoTime
                   ? std::string(entry.date)
                   : DateAndTime(m_regional, platform::TimeOfNumber(entry.time));
      default:
        return std::string(entry.name);
    }
  }

  void HeadingTells(const NMHDR& header) {
    if (header.code == HDN_ITEMCHANGEDW) m_columns.Changed(reinterpret_cast<const NMHEADERW&>(header));
  }

  // Type-ahead: the next row whose name begins with what was typed.
  LRESULT Find(const NMLVFINDITEMW& wanted) const {
    if ((wanted.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0 || wanted.lvfi.psz == nullptr) {
      return -1;
    }
    const std::string typed = FoldCase(Narrow(wanted.lvfi.psz));
    const std::size_t count = m_list.Count();
    const std::size_t start = wanted.iStart < 0 ? 0 : static_cast<std::size_t>(wanted.iStart);
    std::string folded;  // a folded text may be longer or shorter than the text
    for (std::size_t step = 0; step < count; ++step) {
      const std::size_t row = (start + step) % count;
      folded.clear();
      AppendFolded(folded, m_list.At(m_order.Entry(row)).name.substr(0, typed.size() * 4));
      if (folded.starts_with(typed)) return static_cast<LRESULT>(row);
    }
    return -1;
  }

  void Sort(int column) {
    if (!m_columns.Exists(column)) return;
    const HCURSOR before = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    KeepingSelection([&] { m_order.Choose(m_columns.At(column)); });
    SetCursor(before);
    m_columns.ShowArrow(Handle(), m_order);
    InvalidateRect(Handle(), nullptr, FALSE);
  }

  // What the window keeps selected are rows; what the user selected are entries.
  template <class Change>
  void KeepingSelection(Change&& change) {
    const LRESULT focusedRow = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
    const std::size_t focused = focusedRow < 0 ? 0 : m_order.Entry(static_cast<std::size_t>(focusedRow));
    const auto count = static_cast<std::size_t>(Send(LVM_GETSELECTEDCOUNT));
    const bool all = count == m_list.Count();
    std::vector<std::size_t> selected;
    if (!all && count <= kMostReselected) selected = Selected();
    std::sort(selected.begin(), selected.end());

    change();
    if (all && focused == 0) return;
    if (!all) SetState(static_cast<WPARAM>(-1), 0, LVIS_SELECTED | LVIS_FOCUSED);
    for (std::size_t row = 0; row < m_list.Count(); ++row) {
      const std::size_t number = m_order.Entry(row);
      if (std::binary_search(selected.begin(), selected.end(), number)) {
        SetState(row, LVIS_SELECTED, LVIS_SELECTED);
      }
      if (number == focused) {
        SetState(row, LVIS_FOCUSED, LVIS_FOCUSED);
        Send(LVM_ENSUREVISIBLE, row, FALSE);
      }
    }
  }

  void SetState(WPARAM row, UINT state, UINT mask) const {
    LVITEMW item{};
    item.state = state;
    item.stateMask = mask;
    Send(LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
  }

  void ClickAt(POINT place) {
    LVHITTESTINFO hit{};
    hit.pt = place;
    const LRESULT row = Send(LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    if (row < 0 || (hit.flags & LVHT_ONITEM) != LVHT_ONITEMSTATEICON) return;
    const std::size_t number = m_order.Entry(static_cast<std::size_t>(row));
    if (!Exists(number)) return;
    m_list.UserTick(number, !m_list.TickedAt(number));
    Announce(row);
  }

  void Key(WORD key) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (key == VK_SPACE && !control) {
      const LRESULT focused = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
      if (focused < 0 || !Exists(m_order.Entry(static_cast<std::size_t>(focused)))) return;
      TickSelected(!m_list.TickedAt(m_order.Entry(static_cast<std::size_t>(focused))));
    } else if (key == 'A' && control) {
      SetState(static_cast<WPARAM>(-1), LVIS_SELECTED, LVIS_SELECTED);
    } else if (key == 'C' && control) {
      CopySelected();
    }
  }

  std::vector<std::size_t> Selected() const {
    std::vector<std::size_t> numbers;
    for (LRESULT row = -1; (row = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) >= 0;) {
      const std::size_t number = m_order.Entry(static_cast<std::size_t>(row));
      if (Exists(number)) numbers.push_back(number);
    }
    return numbers;
  }

  void TickSelected(bool ticked) {
    for (const std::size_t number : Selected()) m_list.UserTick(number, ticked);
    Announce(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
  }

  void Announce(LRESULT row) const {
    if (row >= 0)
      NotifyWinEvent(EVENT_OBJECT_STATECHANGE, Handle(), OBJID_CLIENT, static_cast<LONG>(row) + 1);
  }

  void CopySelected() const {
    std::wstring text;
    for (const std::size_t number : Selected()) text += Wide(m_list.At(number).name) + L"\r\n";
    if (text.empty() || !OpenClipboard(Handle())) return;
    EmptyClipboard();
    const SIZE_T bytes = (text.size() + 1) * sizeof(wchar_t);
    if (const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes)) {
      if (void* const target = GlobalLock(memory)) {
        CopyMemory(target, text.c_str(), bytes);
        GlobalUnlock(memory);
      }
      if (SetClipboardData(CF_UNICODETEXT, memory) == nullptr) GlobalFree(memory);
    }
    CloseClipboard();
  }

  // Groups of file types stand out.
  LRESULT Draw(NMLVCUSTOMDRAW& draw) {
    if (!Types()) return CDRF_DODEFAULT;
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    const std::size_t number = m_order.Entry(draw.nmcd.dwItemSpec);
    if (!Exists(number) || !m_list.At(number).isGroup) return CDRF_DODEFAULT;
    SelectObject(draw.nmcd.hdc, Context().Font({}, true));
    return CDRF_NEWFONT;
  }

  AutoSelect& m_list;
  ListColumns m_columns;
  ListOrder m_order;
  Win32Regional m_regional;
};

}  // namespace

std::unique_ptr<controls::Peer> MakeListWindow(WindowContext& context, AutoSelect& list, HWND parent) {
  return std::make_unique<ListWindow>(context, list, parent);
}

}  // namespace kxrestore::win32
