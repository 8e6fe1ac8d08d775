// One link of the chain that every packet file and package entry travels through. The link at the bottom
// talks to a transport; the links above it are filters; a buffered stream holds the top one. Links are
// internal: nothing outside the library names one.
#pragma once

#include "Base/Utility/qvUtilError.h"

#include <cstdint>
#include <cstring>
#include <memory>

/// What became of a link. Once it is not `ioBufferOK` the link's loops stop; it never goes back.
enum ioBufferStatus : std::int32_t {
  ioBufferOK = 0,
  ioBufferOpenFailed = 1,    ///< A file could not be opened, or a negative descriptor was attached.
  ioBufferAtEnd = 2,         ///< End of the data.
  ioBufferDiskFull = 3,      ///< A write found the disk full.
  ioBufferBadChecksum = 4,   ///< A checksum block failed to verify.
  ioBufferCompressedEnd = 5, ///< The end code of a compressed stream was read.
  ioBufferFailed = 6,        ///< Any other failure.
};

/// What `ioBuffer::kind` answers: the class of the link.
enum ioBufferKind : int {
  ioBufferKindFD = 0,
  ioBufferKindCompress = 1,
  ioBufferKindChecksum = 2,
  ioBufferKindTCP = 3,
  ioBufferKindEncrypt = 4,
  ioBufferKindIOStream = 5,
  ioBufferKindFileSubset = 6,
};

/// Told how many bytes a link moved so far, modulo 2^32, whenever its buffer was filled or emptied.
using ioProgressFunction = void (*)(int totalBytes);

/// A buffer for one direction, over the link below it. No link throws, and none reports a failure by its
/// result alone: the failure stands in the status. Destroying a link deletes what lies below it and closes no
/// transport. Not thread-safe: a chain belongs to one stream, and one thread at a time uses that.
class ioBuffer {
public:
  static constexpr int linkBufferSize = 4096;

  /// A link with its own buffer of `bufferSize` bytes, made when the first byte moves. It belongs to whoever
  /// holds it, see `retain`.
  ioBuffer(bool forReading, int bufferSize);
  virtual ~ioBuffer();
  ioBuffer(const ioBuffer&) = delete;
  ioBuffer& operator=(const ioBuffer&) = delete;

  /// Moves the transport to a position; false where the link has none. Filters have none.
  virtual bool seekLink(std::int64_t position);
  /// The transport's position, which takes no account of what lies in buffers; 0 where the link has none.
  virtual std::int64_t tellLink();
  /// Completes what a filter writes, before it leaves the chain.
  virtual void finish();
  /// The link's class, an `ioBufferKind`.
  [[nodiscard]] virtual int kind() const = 0;
  /// Lets go of the transport, through all the links below.
  virtual void closeLink() = 0;
  /// Reads past the link's own buffer. @return how many bytes came: fewer than `count` or -1 are no failure
  /// unless the status says so.
  virtual int readRaw(void* destination, int count) = 0;
  /// Writes past the link's own buffer.
  virtual void writeRaw(const void* source, int count) = 0;

  /// Puts this link on top of `link` and owns it from now on.
  void setNext(ioBuffer* link);
  /// Finishes this link and hands the one below it, which may be null, to the caller.
  [[nodiscard]] ioBuffer* detachNext();

  /// Reads `count` bytes. @return how many came; fewer only where the status is not good. 0 for a count below
  /// 1. Waits as long as the transport neither gives bytes nor sets a status.
  int readBytes(void* destination, int count);
  /// Writes `count` bytes, of which the last ones stay in the buffer until it is full or flushed. Nothing for
  /// a count below 1.
  void writeBytes(const void* source, int count);
  /// Refills a reading link from below, over what it holds.
  void fillBuffer();
  /// Hands what a writing link holds to the link below; a reading one drops what it holds.
  void flushBuffer();
  /// `flushBuffer` on this link and all links below; their statuses rise to this one.
  void flushChain();
  /// Takes over the status of the link below unless that is good. An end, plain or compressed, rises only
  /// with `includeEnd`.
  void inheritStatus(bool includeEnd);

  [[nodiscard]] bool good() const noexcept { return status_ == ioBufferOK; }
  [[nodiscard]] ioBufferStatus getStatus() const noexcept { return status_; }
  void setStatus(ioBufferStatus status) noexcept { status_ = status; }
  void setProgressFunction(ioProgressFunction function) noexcept { progressFunction_ = function; }
  [[nodiscard]] const qvUtil::Error& lastError() const noexcept { return lastError_; }
  [[nodiscard]] int totalBytes() const noexcept { return totalBytes_; }
  [[nodiscard]] bool forReading() const noexcept { return forReading_; }
  [[nodiscard]] ioBuffer* nextLink() const noexcept { return nextLink_; }

  /// Bytes that a reading link holds and nobody took yet, and the first of them.
  [[nodiscard]] int heldBytes() const noexcept {
    return validBytes_ > position_ ? validBytes_ - position_ : 0;
  }
  [[nodiscard]] const unsigned char* heldData() const noexcept { return buffer_.get() + position_; }
  /// Takes `count` of the held bytes; `count` is 0 to `heldBytes`.
  void dropHeld(int count) noexcept { position_ += count; }
  /// Stores one byte of a writing link. The buffer must have room.
  void putByte(unsigned char byte);

  /// A further owner of this link: copies of a stream share one chain.
  void retain() noexcept { ++owners_; }
  /// One owner less, and the last one deletes the chain from here on. Null is let pass.
  static void release(ioBuffer* link) noexcept;

protected:
  /// Reads and writes on the link below. With none there the status becomes `ioBufferFailed`.
  int readNext(void* destination, int count);
  void writeNext(const void* source, int count);
  /// `closeLink` of a filter: closes the links below, whose failure rises where this one is still good.
  void closeNext();

  qvUtil::Error lastError_; ///< What the last call of an IOStream or a socket returned.

private:
  unsigned char* room();
  int readPieces(unsigned char* destination, int count);
  void writePieces(const unsigned char* source, int count);
  void countBytes(int count);

  std::unique_ptr<unsigned char[]> buffer_;
  std::int32_t bufferSize_;
  std::int32_t position_ = 0;   ///< Of the next byte to read or write in the buffer.
  std::int32_t validBytes_ = 0; ///< What the buffer of a reading link holds; -1 after some failures.
  std::int32_t totalBytes_ = 0; ///< Wraps.
  ioBufferStatus status_ = ioBufferOK;
  bool forReading_;
  ioBuffer* nextLink_ = nullptr;
  ioProgressFunction progressFunction_ = nullptr;
  int owners_ = 1;
};

inline int ioBuffer::readBytes(void* destination, int count) {
  if (count < 1) return 0;
  if (status_ != ioBufferOK || count > validBytes_ - position_)
    return readPieces(static_cast<unsigned char*>(destination), count);
  std::memcpy(destination, buffer_.get() + position_, static_cast<std::size_t>(count));
  position_ += count;
  return count;
}

inline void ioBuffer::writeBytes(const void* source, int count) {
  if (count < 1) return;
  if (status_ != ioBufferOK || !buffer_ || count > bufferSize_ - position_)
    return writePieces(static_cast<const unsigned char*>(source), count);
  std::memcpy(buffer_.get() + position_, source, static_cast<std::size_t>(count));
  position_ += count;
}
