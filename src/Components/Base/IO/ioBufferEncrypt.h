// The filter that encrypts and authenticates with ChaCha20-Poly1305 (RFC 8439), under the host's key.
//
// The stream, all numbers most significant byte first:
//   offset 0    4 bytes   "ioEn"
//   offset 4    4 bytes   version, 1
//   offset 8    8 bytes   random nonce of the stream
// and then blocks:
//   offset 0    4 bytes   number of data bytes, 0 to 65536
//   offset 4    4 bytes   sequence number of the block, from 0
//   offset 8              the data, encrypted
//   then       16 bytes   tag over the block's first 8 bytes, with the stream's first 16 before them in the
//                         first block, and over the encrypted data
// A block's nonce is the stream's nonce followed by its sequence number. A block of no data ends the stream.
#pragma once

#include "Base/IO/ioBuffer.h"
#include "Base/IO/ioEncryptKey.h"

#include <array>
#include <span>
#include <vector>

class ioBufferEncrypt : public ioBuffer {
public:
  explicit ioBufferEncrypt(bool forReading);
  /// Wipes the key.
  ~ioBufferEncrypt() override;

  /// Writes what a writer holds and the block that ends the stream, once.
  void finish() override;
  [[nodiscard]] int kind() const override { return ioBufferKindEncrypt; }
  void closeLink() override;
  /// Bytes of at most one block, and of none that was not authenticated. A changed, reordered or cut stream,
  /// and a link without a key, is `ioBufferFailed`; the block that ends the stream is `ioBufferAtEnd`.
  int readRaw(void* destination, int count) override;
  void writeRaw(const void* source, int count) override;

private:
  bool startWriting();
  bool startReading();
  bool fetchKey();
  void wipeKey() noexcept;
  bool readBlock();
  void writeBlock(const unsigned char* data, int size);
  unsigned char* blockRoom(int size);
  [[nodiscard]] std::array<unsigned char, 12> blockNonce() const noexcept;
  [[nodiscard]] std::span<const unsigned char> coveredHeader() const noexcept;

  bool started_ = false;
  bool ended_ = false; ///< The block that ends the stream is written.
  std::uint32_t sequence_ = 0;
  std::array<unsigned char, 24> header_{}; ///< The stream's 16 bytes, then the current block's 8.
  std::array<unsigned char, ioEncryptKeySize> key_{};
  std::vector<unsigned char> block_; ///< Data of the current block, then its tag.
  int blockBytes_ = 0;
  int blockPosition_ = 0;
};
