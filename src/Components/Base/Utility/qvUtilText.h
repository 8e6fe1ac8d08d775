// Splitting, joining and escaping of text.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"

namespace qvUtil {

/// Cuts `text` at each separator. Neighbouring separators, and one at the start, give empty elements unless
/// `skipEmpty`; one at the very end gives none, so a text of two elements needs one separator between them.
/// With `keepSeparators` each separator is an element of its own and there are no empty elements. An empty
/// text gives an empty result. Wide text is taken up to its first NUL, as by every copy of one. Linear in the
/// length of `text`.
[[nodiscard]] QV_BASE_API qv::vector<qvString::CString>
split(const qvString::CString& text, bool (*isSeparator)(char), bool skipEmpty, bool keepSeparators);
[[nodiscard]] QV_BASE_API qv::vector<qvString::CString> split(const qvString::CString& text, char separator,
                                                              bool skipEmpty, bool keepSeparators);
[[nodiscard]] QV_BASE_API qv::vector<qvString::IString>
split(const qvString::IString& text, bool (*isSeparator)(qv::WChar), bool skipEmpty, bool keepSeparators);
[[nodiscard]] QV_BASE_API qv::vector<qvString::IString>
split(const qvString::IString& text, qv::WChar separator, bool skipEmpty, bool keepSeparators);

/// All elements one after the other, with nothing between them.
[[nodiscard]] QV_BASE_API qvString::CString join(const qv::vector<qvString::CString>& parts);
[[nodiscard]] QV_BASE_API qvString::IString join(const qv::vector<qvString::IString>& parts);

/// 1 plus the number of newline characters (each of CR and LF counts).
[[nodiscard]] QV_BASE_API int numMultiLines(const qvString::CString& text);

/// Cuts at each newline character, so that there are `numMultiLines` elements: CR LF gives an empty line
/// between, a newline at the end an empty last line, an empty text one empty line.
[[nodiscard]] QV_BASE_API qv::vector<qvString::CString> splitMultiLines(const qvString::CString& text);

/// Splits at spaces. A token that starts with a double quote runs to the next one, which a space or the end
/// must follow; spaces inside belong to it, and it may be empty.
/// @return no error, or one whose code is a position in `text`: "Unmatched double quote" (the opening quote's
/// position + 1), "Unexpected character before a double quote: '%c'" (the quote's position), "Unexpected
/// character after double quote: '%c'" (the quote's position + 2). `tokens`, emptied first, keeps what was
/// found.
QV_BASE_API Error splitWithQuotes(const qvString::CString& text, qv::vector<qvString::CString>& tokens);

/// Splits at spaces outside double quotes, which may open and close anywhere in a token and are dropped; a
/// token may be empty. A backslash takes the next character, a backslash or a double quote, as it stands.
/// @return no error, or one whose code is a position in `text`: "Single backslash character" (the length),
/// "Illegal escape of character '%c'" (that character's position + 1), "Unmatched double quote" (the opening
/// quote's position + 1). `tokens`, emptied first, keeps what was found.
QV_BASE_API Error splitWithQuotesAndBackslash(const qvString::CString& text,
                                              qv::vector<qvString::CString>& tokens);

/// Doubles every backslash.
[[nodiscard]] QV_BASE_API qvString::IString rebackslash(const qvString::IString& text);

/// Puts a backslash before each `{`, `}` and `\`.
[[nodiscard]] QV_BASE_API qvString::IString escapeMarkupText(const qvString::IString& text);

/// A sorted copy (by `compare`) without equal neighbours.
[[nodiscard]] QV_BASE_API qv::vector<qvString::CString>
removeDuplicated(const qv::vector<qvString::CString>& texts);

} // namespace qvUtil
