// C formatting that means the same for narrow and wide formats: `%s` takes a narrow string and `%S` a wide
// one, `%c` a narrow character and `%C` a wide one.
//
// All functions write a terminated text into `buffer` of `size` characters and return its length. A text that
// would leave less than one character free beside its terminator (length at least `size - 1`) counts as too
// long: it is cut, terminated and answered with -1, as is a length beyond the range of `int`.
// Formatting never fails otherwise: `%n` and unknown directives are printed as they stand, a character that
// the locale cannot convert as `?`, a null string as "(null)". `%p` prints sixteen upper-case hexadecimal
// digits. The length modifiers are `hh h l ll L j z t I I32 I64`, and for strings and characters `h` (narrow)
// and `l` or `w` (wide). Numbers follow the locale's decimal point.
#pragma once

#include "Base/qvBase.h"

#include <cstddef>

extern "C" {

QV_BASE_API int QL_vsnprintf(char* buffer, std::size_t size, const char* format, va_list args) noexcept;
QV_BASE_API int QL_snprintf(char* buffer, std::size_t size, const char* format, ...) noexcept;

/// Read the format as `QL_convert_string_format` rewrites it: `%s` is narrow and `%S` is wide unless a flag
/// other than one `-`, a `*` or a length modifier stands before the letter; then the letter is the C
/// runtime's, which in a wide format means `%s` wide and `%S` narrow.
QV_BASE_API int QL_vswprintf(qv::WChar* buffer, std::size_t size, const qv::WChar* format,
                             va_list args) noexcept;
QV_BASE_API int QL_swprintf(qv::WChar* buffer, std::size_t size, const qv::WChar* format, ...) noexcept;

/// A copy of a wide format in which `%s` and `%S`, `%c` and `%C` are exchanged, for the C runtime's reading.
/// Only directives made of one `-`, a width, a dot and a precision, all optional, are touched.
/// @return memory that the caller frees with `free`; null for a null format or where there is no memory.
[[nodiscard]] QV_BASE_API qv::WChar* QL_convert_string_format(const qv::WChar* format) noexcept;
}
