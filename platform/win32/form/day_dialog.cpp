#include "platform/win32/form/day_dialog.h"

#include "base/phrases.h"
#include "platform/win32/form/dialog_template.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr WORD kQuestion = 100, kDay = 101;

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
  DialogTemplate dialog(Wide(Say(Phrase::kAskDayTitle)), WS_SYSMENU, 4, 196, 76);
  dialog.Item(SS_LEFT | SS_NOPREFIX, kQuestion, {8, 8, 188, 26}, WideShown(question),
              DialogTemplate::kStatic);
  dialog.Item(WS_TABSTOP | DTS_SHORTDATECENTURYFORMAT, kDay, {8, 30, 98, 44}, {}, DATETIMEPICK_CLASSW,
              sizeof DATETIMEPICK_CLASSW);
  dialog.Item(WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, {84, 56, 134, 70}, Wide(Say(Phrase::kButtonOk)),
              DialogTemplate::kButton);
  dialog.Item(WS_TABSTOP | BS_PUSHBUTTON, IDCANCEL, {138, 56, 188, 70}, Wide(Say(Phrase::kButtonCancel)),
              DialogTemplate::kButton);
  Question asked{{DayOf(first), DayOf(last)}, {}};
  const INT_PTR answer =
      DialogBoxIndirectParamW(module, dialog.Get(), owner, Procedure, reinterpret_cast<LPARAM>(&asked));
  if (answer != IDOK || asked.chosen.wYear == 0) return std::nullopt;
  return platform::CivilTime{asked.chosen.wYear, asked.chosen.wMonth, asked.chosen.wDay};
}

}  // namespace kxrestore::win32
