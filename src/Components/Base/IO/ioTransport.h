// The calls that links make on an abstract stream. A socket in throw mode throws what it also returns; links
// never throw, so both ways end in the same value.
#pragma once

#include "Base/OS/qvOSIOStream.h"

#include <algorithm>

/// @return how many bytes came, never more than were asked for. `error` takes the result of the call.
inline int ioReadTransport(qvOS::IOStream& stream, void* destination, int count, qvUtil::Error& error) {
  std::uint64_t got = 0;
  try {
    error = stream.read(destination, static_cast<std::uint64_t>(count), &got);
  } catch (const qvUtil::Error& thrown) {
    error = thrown;
  }
  return static_cast<int>(std::min(got, static_cast<std::uint64_t>(count)));
}

/// @return true if all bytes went out. `error` takes the result of the call.
inline bool ioWriteTransport(qvOS::IOStream& stream, const void* source, int count, qvUtil::Error& error) {
  try {
    error = stream.write(source, static_cast<std::uint64_t>(count), nullptr);
  } catch (const qvUtil::Error& thrown) {
    error = thrown;
  }
  return !error;
}
