#include "platform/win32/form/day_dialog.h"

#include <cstring>
#include <vector>

#include "base/phrases.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr WORD kQuestion = 100, kDay = 101;
constexpr WORD kStaticClass = 0x0082, kButtonClass = 0x0080;

// A dialog template as the system reads it: words, each item on a boundary of four bytes.
class Template {
 public:
  Template(const std::wstring& title, WORD items, short width, short height) {
    const DLGTEMPLATE head{DS_MODALFRAME | DS_CENTER | DS_SHELLFONT | WS_POPUP | WS_CAPTION | WS_SYSMENU,
                           0,
                           items,
                           0,
                           0,
                           width,
                           height};
    Put(&head, sizeof head);
    Word(0);  // no menu
    Word(0);  // the usual class
    Text(title);
    Word(8);
    Text(L"MS Shell Dlg");
  }
  void Item(DWORD style, WORD id, RECT place, const std::wstring& text, const void* windowClass,
            std::size_t size) {
    if (m_bytes.size() % 4 != 0) Word(0);
    const DLGITEMTEMPLATE item{style | WS_CHILD | WS_VISIBLE,
                               0,
                               static_cast<short>(place.left),
                               static_cast<short>(place.top),
                               static_cast<short>(place.right - place.left),
                               static_cast<short>(place.bottom - place.top),
                               id};
    Put(&item, sizeof item);
    Put(windowClass, size);
    Text(text);
    Word(0);  // no data
  }
  void Item(DWORD style, WORD id, RECT place, const std::wstring& text, WORD atom) {
    const WORD windowClass[] = {0xFFFF, atom};
    Item(style, id, place, text, windowClass, sizeof windowClass);
  }
  const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(m_bytes.data()); }

 private:
  void Put(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const BYTE*>(data);
    m_bytes.insert(m_bytes.end(), bytes, bytes + size);
  }
  void Word(WORD word) { Put(&word, sizeof word); }
  void Text(const std::wstring& text) { Put(text.c_str(), (text.size() + 1) * sizeof(wchar_t)); }

  std::vector<BYTE> m_bytes;
};

SYSTEMTIME DayOf(const platform::CivilTime& time) {
  SYSTEMTIME day{};
  day.wYear = static_cast<WORD>(time.year);
  day.wMonth = static_cast<WORD>(time.month);
  day.wDay = static_cast<WORD>(time.day);
  return day;
}

struct Question {
  SYSTEMTIME range[2];
  SYSTEMTIME chosen;
};

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wide, LPARAM extra) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(dialog, DWLP_USER, extra);
    auto& question = *reinterpret_cast<Question*>(extra);
    const HWND day = GetDlgItem(dialog, kDay);
    SendMessageW(day, DTM_SETRANGE, GDTR_MIN | GDTR_MAX, reinterpret_cast<LPARAM>(question.range));
    SendMessageW(day, DTM_SETSYSTEMTIME, GDT_VALID, reinterpret_cast<LPARAM>(&question.range[1]));
    SetFocus(day);
    return FALSE;
  }
  if (message != WM_COMMAND || (LOWORD(wide) != IDOK && LOWORD(wide) != IDCANCEL)) return FALSE;
  auto* const question = reinterpret_cast<Question*>(GetWindowLongPtrW(dialog, DWLP_USER));
  if (LOWORD(wide) == IDOK) {
    SendMessageW(GetDlgItem(dialog, kDay), DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&question->chosen));
  }
  EndDialog(dialog, LOWORD(wide));
  return TRUE;
}

}  // namespace

std::optional<platform::CivilTime> ShowDayDialog(HINSTANCE module, HWND owner, const std::string& question,
                                                 const platform::CivilTime& first,
                                                 const platform::CivilTime& last) {
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_DATE_CLASSES};
  InitCommonControlsEx(&classes);
  // Dialog units.
  Template dialog(Wide(Say(Phrase::kAskDayTitle)), 4, 196, 76);
  dialog.Item(SS_LEFT | SS_NOPREFIX, kQuestion, {8, 8, 188, 26}, WideShown(question), kStaticClass);
  dialog.Item(WS_TABSTOP | DTS_SHORTDATECENTURYFORMAT, kDay, {8, 30, 98, 44}, {}, DATETIMEPICK_CLASSW,
              sizeof DATETIMEPICK_CLASSW);
  dialog.Item(WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, {84, 56, 134, 70}, Wide(Say(Phrase::kButtonOk)),
              kButtonClass);
  dialog.Item(WS_TABSTOP | BS_PUSHBUTTON, IDCANCEL, {138, 56, 188, 70}, Wide(Say(Phrase::kButtonCancel)),
              kButtonClass);
  Question asked{{DayOf(first), DayOf(last)}, {}};
  const INT_PTR answer =
      DialogBoxIndirectParamW(module, dialog.Get(), owner, Procedure, reinterpret_cast<LPARAM>(&asked));
  if (answer != IDOK || asked.chosen.wYear == 0) return std::nullopt;
  return platform::CivilTime{asked.chosen.wYear, asked.chosen.wMonth, asked.chosen.wDay};
}

}  // namespace kxrestore::win32
