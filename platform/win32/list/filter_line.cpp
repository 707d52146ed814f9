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
  std::int64_t least, most;
};
constexpr SizeChoice kSizeChoices[] = {
    {Phrase::kFilterAnySize, ListFilter::kLeast, ListFilter::kMost},
    {Phrase::kFilterUnder1MB, 0, kMegabyte - 1},
    {Phrase::kFilterOver1MB, kMegabyte, ListFilter::kMost},
    {Phrase::kFilterOver10MB, 10 * kMegabyte, ListFilter::kMost},
    {Phrase::kFilterOver100MB, 100 * kMegabyte, ListFilter::kMost},
    {Phrase::kFilterOver1GB, 1024 * kMegabyte, ListFilter::kMost},
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

// A window may come to a list that is filtered already.
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
    const bool none = time == ListFilter::kLeast || time == ListFilter::kMost;
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
    if (kSizeChoices[i].least == filter.leastSize && kSizeChoices[i].most == filter.mostSize) size = i;
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
  const HDC dc = GetDC(field.label);
  const HGDIOBJ before = SelectObject(dc, m_context.Font());
  const std::wstring text = Wide(WindowText(field.label));
  SIZE size{};
  GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
  SelectObject(dc, before);
  ReleaseDC(field.label, dc);
  return size.cx + m_context.ToPixels(kGap);
}

// The button stands at the end of the first row; the words take what is left of theirs.
int FilterLine::Place(bool show, int width, int mostRows) {
  m_shown = show;
  const int gap = m_context.ToPixels(kGap), margin = m_context.ToPixels(kMargin);
  const int height = m_context.ToPixels(kButtonSize), button = m_context.ToPixels(kButtonSize);
  const auto put = [&](HWND window, int left, int row, int wide, bool visible, int drop = 0) {
    if (window == nullptr) return;
    SetWindowPos(window, nullptr, left, row * RowHeight() + margin, std::max(wide, 0), height + drop,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(window, visible ? SW_SHOWNA : SW_HIDE);
  };

  std::vector<std::vector<std::size_t>> rows(1);
  int room = width - button - gap;
  for (std::size_t i = 0; i + 1 < m_fields.size(); ++i) {
    const int needed = LabelWidth(m_fields[i]) + m_context.ToPixels(m_fields[i].width) + gap;
    if (needed > room && !rows.back().empty()) {
      rows.emplace_back();
      room = width;
    }
    rows.back().push_back(i);
    room -= needed;
  }
  int row = 0;
  for (const auto& fields : rows) {
    const bool visible = show && row < mostRows;
    int left = 0;
    int needed = row == 0 ? button + gap : 0;
    for (const std::size_t i : fields)
      needed += LabelWidth(m_fields[i]) + m_context.ToPixels(m_fields[i].width) + gap;
    for (const std::size_t i : fields) {
      Field& field = m_fields[i];
      field.shown = visible;
      int wide = m_context.ToPixels(field.width);
      if (i == kWords) wide += width - needed;
      const int label = LabelWidth(field);
      put(field.label, left, row, label, visible);
      const bool combo = i == kSizes || i == kSets;
      put(field.window, left + label, row, std::min(wide, width - left - label), visible,
          combo ? kDropRows * height : 0);
      if (combo) SendMessageW(field.window, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), height - 6);
      left += label + wide + gap;
    }
    ++row;
  }
  m_fields.back().shown = show;
  put(m_fields.back().window, width - button, 0, button, show);
  // Labels stand on the line of their field's text.
  for (const Field& field : m_fields) {
    if (field.label == nullptr) continue;
    RECT place{};
    GetWindowRect(field.label, &place);
    MapWindowPoints(nullptr, m_parent, reinterpret_cast<POINT*>(&place), 2);
    SetWindowPos(field.label, nullptr, place.left, place.top + m_context.ToPixels(kGap / 2), 0, 0,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOSIZE);
  }
  return show ? std::min(static_cast<int>(rows.size()), mostRows) * RowHeight() : 0;
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
    return end ? ListFilter::kMost : ListFilter::kLeast;
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
  filter.leastSize = size.least;
  filter.mostSize = size.most;
  const std::size_t set = Chosen(m_fields[kSets].window);
  if (set >= 1 && set <= m_setIds.size()) filter.setId = m_setIds[set - 1];
  return filter;
}

}  // namespace kxrestore::win32
