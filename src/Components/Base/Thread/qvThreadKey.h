// Keys: one pointer for each thread under one number.
#pragma once

#include "Base/qvBase.h"

namespace qvThread {

/// What `createThreadKey` answers where the system has no more keys.
inline constexpr unsigned noThreadKey = 0xffffffff;

/// Makes a key, under which every thread has a pointer of its own, null at first.
/// @return the key; `noThreadKey` where the process has as many as the system allows (about a thousand).
[[nodiscard]] QV_BASE_API unsigned createThreadKey() noexcept;

/// Gives a key back. The values that threads have under it are forgotten and not freed. @return false where
/// there is no such key.
QV_BASE_API bool freeThreadKey(unsigned key) noexcept;

/// What this thread has stored under `key`; null where it stored nothing, or where there is no such key.
[[nodiscard]] QV_BASE_API void* getThreadSpecificValue(unsigned key) noexcept;

/// Stores this thread's pointer. It is not freed when the thread ends. @return false where there is no such
/// key or no memory for it.
QV_BASE_API bool setThreadSpecificValue(unsigned key, void* value) noexcept;

} // namespace qvThread
