// The short text block at the front of every packet file, which says how the rest is encoded.
//
//   "^@\n" "1\n"               marker and version
//   "1 " or "0 "               least significant byte first, or last
//   "%d "                      an `ioWriteMethod`
//   "1\n"                      portable format
//   "1 2 4 8 4 8 " "8\n"       sizes of char, short, int, 64-bit integer, float, double, and a seventh
//   "@\n"
#pragma once

#include "Base/qvBase.h"

#include <cstddef>
#include <cstdint>

class ioBufferedStreamInput;
class ioBufferedStreamOutput;

/// How a packet file is encoded. These numbers stand in files.
enum ioWriteMethod : std::int32_t {
  ioWriteAscii = 0,
  ioWriteBinary = 1,
  ioWriteAsciiDebug = 2,  ///< With type tags.
  ioWriteBinaryDebug = 3, ///< With type tags.
};

/// The reader that a packet file asks for.
enum ioReadMethod : std::int32_t {
  ioReadInvalid = 0,
  ioReadBinarySameEndian = 1,
  ioReadBinarySwapped = 2,
  ioReadAscii = 3,
  ioReadBinarySameEndianDebug = 4,
  ioReadBinarySwappedDebug = 5,
  ioReadAsciiDebug = 6,
};

/// The stream header. A plain value.
class ioHeader {
public:
  /// Not valid.
  ioHeader() = default;
  /// Valid, in this machine's byte order.
  QV_BASE_API explicit ioHeader(ioWriteMethod writeMethod) noexcept;

  QV_BASE_API void writeHeader(ioBufferedStreamOutput& stream) const;
  /// Reads the header and returns `valid`. A method that is not known is stored as -1 and leaves the header
  /// valid. Waits for ever on a stream that ends before the closing "@".
  QV_BASE_API bool readHeader(ioBufferedStreamInput& stream);
  /// The reader for this header; `ioReadInvalid` for a method that is not known.
  [[nodiscard]] QV_BASE_API ioReadMethod determineReadMethod() const noexcept;
  [[nodiscard]] QV_BASE_API static bool systemIsLittleEndian() noexcept;

  bool valid = false;
  bool littleEndian = false;
  ioWriteMethod method = ioWriteAscii;
};

static_assert(sizeof(ioHeader) == 8 && offsetof(ioHeader, littleEndian) == 1 &&
              offsetof(ioHeader, method) == 4);
