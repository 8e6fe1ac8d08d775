// Character classes, for narrow and wide characters. They ask the C runtime, so they follow its locale, and
// they count the symbols of CJK fonts as letters.
#pragma once

#include "Base/qvBase.h"

namespace qvString {

/// Code below 128.
[[nodiscard]] QV_BASE_API bool isAscii(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isAscii(qv::WChar c) noexcept;
/// True if all bytes are ASCII, and for a null or empty text.
[[nodiscard]] QV_BASE_API bool isAscii(const char* text) noexcept;

/// The classes of the C runtime, `isupper` to `iscntrl` and `iswupper` to `iswcntrl`.
[[nodiscard]] QV_BASE_API bool isUpper(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isUpper(qv::WChar c) noexcept;
[[nodiscard]] QV_BASE_API bool isLower(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isLower(qv::WChar c) noexcept;
[[nodiscard]] QV_BASE_API bool isDigit(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isDigit(qv::WChar c) noexcept;
[[nodiscard]] QV_BASE_API bool isXDigit(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isXDigit(qv::WChar c) noexcept;
[[nodiscard]] QV_BASE_API bool isSpace(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isSpace(qv::WChar c) noexcept;
[[nodiscard]] QV_BASE_API bool isCntrl(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isCntrl(qv::WChar c) noexcept;

/// The C runtime's mapping of one character; a mapping that leaves the 16-bit range leaves `c` as it is.
[[nodiscard]] QV_BASE_API char toUpper(char c) noexcept;
[[nodiscard]] QV_BASE_API qv::WChar toUpper(qv::WChar c) noexcept;
[[nodiscard]] QV_BASE_API char toLower(char c) noexcept;
[[nodiscard]] QV_BASE_API qv::WChar toLower(qv::WChar c) noexcept;

/// A control character with code 10 or 13.
[[nodiscard]] QV_BASE_API bool isNewLine(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isNewLine(qv::WChar c) noexcept;

/// A control character with code 9.
[[nodiscard]] QV_BASE_API bool isTab(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isTab(qv::WChar c) noexcept;

/// One of 178 symbols of CJK fonts that the classes below take for letters. No `char` is one.
[[nodiscard]] QV_BASE_API bool isLetterModifier(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isLetterModifier(qv::WChar c) noexcept;

/// The runtime's class, or a letter modifier.
[[nodiscard]] QV_BASE_API bool isAlnum(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isAlnum(qv::WChar c) noexcept;
[[nodiscard]] QV_BASE_API bool isGraph(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isGraph(qv::WChar c) noexcept;
/// The wide form is never true of a tab.
[[nodiscard]] QV_BASE_API bool isPrint(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isPrint(qv::WChar c) noexcept;

/// `isAlnum` and not `isDigit`.
[[nodiscard]] QV_BASE_API bool isAlpha(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isAlpha(qv::WChar c) noexcept;

/// The runtime's class, and no letter modifier.
[[nodiscard]] QV_BASE_API bool isPunct(char c) noexcept;
[[nodiscard]] QV_BASE_API bool isPunct(qv::WChar c) noexcept;

} // namespace qvString
