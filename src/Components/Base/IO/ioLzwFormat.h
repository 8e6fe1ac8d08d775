// What the writer and the reader of a compressed stream agree on.
//
// The stream is three magic bytes and then codes, packed least significant bit first into groups of eight: a
// group of 9-bit codes has 9 bytes. Codes start with 9 bits and grow to 16 as the table of strings fills; a
// change of the width, a clear code and the end of the stream start a new group, and the rest of the old one
// is filling. Codes below 256 are bytes. Every code that is written, but for the first after the start or a
// clear code, stands for a new table entry: the string before it and its own first byte.
#pragma once

inline constexpr unsigned char ioLzwMagic[3] = {0x1F, 0x9D, 0x90};
inline constexpr int ioLzwFirstBits = 9;
inline constexpr int ioLzwFirstMaxCode = 511;
inline constexpr int ioLzwWidestBits = 16;
inline constexpr int ioLzwCodeLimit = 65536;
inline constexpr int ioLzwClearCode = 256;
inline constexpr int ioLzwEndCode = 257;
inline constexpr int ioLzwFirstFreeCode = 258;
inline constexpr int ioLzwGroupSize = 16; ///< Bytes of the widest group.

/// The greatest code of a width. 16 bits give the limit itself, which no code reaches, so that the last width
/// is never left.
[[nodiscard]] constexpr int ioLzwMaxCode(int codeBits) noexcept {
  return codeBits == ioLzwWidestBits ? ioLzwCodeLimit : (1 << codeBits) - 1;
}
