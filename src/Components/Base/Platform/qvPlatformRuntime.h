// What the C runtimes of the systems do differently with descriptors and streams. Private to the platform.
#pragma once

#include "Base/Platform/qvPlatformFile.h"

#include <cstdint>
#include <cstdio>

namespace qvPlatform {

/// Forgets the runtime's last failure.
void clearRuntimeError() noexcept;
/// Lets `lastError` tell why a call of the runtime failed since `clearRuntimeError`.
void keepRuntimeError() noexcept;

/// Makes a call of the runtime, which answers a negative value where it fails; `lastError` then tells why.
template <class Call>
auto runtimeCall(Call call) noexcept {
  clearRuntimeError();
  const auto result = call();
  if (result < 0) keepRuntimeError();
  return result;
}

/// `fdopen`, in the text form of the runtime only where `mode` holds a "t". Null where it failed.
[[nodiscard]] std::FILE* makeStream(FileHandle file, const char* mode) noexcept;
/// The open file under the stream.
[[nodiscard]] FileHandle fileOfStream(std::FILE* stream) noexcept;
/// `fseek` and `ftell` in 64 bits.
[[nodiscard]] int setStreamPosition(std::FILE* stream, std::int64_t offset, int origin) noexcept;
[[nodiscard]] std::int64_t streamPosition(std::FILE* stream) noexcept;

} // namespace qvPlatform
