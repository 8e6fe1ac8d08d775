// The one-byte codes that the tagged encodings put in front of every value. They stand in files.
#pragma once

class ioContext;

namespace ioTypeTag {

inline constexpr char Bool = 'b', BoolArray = 'B';
inline constexpr char Char = 'c', CharArray = '1';
inline constexpr char UChar = 'C', UCharArray = '2';
inline constexpr char Short = 'h', ShortArray = '3';
inline constexpr char UShort = 'H', UShortArray = '4';
inline constexpr char Int = 'i', IntArray = '5';
inline constexpr char UInt = 'I', UIntArray = '6';
inline constexpr char Int64 = 'l', Int64Array = '7';
inline constexpr char UInt64 = 'L', UInt64Array = '8';
inline constexpr char Float = 'f', FloatArray = '9';
inline constexpr char Double = 'd', DoubleArray = '0';
inline constexpr char CString = 's';
inline constexpr char Reference = 'r';

/// The name of a code, such as "Int"; "(invalid type)" for any other value.
[[nodiscard]] const char* name(char tag) noexcept;

/// Reports that a reader met `got` where it wanted `expected`, and stops in `fatalError`.
[[noreturn]] void mismatch(const ioContext& context, char got, char expected);

} // namespace ioTypeTag
