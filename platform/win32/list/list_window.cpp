#include "platform/win32/list/list_window.h"

#include <algorithm>
#include <vector>

#include "base/phrases.h"
#include "controls/list_rows.h"
#include "platform/win32/controls/clipboard.h"
#include "platform/win32/controls/empty_text.h"
#include "platform/win32/controls/footer_strip.h"
#include "platform/win32/list/filter_line.h"
#include "platform/win32/list/list_columns.h"
#include "platform/win32/list/list_painter.h"
#include "platform/win32/list/list_selection.h"
#include "platform/win32/list/list_text.h"
#include "platform/win32/services/regional.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

using controls::AutoSelect;

namespace {

constexpr UINT_PTR kSettledTimer = 0x4B59;
constexpr UINT kSettled = 200;  // milliseconds without a new entry after which a list is sorted again
constexpr UINT_PTR kVersionsTimer = 0x4B5A;
constexpr UINT kPause = 10;             // milliseconds between slices of work, for input and painting
constexpr std::size_t kSlice = 20'000;  // entries
constexpr UINT_PTR kFilterTimer = 0x4B5B;
constexpr UINT kTypingPause = 120;  // milliseconds after the last key, before a long list is filtered
constexpr std::size_t kMaxImmediate = 20'000;  // entries; longer lists are filtered after the pause
constexpr int kMinHeight = 600;                // twips of the entries between filter line and footer

class ListWindow final : public WindowPeer<controls::ListPeer> {
 public:
  ListWindow(WindowContext& context, AutoSelect& list, HWND parent)
      : WindowPeer(context, list),
        m_list(list),
        m_columns(context, list),
        m_filter(context, list),
        m_footer(context),
        m_painter(context, list),
        m_selection(list) {
    const HWND around = CreateAround(parent);
    Create(around, WC_LISTVIEWW, {}, WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS,
           WS_EX_CLIENTEDGE);
    constexpr DWORD kStyle = LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_INFOTIP |
                             LVS_EX_LABELTIP | LVS_EX_HEADERDRAGDROP;
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, kStyle, kStyle);
    Send(LVM_SETCALLBACKMASK, LVIS_STATEIMAGEMASK);
    m_selection.Attach(Handle());
    m_filter.Create(around);
    m_filter.Close = [this] { CloseFilter(); };
    if (m_list.DescribeFooter) m_footer.Create(around);
    m_columns.Make(Handle());
    m_columns.ShowArrow(Handle());
    ShowCount();
    Later(kArrangeFlag | kFooterFlag);
  }
  ~ListWindow() override { Destroy(); }

  // --- ListPeer

