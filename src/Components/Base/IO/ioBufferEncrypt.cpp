#include "Base/IO/ioBufferEncrypt.h"

#include "Base/IO/ioBytes.h"
#include "Base/IO/ioChaCha20Poly1305.h"
#include "Base/Platform/qvPlatformRandom.h"

#include <algorithm>

namespace cipher = ioChaCha20Poly1305;

static_assert(cipher::keySize == ioEncryptKeySize);

namespace {

constexpr int streamHeaderSize = 16;
constexpr int blockHeaderSize = 8;
constexpr int nonceSize = 8;
constexpr int tagSize = cipher::tagSize;
constexpr int largestBlock = 65536;
constexpr std::uint32_t lastSequence = 0xFFFFFFFFU;
constexpr unsigned char magic[] = {'i', 'o', 'E', 'n', 0, 0, 0, 1};
constexpr int nonceOffset = sizeof magic;

ioEncryptKeyFunction keyFunction = nullptr;

} // namespace

void ioEncryptKeyInit(ioEncryptKeyFunction function) { keyFunction = function; }

ioBufferEncrypt::ioBufferEncrypt(bool forReading) : ioBuffer(forReading, linkBufferSize) {}

ioBufferEncrypt::~ioBufferEncrypt() { wipeKey(); }

void ioBufferEncrypt::wipeKey() noexcept { cipher::wipe(key_.data(), key_.size()); }

bool ioBufferEncrypt::fetchKey() { return keyFunction && keyFunction(key_.data()); }

std::array<unsigned char, cipher::nonceSize> ioBufferEncrypt::blockNonce() const noexcept {
  std::array<unsigned char, cipher::nonceSize> nonce;
  std::copy_n(header_.begin() + nonceOffset, nonceSize, nonce.begin());
  ioStoreBig32(nonce.data() + nonceSize, sequence_);
  return nonce;
}

/// What a block's tag covers beside its data: the block's header, and in the first block the stream's header.
std::span<const unsigned char> ioBufferEncrypt::coveredHeader() const noexcept {
  return std::span(header_).subspan(sequence_ == 0 ? 0 : streamHeaderSize);
}

/// Makes room for a block's data and its tag.
unsigned char* ioBufferEncrypt::blockRoom(int size) {
  const auto needed = static_cast<std::size_t>(size + tagSize);
  if (block_.size() < needed) block_.resize(needed);
  return block_.data();
}

// ---- Writing -------------------------------------------------------------------------------------------

bool ioBufferEncrypt::startWriting() {
  if (started_) return true;
  started_ = true;
  if (!fetchKey()) return false;
  std::copy(std::begin(magic), std::end(magic), header_.begin());
  if (qvPlatform::randomBytes(header_.data() + nonceOffset, nonceSize)) return false;
  writeNext(header_.data(), streamHeaderSize);
  return good();
}

void ioBufferEncrypt::writeRaw(const void* source, int count) {
  const auto* bytes = static_cast<const unsigned char*>(source);
  while (count > 0 && good()) {
    const int piece = std::min(count, largestBlock);
    writeBlock(bytes, piece);
    bytes += piece;
    count -= piece;
  }
}

void ioBufferEncrypt::writeBlock(const unsigned char* data, int size) {
  // A nonce never comes twice: the last sequence number is left to the block that ends the stream.
  const bool mayFollow = !ended_ && (size == 0 || sequence_ != lastSequence);
  if (!mayFollow || !startWriting()) return setStatus(ioBufferFailed);
  unsigned char* const block = blockRoom(size);
  std::copy_n(data, size, block);
  ioStoreBig32(header_.data() + streamHeaderSize, static_cast<std::uint32_t>(size));
  ioStoreBig32(header_.data() + streamHeaderSize + 4, sequence_);
  const auto covered = coveredHeader();
  cipher::seal(block, static_cast<std::size_t>(size), covered.data(), covered.size(), key_.data(),
               blockNonce().data(), block + size);
  writeNext(header_.data() + streamHeaderSize, blockHeaderSize);
  writeNext(block, size + tagSize);
  inheritStatus(true);
  ++sequence_;
}

void ioBufferEncrypt::finish() {
  if (forReading()) return;
  flushBuffer();
  if (good() && !ended_) {
    writeBlock(nullptr, 0);
    ended_ = true;
    wipeKey();
  }
  flushChain();
}

void ioBufferEncrypt::closeLink() {
  finish();
  closeNext();
}

// ---- Reading -------------------------------------------------------------------------------------------

int ioBufferEncrypt::readRaw(void* destination, int count) {
  if (!good()) return 0;
  if (blockPosition_ == blockBytes_ && !readBlock()) {
    // The link below may say why. Its own end is no excuse: this stream ends with a block that says so.
    inheritStatus(false);
    if (good()) setStatus(ioBufferFailed);
    return 0;
  }
  if (blockBytes_ == 0) {
    setStatus(ioBufferAtEnd);
    wipeKey();
    return 0;
  }
  const int piece = std::min(count, blockBytes_ - blockPosition_);
  std::memcpy(destination, block_.data() + blockPosition_, static_cast<std::size_t>(piece));
  blockPosition_ += piece;
  return piece;
}

bool ioBufferEncrypt::startReading() {
  if (started_) return true;
  started_ = true;
  return fetchKey() && readNext(header_.data(), streamHeaderSize) == streamHeaderSize &&
         std::equal(std::begin(magic), std::end(magic), header_.begin());
}

/// Reads and decrypts the next block. False unless it is whole, in sequence and authentic.
bool ioBufferEncrypt::readBlock() {
  if (!startReading()) return false;
  unsigned char* const blockHeader = header_.data() + streamHeaderSize;
  if (readNext(blockHeader, blockHeaderSize) < blockHeaderSize) return false;
  const std::uint32_t size = ioLoadBig32(blockHeader);
  if (size > largestBlock || ioLoadBig32(blockHeader + 4) != sequence_) return false;
  if (size > 0 && sequence_ == lastSequence) return false;
  const int length = static_cast<int>(size);
  unsigned char* const block = blockRoom(length);
  if (readNext(block, length + tagSize) < length + tagSize) return false;
  const auto covered = coveredHeader();
  if (!cipher::open(block, size, covered.data(), covered.size(), key_.data(), blockNonce().data(),
                    block + size))
    return false;
  ++sequence_;
  blockBytes_ = length;
  blockPosition_ = 0;
  return true;
}
