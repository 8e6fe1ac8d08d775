// The facts about the locale, from the calls that look at the calling thread's own.
#include "Base/Platform/qvPlatformText.h"

#include <langinfo.h>

namespace qvPlatform {

const char* decimalPoint() noexcept { return nl_langinfo(RADIXCHAR); }

bool localeKeepsAscii() noexcept {
  const std::string_view codeset = nl_langinfo(CODESET);
  return codeset == "UTF-8" || codeset == "ANSI_X3.4-1968" || codeset.starts_with("ISO-8859-");
}

} // namespace qvPlatform
