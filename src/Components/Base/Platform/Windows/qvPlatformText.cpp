// The facts about the locale that the calling thread has in the C runtime.
#include "Base/Platform/qvPlatformText.h"

#include <locale.h>

namespace qvPlatform {

const char* decimalPoint() noexcept { return localeconv()->decimal_point; }

// The code pages of East Asia use bytes below 128 as second bytes.
bool localeKeepsAscii() noexcept {
  const unsigned page = ___lc_codepage_func();
  const bool ansi = page >= 1250 && page <= 1258;
  const bool iso = page >= 28591 && page <= 28605;
  return page == 0 || page == 437 || page == 850 || page == 20127 || page == 65001 || ansi || iso;
}

} // namespace qvPlatform
