// The status of a packet file's context, the top of the three sticky statuses: link, stream, context.
#pragma once

#include <cstdint>

/// What became of a packet file. Once it is not `ioOK` it stays, and reading stops before the next packet.
enum ioStatus : std::int32_t {
  ioOK = 0,
  ioFailed = 1,      ///< Misuse, or a failure of the stream.
  ioOpenFailed = 2,  ///< The stream could not be opened.
  ioAtEnd = 3,       ///< The end packet was read; `readFile` turns it into `ioOK`.
  ioBadData = 4,     ///< The data ended early or made no sense.
  ioDiskFull = 5,    ///< The disk is full.
  ioHalted = 6,      ///< `ioReadContext::halt` stopped the read.
  ioBadChecksum = 7, ///< A checksum failed.
};
