// The authenticated cipher of RFC 8439, as plain functions. Nothing here depends on secret data in its
// branches or its memory addresses.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ioChaCha20Poly1305 {

inline constexpr std::size_t keySize = 32;
inline constexpr std::size_t nonceSize = 12;
inline constexpr std::size_t tagSize = 16;

/// Encrypts or decrypts `size` bytes in place with the key stream from block `counter` on (RFC 8439, 2.4).
void chacha20(unsigned char* data, std::size_t size, const unsigned char* key, const unsigned char* nonce,
              std::uint32_t counter) noexcept;

/// The one-time authenticator of a message under a 32-byte key (RFC 8439, 2.5).
void poly1305(unsigned char* tag, const unsigned char* message, std::size_t size,
              const unsigned char* key) noexcept;

/// Encrypts `size` bytes in place and stores the tag over them and the `extra` bytes (RFC 8439, 2.8). A nonce
/// must never serve twice under one key.
void seal(unsigned char* data, std::size_t size, const unsigned char* extra, std::size_t extraSize,
          const unsigned char* key, const unsigned char* nonce, unsigned char* tag) noexcept;

/// Decrypts `size` bytes in place where the tag holds; otherwise returns false and leaves them as they were.
[[nodiscard]] bool open(unsigned char* data, std::size_t size, const unsigned char* extra,
                        std::size_t extraSize, const unsigned char* key, const unsigned char* nonce,
                        const unsigned char* tag) noexcept;

/// Overwrites memory in a way that is not optimised away.
void wipe(void* memory, std::size_t size) noexcept;

} // namespace ioChaCha20Poly1305
