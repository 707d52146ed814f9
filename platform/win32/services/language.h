// The language of the dialog's texts: a file of phrases next to the module, chosen by the user's language.
#pragma once

#include <string>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// The user's display language as in "de" and "de-AT".
struct UserLanguage {
  std::string language;
  std::string languageAndRegion;
};
UserLanguage LanguageOfUser();

// Uses the phrases (base/phrases.h) of the first of these files that contains any, else English: NAME.txt,
// with which a host overrides the user's language, NAME.de-AT.txt, NAME.de.txt. NAME is the module's path
// without its extension.
void UsePhrasesBeside(HMODULE module, const UserLanguage& user = LanguageOfUser());

}  // namespace kxrestore::win32
