// The host's hook for the key of encrypted streams. The library holds no key of its own.
#pragma once

#include "Base/qvBase.h"

inline constexpr int ioEncryptKeySize = 32;

/// Stores the key's `ioEncryptKeySize` bytes; false where there is none. Asked once by each encrypting or
/// decrypting filter, when the first byte moves through it, in the thread that uses the stream.
using ioEncryptKeyFunction = bool (*)(unsigned char* key);

/// Installs the hook, process-wide and unguarded: to be called at start-up. Null, as at first, means that
/// there is no key, and every encrypted stream fails. One key must not serve more than 2^32 streams, since
/// each draws a random 64-bit nonce.
QV_BASE_API void ioEncryptKeyInit(ioEncryptKeyFunction function);
