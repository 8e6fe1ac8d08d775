// A hint to the processor, for walks whose next step lies anywhere in memory.
#pragma once

namespace qv::detail {

/// Starts to load what will be read or written soon. Any address will do, also null; nothing else changes.
inline void prefetch([[maybe_unused]] const void* address) noexcept {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#endif
}

} // namespace qv::detail
