// Text of the C runtime's locale, one character at a time, through the runtime's re-entrant conversions.
// Private. Where the runtime's wide character has 32 bits, surrogate pairs are joined and split here, and
// only here.
#pragma once

#include "Base/Platform/qvPlatformText.h"
#include "Base/qvBase.h"

#include <climits>
#include <cwchar>
#include <string>

namespace qvString {

/// One converted character.
template <class To, int N>
struct LocaleCharacter {
  To made[N];
  int numMade; ///< 0 where there is no such character, or only its start.
  int numUsed; ///< What it takes of the source, which is also what to step over where nothing was made.
};

/// What both directions share. An object reads one text, in order, in the locale that the calling thread has
/// when it is built.
class LocaleConverter {
public:
  /// True if every code below 128 stands for itself in the narrow and in the wide text.
  [[nodiscard]] bool keepsAscii() const noexcept { return keepsAscii_; }

protected:
  std::mbstate_t state_{};

private:
  bool keepsAscii_ = qvPlatform::localeKeepsAscii();
};

/// Narrow to wide.
class LocaleDecoder : public LocaleConverter {
public:
  using Character = LocaleCharacter<qv::WChar, 2>;

  /// The character at `p`, of at most `available` bytes, which isn't 0. NUL is a character. No byte behind
  /// the first that cannot belong to the character is read.
  Character next(const char* p, std::size_t available) noexcept {
    if (keepsAscii() && static_cast<unsigned char>(*p) < 0x80) return {{static_cast<qv::WChar>(*p), 0}, 1, 1};
    return convert(p, available);
  }

private:
  Character convert(const char* p, std::size_t available) noexcept;
};

/// Wide to narrow.
class LocaleEncoder : public LocaleConverter {
public:
  using Character = LocaleCharacter<char, MB_LEN_MAX>;

  /// The character at `p`, of at most `available` units, which isn't 0. NUL is a character, a lone surrogate
  /// none.
  Character next(const qv::WChar* p, std::size_t available) noexcept {
    if (keepsAscii() && *p < 0x80) return {{static_cast<char>(*p)}, 1, 1};
    return convert(p, available);
  }

private:
  Character convert(const qv::WChar* p, std::size_t available) noexcept;
};

/// Terminated wide text as the runtime's own wide functions read it. A surrogate without its partner stays as
/// it is.
[[nodiscard]] std::wstring runtimeForm(const qv::WChar* chars);

} // namespace qvString
