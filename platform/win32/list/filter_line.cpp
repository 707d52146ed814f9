#include "platform/win32/list/filter_line.h"

#include <commctrl.h>

#include <algorithm>

#include "base/phrases.h"
#include "controls/list_rows.h"
#include "platform/regional.h"
#include "platform/win32/controls/accessible_name.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

using controls::ListFilter;

namespace {

enum Place { kWords, kFrom, kTo, kSizes, kSets, kButton };

constexpr int kWordsWidth = 1800;  // twips, at least
constexpr int kDateWidth = 1650;
constexpr int kChoiceWidth = 1500;
constexpr int kButtonSize = 315;
constexpr int kGap = 75;
constexpr int kMargin = 30;  // above and below each row
constexpr int kDropRows = 12;
constexpr std::int64_t kMegabyte = 1 << 20;

struct SizeChoice {
  Phrase text;
  std::int64_t min, max;
};
constexpr SizeChoice kSizeChoices[] = {
    {Phrase::kFilterAnySize, ListFilter::kMin, ListFilter::kMax},
    {Phrase::kFilterUnder1MB, 0, kMegabyte - 1},
    {Phrase::kFilterOver1MB, kMegabyte, ListFilter::kMax},
    {Phrase::kFilterOver10MB, 10 * kMegabyte, ListFilter::kMax},
    {Phrase::kFilterOver100MB, 100 * kMegabyte, ListFilter::kMax},
    {Phrase::kFilterOver1GB, 1024 * kMegabyte, ListFilter::kMax},
};

std::size_t Chosen(HWND combo) {
  const LRESULT chosen = SendMessageW(combo, CB_GETCURSEL, 0, 0);
  return chosen < 0 ? 0 : static_cast<std::size_t>(chosen);
}

void AddChoice(HWND combo, const std::string& text) {
  SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(WideShown(text).c_str()));
}

}  // namespace

HWND FilterLine::MakeWindow(const wchar_t* windowClass, const std::string& text, DWORD style,
                            DWORD exStyle) const {
  const ActivationScope scope(m_context.ActivationContext());
  const HWND window = CreateWindowExW(exStyle, windowClass, WideShown(text).c_str(), WS_CHILD | style, 0, 0,
                                      0, 0, m_parent, nullptr, m_context.Module(), nullptr);
  SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(m_context.Font()), FALSE);
  return window;
}

void FilterLine::Add(const wchar_t* windowClass, DWORD style, const std::string& name,
                     const std::string& label, int width, DWORD exStyle) {
  Field field{};
  if (!label.empty()) field.label = MakeWindow(WC_STATICW, label, SS_LEFT | SS_NOPREFIX, 0);
  field.window = MakeWindow(windowClass, {}, style | WS_TABSTOP, exStyle);
  field.width = width;
  AnnotateName(field.window, Wide(name));
  m_fields.push_back(field);
}

void FilterLine::Create(HWND parent) {
  m_parent = parent;
  Add(WC_EDITW, ES_AUTOHSCROLL, Say(Phrase::kFilterWords), Say(Phrase::kFilterWords), kWordsWidth,
      WS_EX_CLIENTEDGE);
  if (m_list.GetStyle() == controls::AutoSelect::Style::kFiles) {
    constexpr DWORD kDate = DTS_SHORTDATEFORMAT | DTS_SHOWNONE;
    constexpr DWORD kChoice = CBS_DROPDOWNLIST | WS_VSCROLL;
    Add(DATETIMEPICK_CLASSW, kDate, Say(Phrase::kFilterFromName), Say(Phrase::kFilterFrom), kDateWidth);
    Add(DATETIMEPICK_CLASSW, kDate, Say(Phrase::kFilterToName), Say(Phrase::kFilterTo), kDateWidth);
    Add(WC_COMBOBOXW, kChoice, Say(Phrase::kFilterSize), {}, kChoiceWidth);
    Add(WC_COMBOBOXW, kChoice, Say(Phrase::kFilterSet), {}, kChoiceWidth);
    for (const SizeChoice& choice : kSizeChoices) AddChoice(m_fields[kSizes].window, Say(choice.text));
  }
  Add(WC_BUTTONW, BS_PUSHBUTTON, Say(Phrase::kFilterClose), {}, kButtonSize);
  SetWindowTextW(m_fields.back().window, L"\u00D7");
  m_context.SetToolTip(m_fields.back().window, Say(Phrase::kFilterClose));
  Fill();
}

