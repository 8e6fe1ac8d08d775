// Random bytes that nobody can foretell.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qvPlatform {

/// Fills the buffer from the system's generator [random]. On failure the buffer's content must not be used.
[[nodiscard]] int randomBytes(void* buffer, std::size_t size) noexcept;
/// 64 random bits for names that should not collide. Never fails: without the system's generator it falls
/// back on the clock and a counter, so it is no source for keys.
[[nodiscard]] std::uint64_t randomName() noexcept;

} // namespace qvPlatform