  void EntriesAdded(std::size_t /*newCount*/) override { Later(kItemsFlag, WindowContext::When::kThrottled); }
  void TicksChanged(std::size_t /*first*/, std::size_t /*last*/) override {
    Later(kTicksFlag | kFooterFlag, WindowContext::When::kThrottled);
    Later(kTicksFlag);
  }
  void RowsChanged() override { Later(kRowsFlag | kFooterFlag); }
  void SelectionChanged() override { Later(kFooterFlag, WindowContext::When::kThrottled); }
  void Cleared() override { Later(kItemsFlag | kRowsFlag | kFooterFlag); }

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
      case LVN_ITEMCHANGED:
        m_selection.Changed(reinterpret_cast<NMLISTVIEW&>(header));
        return 0;
      case LVN_ODSTATECHANGED:
        m_selection.Changed(reinterpret_cast<NMLVODSTATECHANGE&>(header));
        return 0;
      case NM_CLICK:
      case NM_DBLCLK:
        ClickAt(reinterpret_cast<NMITEMACTIVATE&>(header).ptAction);
        return 0;
      case LVN_KEYDOWN:
        Key(reinterpret_cast<NMLVKEYDOWN&>(header).wVKey);
        return 0;
      case NM_CUSTOMDRAW:
        return m_painter.Draw(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
      default:
        return std::nullopt;
    }
  }

  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM extra) override {
    if (message == WM_TIMER && (wide == kSettledTimer || wide == kVersionsTimer || wide == kFilterTimer)) {
      OnTimer(wide);
      return 0;
    }
    if (message == WM_SETFOCUS && GetKeyState(VK_LBUTTON) >= 0) SelectFirst();
    if (message == WM_PAINT && m_list.Rows().Count() == 0) return PaintEmpty(wide, extra);
    if (message == WM_SIZE) {
      m_columns.Fit(Handle());
      if (m_list.Rows().Count() == 0) InvalidateRect(Handle(), nullptr, TRUE);  // the text moves
    }
    if (message == WM_NOTIFY) HeadingTells(*reinterpret_cast<const NMHDR*>(extra));
    return std::nullopt;
  }

  std::optional<LRESULT> OnAroundMessage(UINT message, WPARAM wide, LPARAM extra) override {
    switch (message) {
      case WM_COMMAND:
        if (m_filter.OnCommand(reinterpret_cast<HWND>(extra), HIWORD(wide))) FilterSoon();
        return 0;
      case WM_NOTIFY:
        if (m_filter.OnNotify(*reinterpret_cast<const NMHDR*>(extra))) FilterSoon();
        return 0;
      case WM_DRAWITEM:
        if (m_footer.Draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(extra))) return TRUE;
        return std::nullopt;
      default:
        return std::nullopt;
    }
  }

  // The filter line belongs to the control: Tab goes through its fields to the entries, Esc closes it.
  bool HandleKey(WPARAM key) override {
    if (GetKeyState(VK_CONTROL) < 0) {
      if (key != 'F') return false;
      ShowFilter();
      return true;
    }
    switch (m_filter.OnKey(key, GetKeyState(VK_SHIFT) < 0, Handle())) {
      case FilterLine::KeyAnswer::kNotMine:
        return false;
      case FilterLine::KeyAnswer::kDone:
        break;
      case FilterLine::KeyAnswer::kClose:
        CloseFilter();
        break;
      case FilterLine::KeyAnswer::kIntoEntries:
        FilterNow();
        FocusFirst();
        break;
    }
    return true;
  }
  HWND TabTarget(bool back) const override { return m_filter.Shown() && !back ? m_filter.First() : Handle(); }
  bool WantsKey(WPARAM key) override {
    // A field keeps all keys but those of HandleKey.
    return m_filter.Holds(GetFocus()) &&
           (m_filter.IsOpen(GetFocus()) || (key != VK_ESCAPE && key != VK_TAB && key != VK_F5));
  }

  // Opened by the keyboard, the menu appears beside the focused row.
  std::optional<MenuRequest> MenuAt(std::optional<POINT> pointer) override {
    const LRESULT focused = FocusedRow();
    MenuRequest request;
    request.subject = EntryOf(focused);
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
    menu.AddLine();
    if (Send(LVM_GETSELECTEDCOUNT) != 0) {
      menu.Add(Say(Phrase::kMenuCopy), [this] { CopySelected(); }).keys = Say(Phrase::kKeyCopy);
    }
    controls::Menu::Item& filter =
        menu.Add(Say(Phrase::kMenuFilter), [this] { m_list.FilterShown() ? CloseFilter() : ShowFilter(); });
    filter.keys = Say(Phrase::kKeyFilter);
    filter.checked = m_list.FilterShown();
  }

  void OnDpiChanged() override {
    WindowPeer::OnDpiChanged();
    m_painter.OnDpiChanged();
    m_filter.OnDpiChanged();
    m_footer.OnDpiChanged();
    ArrangeLater();
    m_columns.Fit(Handle());
  }

 protected:
  static constexpr unsigned kTicksFlag = kFirstOwnFlag, kRowsFlag = kFirstOwnFlag << 1,
                            kFooterFlag = kFirstOwnFlag << 2;

  void OnFlush(unsigned flags) override {
    if ((flags & kValueFlag) != 0) {
      m_filter.Fill();
      flags |= kArrangeFlag;
    }
    WindowPeer::OnFlush(flags);
    if ((flags & kAppearanceFlag) != 0) m_columns.Arrange(Handle());
    if ((flags & (kItemsFlag | kRowsFlag)) != 0) {
      ShowRows((flags & kRowsFlag) != 0);
      m_columns.ShowArrow(Handle());
    }
    if ((flags & (kTicksFlag | kRowsFlag | unsigned{kItemsFlag})) != 0) {
      InvalidateRect(Handle(), nullptr, FALSE);
    }
    if ((flags & kItemsFlag) != 0) {
      KillTimer(Handle(), kVersionsTimer);
      SetTimer(Handle(), kSettledTimer, kSettled, nullptr);
    }
    if ((flags & (kFooterFlag | kRowsFlag | unsigned{kItemsFlag})) != 0) ShowFooter();
    SayName();
  }

  std::string EmptyHint() const override {
    if (m_list.Rows().Count() != 0) return {};
    return m_list.Count() == 0 ? m_list.EmptyText() : Say(Phrase::kFilterNothing);
  }

  // From top to bottom: filter line, entries, footer. Without room for all, the footer is left out first.
  void OnArrange(int width, int height) override {
    const int min = Context().ToPixels(kMinHeight);
    const int rows = std::max(1, (height - min) / m_filter.RowHeight());
    const int line = m_filter.Place(m_list.FilterShown(), width, rows);
    int footer = m_footer.Handle() == nullptr ? 0 : m_footer.Height();
    if (height - line - footer < min) footer = 0;
    const int list = std::max(0, height - line - footer);
    // Without SWP_NOCOPYBITS pixels of the filter line's fields would move with the list.
    SetWindowPos(Handle(), nullptr, 0, line, width, list, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    if (m_footer.Handle() != nullptr) m_footer.Place(0, line + list, width, footer);
    RedrawWindow(Around(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
  }

 private:
  LRESULT PaintEmpty(WPARAM wide, LPARAM extra) {
    const LRESULT result = PassOn(WM_PAINT, wide, extra);
    RECT headings{};
    GetClientRect(reinterpret_cast<HWND>(Send(LVM_GETHEADER)), &headings);
    DrawEmptyText(Handle(), Context().Font(), EmptyHint(), headings.bottom);
    return result;
  }

  LRESULT Send(UINT message, WPARAM wide = 0, LPARAM extra = 0) const {
    return SendMessageW(Handle(), message, wide, extra);
  }
  bool Types() const { return m_list.GetStyle() == AutoSelect::Style::kTypes; }
  // The entry of a row; 0 where there is none.
  std::size_t EntryOf(LRESULT row) const {
    return row < 0 ? 0 : m_list.Rows().Entry(static_cast<std::size_t>(row));
  }
  LRESULT FocusedRow() const { return Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED); }

  void ShowFooter() {
    if (m_footer.Handle() != nullptr && m_list.DescribeFooter) m_footer.Show(m_list.DescribeFooter());
  }

  void ShowCount() {
    const WPARAM count = std::min<std::size_t>(m_list.Rows().Count(), 100'000'000);
    if (static_cast<WPARAM>(Send(LVM_GETITEMCOUNT)) == count) return;
    const bool fewer = static_cast<WPARAM>(Send(LVM_GETITEMCOUNT)) > count;
    Send(LVM_SETITEMCOUNT, count, fewer ? 0 : LVSICF_NOSCROLL | LVSICF_NOINVALIDATEALL);
    m_columns.Fit(Handle());  // the scroll bar may have come or gone
  }

  void ShowRows(bool otherRows) {
    if (!otherRows) return ShowCount();
    m_selection.BeforeOtherRows();
    ShowCount();
    m_selection.AfterOtherRows();
  }

  void OnTimer(UINT_PTR timer) {
    KillTimer(Handle(), timer);
    if (timer == kFilterTimer) {
      FilterNow();
      return;
    }
    if (timer == kSettledTimer) m_list.SortAddedIn();
    m_list.FindVersions(kSlice);
    if (!m_list.VersionsFound()) SetTimer(Handle(), kVersionsTimer, kPause, nullptr);
  }

  // --- the filter line

  void ShowFilter() {
    m_list.UserShowFilter(true);
    m_filter.FillSets();
    FlushNow();  // places the fields
    ::SetFocus(m_filter.First());
    SendMessageW(m_filter.First(), EM_SETSEL, 0, -1);
  }

  void CloseFilter() {
    if (m_filter.Holds(GetFocus())) ::SetFocus(Handle());
    m_list.UserShowFilter(false);
  }

  void FilterSoon() {
    if (m_list.Count() <= kMaxImmediate) {
      FilterNow();
    } else {
      SetTimer(Handle(), kFilterTimer, kTypingPause, nullptr);
    }
  }

  void FilterNow() {
    KillTimer(Handle(), kFilterTimer);
    if (m_list.FilterShown()) m_list.UserFilter(m_filter.Read());
  }

  void FocusFirst() {
    FlushNow();
    ::SetFocus(Handle());
    m_selection.SelectOnly(0);
  }

  // Gives the arrow keys and Space a row to start from.
  void SelectFirst() {
    if (m_list.Rows().Count() == 0) return;
    FlushNow();
    if (FocusedRow() < 0) m_selection.SelectOnly(0);
  }

  // --- callbacks of the native control

  void Answer(LVITEMW& item) const {
    const std::size_t number = EntryOf(item.iItem);
    if ((item.mask & LVIF_STATE) != 0) {
      const bool ticked = number != 0 && m_list.TickedAt(number);
      item.state = (item.state & ~LVIS_STATEIMAGEMASK) | INDEXTOSTATEIMAGEMASK(ticked ? 2u : 1u);
      item.stateMask |= LVIS_STATEIMAGEMASK;
    }
    if ((item.mask & LVIF_IMAGE) != 0) item.iImage = I_IMAGENONE;
    if ((item.mask & LVIF_TEXT) == 0 || item.pszText == nullptr || item.cchTextMax <= 0) return;
    std::wstring text;
    if (number != 0 && m_columns.Exists(item.iSubItem)) {
      text = WideShown(CellText(m_list, number, m_columns.At(item.iSubItem), m_regional));
      // Painted, a folder that is too long loses its middle. Screen readers and tool tips get the whole text.
      if (m_columns.At(item.iSubItem) == ListColumn::kFolder) {
        text =
            m_painter.Fit(std::move(text), static_cast<int>(Send(LVM_GETCOLUMNWIDTH, item.iSubItem)), number);
      }
    }
    // The blank keeps the last digit of right-aligned text clear of the column's edge.
    if (m_columns.IsRightAligned(item.iSubItem)) text += L' ';
    lstrcpynW(item.pszText, text.c_str(), item.cchTextMax);
  }

  void HeadingTells(const NMHDR& header) {
    if (header.code == HDN_ITEMCHANGEDW) m_columns.Changed(reinterpret_cast<const NMHEADERW&>(header));
    if (header.code == HDN_ENDDRAG) m_dragged = true;
    // The new order is set when the mouse button is released.
    if (header.code == NM_RELEASEDCAPTURE && std::exchange(m_dragged, false)) m_columns.ReportOrder(Handle());
  }

  // Type-ahead: finds the next row whose name begins with the typed text.
  LRESULT Find(const NMLVFINDITEMW& wanted) const {
    if ((wanted.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0 || wanted.lvfi.psz == nullptr) {
      return -1;
    }
    const std::size_t start = wanted.iStart < 0 ? 0 : static_cast<std::size_t>(wanted.iStart);
    const auto row = m_list.Rows().FindName(Narrow(wanted.lvfi.psz), start);
    return row ? static_cast<LRESULT>(*row) : -1;
  }

  void Sort(int column) {
    if (!m_columns.Exists(column)) return;
    const HCURSOR before = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    m_selection.KeepFocus();
    m_list.UserSort(m_columns.At(column));
    FlushNow();
    SetCursor(before);
  }

  void ClickAt(POINT place) {
    LVHITTESTINFO hit{};
    hit.pt = place;
    const LRESULT row = Send(LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    if (row < 0 || (hit.flags & LVHT_ONITEM) != LVHT_ONITEMSTATEICON) return;
    const std::size_t number = EntryOf(row);
    if (number == 0) return;
    m_list.UserTick(number, !m_list.TickedAt(number));
    Announce(row);
  }

  void Key(WORD key) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (key == VK_SPACE && !control) {
      if (const std::size_t number = EntryOf(FocusedRow())) TickSelected(!m_list.TickedAt(number));
    } else if (key == VK_DELETE) {
      TickSelected(false);
    } else if (key == 'A' && control) {
      m_selection.SelectAll();
    } else if (key == 'C' && control) {
      CopySelected();
    } else if (key == 'F' && control) {
      ShowFilter();
    }
  }

  void TickSelected(bool ticked) {
    m_list.UserTickSelected(ticked);
    Announce(FocusedRow());
  }

  void Announce(LRESULT row) const {
    if (row >= 0)
      NotifyWinEvent(EVENT_OBJECT_STATECHANGE, Handle(), OBJID_CLIENT, static_cast<LONG>(row) + 1);
  }

  void CopySelected() const {
    std::wstring text;
    for (const std::size_t number : m_list.SelectedEntries()) text += Wide(m_list.At(number).name) + L"\r\n";
    if (!text.empty()) CopyText(Handle(), text);
  }

  AutoSelect& m_list;
  ListColumns m_columns;
  FilterLine m_filter;
  FooterStrip m_footer;
  ListPainter m_painter;
  ListSelection m_selection;
  Win32Regional m_regional;
  bool m_dragged = false;  // a column has been dragged
};

}  // namespace

std::unique_ptr<controls::Peer> MakeListWindow(WindowContext& context, AutoSelect& list, HWND parent) {
  return std::make_unique<ListWindow>(context, list, parent);
}

}  // namespace kxrestore::win32
