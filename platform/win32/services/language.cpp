#include "platform/win32/services/language.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "base/phrases.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr std::uintmax_t kMaxBytes = 1 << 20;  // a file that is larger holds no phrases

std::string LocaleText(LCID locale, LCTYPE type) {
  std::array<wchar_t, 16> buffer{};
  const int length = GetLocaleInfoW(locale, type, buffer.data(), static_cast<int>(buffer.size()));
  return length <= 1 ? std::string() : Narrow({buffer.data(), static_cast<std::size_t>(length - 1)});
}

std::string Contents(const std::filesystem::path& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error || size > kMaxBytes) return {};
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

UserLanguage LanguageOfUser() {
  const LCID locale = MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT);
  UserLanguage user;
  user.language = LocaleText(locale, LOCALE_SISO639LANGNAME);
  user.languageAndRegion = user.language + "-" + LocaleText(locale, LOCALE_SISO3166CTRYNAME);
  return user;
}

void UsePhrasesBeside(HMODULE module, const UserLanguage& user) {
  UsePhrases({});
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
  if (path.empty()) return;
  for (const std::string& ending :
       {std::string(".txt"), "." + user.languageAndRegion + ".txt", "." + user.language + ".txt"}) {
    const auto file = std::filesystem::path(path).replace_extension(Wide(ending));
    if (UsePhrases(Contents(file)) > 0) return;
  }
}

}  // namespace kxrestore::win32
