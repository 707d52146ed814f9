#include "platform/win32/services/regional.h"

#include <array>

#include "platform/win32/wide_text.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

namespace {

SYSTEMTIME ToSystemTime(const platform::CivilTime& time) {
  SYSTEMTIME system{};
  system.wYear = static_cast<WORD>(time.year);
  system.wMonth = static_cast<WORD>(time.month);
  system.wDay = static_cast<WORD>(time.day);
  system.wHour = static_cast<WORD>(time.hour);
  system.wMinute = static_cast<WORD>(time.minute);
  system.wSecond = static_cast<WORD>(time.second);
  return system;
}

std::wstring LocaleText(LCTYPE what) {
  std::array<wchar_t, 80> buffer{};
  const int length =
      GetLocaleInfoW(LOCALE_USER_DEFAULT, what, buffer.data(), static_cast<int>(buffer.size()));
  return length > 0 ? std::wstring(buffer.data(), length - 1) : std::wstring();
}

// Converts the setting "3;2;0" (groups of three, then of two, repeated) to the number of the format call, 32.
// Without the closing 0 the last group is not repeated; the call's number for that ends in 0.
unsigned Grouping(const std::wstring& setting) {
  unsigned grouping = 0;
  bool repeats = false;
  for (const wchar_t character : setting) {
    if (character < L'0' || character > L'9') continue;
    repeats = character == L'0';
    if (!repeats) grouping = grouping * 10 + static_cast<unsigned>(character - L'0');
  }
  return repeats ? grouping : grouping * 10;
}

}  // namespace

std::string Win32Regional::ShortDate(const platform::CivilTime& time) const {
  const SYSTEMTIME system = ToSystemTime(time);
  std::array<wchar_t, 80> buffer{};
  const int length = GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &system, nullptr, buffer.data(),
                                    static_cast<int>(buffer.size()));
  if (length <= 0) return platform::FixedRegional().ShortDate(time);
  return Narrow({buffer.data(), static_cast<std::size_t>(length - 1)});
}

std::string Win32Regional::LongTime(const platform::CivilTime& time) const {
  SYSTEMTIME system = ToSystemTime(time);
  system.wYear = 2000;  // any valid date
  system.wMonth = system.wDay = 1;
  std::array<wchar_t, 80> buffer{};
  const int length = GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &system, nullptr, buffer.data(),
                                    static_cast<int>(buffer.size()));
  if (length <= 0) return platform::FixedRegional().LongTime(time);
  return Narrow({buffer.data(), static_cast<std::size_t>(length - 1)});
}

std::string Win32Regional::Grouped(std::int64_t number) const {
  std::wstring decimal = LocaleText(LOCALE_SDECIMAL);
  std::wstring thousand = LocaleText(LOCALE_STHOUSAND);
  NUMBERFMTW format{};
  format.LeadingZero = 1;
  format.Grouping = Grouping(LocaleText(LOCALE_SGROUPING));
  format.lpDecimalSep = decimal.data();
  format.lpThousandSep = thousand.data();
  format.NegativeOrder = 1;  // -1
  std::array<wchar_t, 80> buffer{};
  const int length = GetNumberFormatW(LOCALE_USER_DEFAULT, 0, std::to_wstring(number).c_str(), &format,
                                      buffer.data(), static_cast<int>(buffer.size()));
  if (length <= 0) return platform::FixedRegional().Grouped(number);
  return Narrow({buffer.data(), static_cast<std::size_t>(length - 1)});
}

std::string Win32Regional::DecimalPoint() const {
  return Narrow(LocaleText(LOCALE_SDECIMAL).c_str());
}

void Win32Regional::AppendSortKey(std::string& key, std::string_view text) const {
  constexpr DWORD kFlags = LCMAP_SORTKEY | LINGUISTIC_IGNORECASE | SORT_DIGITSASNUMBERS;
  const std::wstring wide = Wide(text);
  const auto length = static_cast<int>(wide.size());
  const auto map = [&](char* to, int room) {
    return LCMapStringEx(LOCALE_NAME_USER_DEFAULT, kFlags, wide.data(), length,
                         reinterpret_cast<wchar_t*>(to), room, nullptr, nullptr, 0);
  };
  std::array<char, 512> buffer;
  int size = length == 0 ? 0 : map(buffer.data(), static_cast<int>(buffer.size()));
  if (size > 0) {
    key.append(buffer.data(), static_cast<std::size_t>(size));
    return;
  }
  if (length == 0) return;
  size = map(nullptr, 0);
  const std::size_t start = key.size();
  if (size > 0) {
    key.resize(start + static_cast<std::size_t>(size));
    if (map(key.data() + start, size) == size) return;
    key.resize(start);
  }
  Regional::AppendSortKey(key, text);
}

platform::CivilTime Win32Regional::Now() const {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

}  // namespace kxrestore::win32