// The list may have been filtered before its window was created.
void FilterLine::Fill() {
  m_filling = true;
  const ListFilter& filter = m_list.Rows().Filter();
  SetWindowTextW(m_fields[kWords].window, Wide(filter.words).c_str());
  if (m_fields.size() <= kSets) {
    m_filling = false;
    return;
  }
  for (const auto& [place, time] : {std::pair(kFrom, filter.from), {kTo, filter.to}}) {
    SYSTEMTIME day{};
    const bool none = time == ListFilter::kMin || time == ListFilter::kMax;
    if (!none) {
      const platform::CivilTime civil = platform::TimeOfNumber(time);
      day.wYear = static_cast<WORD>(civil.year);
      day.wMonth = static_cast<WORD>(civil.month);
      day.wDay = static_cast<WORD>(civil.day);
    }
    SendMessageW(m_fields[place].window, DTM_SETSYSTEMTIME, none ? GDT_NONE : GDT_VALID,
                 reinterpret_cast<LPARAM>(&day));
  }
  WPARAM size = 0;
  for (std::size_t i = 0; i < std::size(kSizeChoices); ++i) {
    if (kSizeChoices[i].min == filter.minSize && kSizeChoices[i].max == filter.maxSize) size = i;
  }
  SendMessageW(m_fields[kSizes].window, CB_SETCURSEL, size, 0);
  FillSets();
  m_filling = false;
}

void FilterLine::FillSets() {
  if (m_fields.size() <= kSets) return;
  const HWND combo = m_fields[kSets].window;
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  m_setIds.clear();
  AddChoice(combo, Say(Phrase::kFilterAllSets));
  WPARAM chosen = 0;
  for (const controls::AutoSelect::Set& set : m_list.Sets()) {
    AddChoice(combo, set.name.empty() ? std::to_string(set.id) : std::string(set.name));
    m_setIds.push_back(set.id);
    if (m_list.Rows().Filter().setId == set.id) chosen = m_setIds.size();
  }
  SendMessageW(combo, CB_SETCURSEL, chosen, 0);
}

int FilterLine::RowHeight() const {
  return m_context.ToPixels(kButtonSize + 2 * kMargin);
}

int FilterLine::LabelWidth(const Field& field) const {
  if (field.label == nullptr) return 0;
  return m_context.TextWidth(Wide(WindowText(field.label))) + m_context.ToPixels(kGap);
}

int FilterLine::FieldWidth(const Field& field) const {
  return LabelWidth(field) + m_context.ToPixels(field.width + kGap);
}

// Distributes the fields over rows. The button is at the end of the first one.
std::vector<FilterLine::Row> FilterLine::Rows(int width) const {
  std::vector<Row> rows{{{}, width - m_context.ToPixels(kButtonSize + kGap)}};
  for (std::size_t i = 0; i + 1 < m_fields.size(); ++i) {
    const int needed = FieldWidth(m_fields[i]);
    if (needed > rows.back().room && !rows.back().fields.empty()) rows.push_back({{}, width});
    rows.back().fields.push_back(i);
    rows.back().room -= needed;
  }
  return rows;
}

// The words take what the other fields leave of their row.
int FilterLine::Place(bool show, int width, int maxRows) {
  m_shown = show;
  const int gap = m_context.ToPixels(kGap), height = m_context.ToPixels(kButtonSize);
  const auto put = [](HWND window, RECT place, bool visible) {
    if (window == nullptr) return;
    SetWindowPos(window, nullptr, place.left, place.top, std::max(place.right - place.left, 0L),
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(window, visible ? SW_SHOWNA : SW_HIDE);
  };
  const std::vector<Row> rows = Rows(width);
  int top = m_context.ToPixels(kMargin);
  for (std::size_t row = 0; row < rows.size(); ++row, top += RowHeight()) {
    const bool visible = show && static_cast<int>(row) < maxRows;
    int left = 0;
    for (const std::size_t i : rows[row].fields) {
      Field& field = m_fields[i];
      field.shown = visible;
      const int start = left + LabelWidth(field);
      left += FieldWidth(field) + (i == kWords ? rows[row].room : 0);
      // A label is level with the field's text.
      put(field.label, {start - LabelWidth(field), top + m_context.ToPixels(kGap / 2), start, top + height},
          visible);
      const bool combo = i == kSizes || i == kSets;
      put(field.window, {start, top, std::min(left - gap, width), top + (combo ? kDropRows : 1) * height},
          visible);
      if (combo) {
        const int edges = 2 * (GetSystemMetrics(SM_CYEDGE) + GetSystemMetrics(SM_CYBORDER));
        SendMessageW(field.window, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), height - edges);
      }
    }
  }
  const int first = m_context.ToPixels(kMargin);
  m_fields.back().shown = show;
  put(m_fields.back().window, {width - height, first, width, first + height}, show);
  return show ? std::min(static_cast<int>(rows.size()), maxRows) * RowHeight() : 0;
}

