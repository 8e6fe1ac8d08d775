// Converters between narrow and wide text. Common rules: a null destination asks for the size; a count of
// 0xFFFFFFFF says that the source is terminated; a result of 0 means that nothing was made. `ok` may be null;
// false says that a replacement character was used or that the conversion failed.
#pragma once

#include "Base/qvBase.h"

namespace qvString {

/// How narrow text is encoded. Only `UTF8Encoding` is tested for: any other value acts as `DefaultEncoding`.
enum Encoding : int {
  DefaultEncoding = 0, ///< The C runtime's current locale (`LC_CTYPE`).
  UTF8Encoding = 1,    ///< UTF-8, whatever the locale.
};

/// The replacement for what cannot be converted: the question mark.
[[nodiscard]] QV_BASE_API char getDefaultMBChar() noexcept;
[[nodiscard]] QV_BASE_API qv::WChar getDefaultWChar() noexcept;

/// Decodes terminated text of the locale, strictly: at most `count` units are written, with a terminator if
/// it fits and a surrogate pair never cut; a null `destination` counts all, without the terminator.
/// @return units made without the terminator, or -1 at an invalid sequence.
QV_BASE_API int getMultiByteStringSize(qv::WChar* destination, const char* source,
                                       unsigned int count) noexcept;

/// Text of the locale to wide. `sourceCount` doesn't cut a longer source: it refuses it, with 0. The
/// destination needs room for the terminator, which is written: a size that isn't below `destinationCount`
/// gives 0. Each byte that doesn't decode becomes `getDefaultWChar()`, with `*ok` false and the rest of the
/// destination zeroed.
/// @return units without the terminator.
QV_BASE_API unsigned int MBStoWCS(const char* source, unsigned int sourceCount, qv::WChar* destination,
                                  unsigned int destinationCount, bool* ok = nullptr) noexcept;

/// Wide to text of the locale, with the rules of `MBStoWCS`. Where any character has no narrow form, `*ok` is
/// false and each unit gives exactly one byte: itself, or `getDefaultMBChar()` if it has no one-byte form.
/// @return bytes without the terminator.
QV_BASE_API unsigned int WCStoMBS(const qv::WChar* source, unsigned int sourceCount, char* destination,
                                  unsigned int destinationCount, bool* ok = nullptr) noexcept;

/// 3 if the source starts with the UTF-8 byte order mark, otherwise 0. A `count` of -1 stands for terminated
/// text; a null source and any other `count` below 3 give 0.
[[nodiscard]] QV_BASE_API int detectUTF8BOM(const char* source, int count) noexcept;

/// UTF-8 to wide. Each ill-formed sequence becomes U+FFFD, with `*ok` false. A leading byte order mark is
/// dropped unless `skipBOMTest`; a source that holds nothing else gives 0 with `*ok` false, an empty source 0
/// with `*ok` true. Writes no terminator, so a destination of exactly the size will do; a smaller one gives
/// 0. Faster where the destination has room for one unit a source byte. @return units.
QV_BASE_API unsigned int UTF8toWCS(const char* source, unsigned int sourceCount, qv::WChar* destination,
                                   unsigned int destinationCount, bool skipBOMTest,
                                   bool* ok = nullptr) noexcept;

/// Wide to UTF-8, without a byte order mark and without a terminator. A lone surrogate becomes U+FFFD and, by
/// design, leaves `*ok` true. An empty source gives 0 with `*ok` true; a too small destination gives 0.
/// Faster where the destination has room for three bytes a unit. @return bytes.
QV_BASE_API unsigned int WCStoUTF8(const qv::WChar* source, unsigned int sourceCount, char* destination,
                                   unsigned int destinationCount, bool* ok = nullptr) noexcept;

} // namespace qvString