void FilterLine::OnDpiChanged() {
  for (const Field& field : m_fields) {
    for (const HWND window : {field.window, field.label}) {
      if (window != nullptr)
        SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(m_context.Font()), FALSE);
    }
  }
}

bool FilterLine::Holds(HWND window) const {
  return std::any_of(m_fields.begin(), m_fields.end(), [window](const Field& field) {
    return window == field.window || IsChild(field.window, window);
  });
}

FilterLine::KeyAnswer FilterLine::OnKey(WPARAM key, bool back, HWND list) const {
  const HWND focus = GetFocus();
  const bool inside = Holds(focus);
  if (!m_shown || (!inside && focus != list) || (inside && IsOpen(focus))) return KeyAnswer::kNotMine;
  switch (key) {
    case VK_ESCAPE:
      return inside ? KeyAnswer::kClose : KeyAnswer::kNotMine;
    case VK_TAB: {
      if (!inside && !back) return KeyAnswer::kNotMine;
      HWND next = Next(inside ? focus : nullptr, back);
      if (next == nullptr && !back) next = list;
      if (next == nullptr) return KeyAnswer::kNotMine;
      SetFocus(next);
      if (IsWords(next)) SendMessageW(next, EM_SETSEL, 0, -1);
      return KeyAnswer::kDone;
    }
    case VK_DOWN:
    case VK_RETURN:
      if (key == VK_RETURN && focus == m_fields.back().window) return KeyAnswer::kClose;
      return IsWords(focus) ? KeyAnswer::kIntoEntries : KeyAnswer::kNotMine;
    default:
      return KeyAnswer::kNotMine;
  }
}

HWND FilterLine::Next(HWND from, bool back) const {
  std::vector<HWND> stops;
  for (const Field& field : m_fields) {
    if (field.shown) stops.push_back(field.window);
  }
  if (back) std::reverse(stops.begin(), stops.end());
  if (from == nullptr) return stops.empty() ? nullptr : stops.front();
  const auto place = std::find_if(stops.begin(), stops.end(),
                                  [from](HWND stop) { return stop == from || IsChild(stop, from); });
  return place == stops.end() || place + 1 == stops.end() ? nullptr : *(place + 1);
}

bool FilterLine::IsOpen(HWND window) const {
  for (std::size_t i = 0; i < m_fields.size(); ++i) {
    const HWND field = m_fields[i].window;
    if (field != window && !IsChild(field, window)) continue;
    if (i == kSizes || i == kSets) return SendMessageW(field, CB_GETDROPPEDSTATE, 0, 0) != 0;
    if (i != kFrom && i != kTo) return false;
    const auto calendar = reinterpret_cast<HWND>(SendMessageW(field, DTM_GETMONTHCAL, 0, 0));
    return calendar != nullptr && IsWindowVisible(calendar);
  }
  return false;
}

bool FilterLine::OnCommand(HWND field, unsigned code) {
  for (std::size_t i = 0; i < m_fields.size(); ++i) {
    if (m_fields[i].window != field) continue;
    if (i + 1 == m_fields.size()) {
      if (code == BN_CLICKED && Close) Close();
      return false;
    }
    if (i == kSets && code == CBN_DROPDOWN) FillSets();
    return m_shown && !m_filling && (i == kWords ? code == EN_CHANGE : code == CBN_SELCHANGE);
  }
  return false;
}

bool FilterLine::OnNotify(const NMHDR& header) const {
  return m_shown && !m_filling && header.code == DTN_DATETIMECHANGE && Holds(header.hwndFrom);
}

std::int64_t FilterLine::Day(HWND picker, bool end) const {
  SYSTEMTIME day{};
  if (SendMessageW(picker, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&day)) != GDT_VALID) {
    return end ? ListFilter::kMax : ListFilter::kMin;
  }
  return platform::TimeNumber({day.wYear, day.wMonth, day.wDay, end ? 23 : 0, end ? 59 : 0, end ? 59 : 0});
}

ListFilter FilterLine::Read() const {
  ListFilter filter;
  filter.words = WindowText(m_fields[kWords].window);
  if (m_fields.size() <= kSets) return filter;
  filter.from = Day(m_fields[kFrom].window, false);
  filter.to = Day(m_fields[kTo].window, true);
  const SizeChoice& size =
      kSizeChoices[std::min(Chosen(m_fields[kSizes].window), std::size(kSizeChoices) - 1)];
  filter.minSize = size.min;
  filter.maxSize = size.max;
  const std::size_t set = Chosen(m_fields[kSets].window);
  if (set >= 1 && set <= m_setIds.size()) filter.setId = m_setIds[set - 1];
  return filter;
}

}  // namespace kxrestore::win32
