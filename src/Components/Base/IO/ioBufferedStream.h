// Buffered byte streams over files, slices of files, sockets and abstract streams, with filters that are
// stacked at will. The packet layer reads and writes through them.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

class ioBuffer;
class ioPackageFileEntry;
namespace qvOS {
class IOStream;
}
namespace qvString {
class IString;
}
namespace qvTCP {
class Socket;
}

/// What became of a stream.
enum ioStreamStatus : std::int32_t {
  ioStreamOK = 0,
  ioStreamOpenFailed = 1,
  ioStreamAtEnd = 2,         ///< A read passed the end of the data.
  ioStreamCompressedEnd = 3, ///< The normal end of a compressed stream.
  ioStreamDiskFull = 4,
  ioStreamBadChecksum = 5,
  ioStreamFailed = 6, ///< Any other failure, misuse of a closed stream included.
};

/// What input and output streams share: status, chain and filters. No operation throws: a failure stands in
/// the status. Destroying a stream does not close it: unflushed output is lost and a descriptor stays open.
/// Copies share the chain, and only one of them may close it. One thread at a time uses a stream.
///
/// Reading, writing, seeking and telling ask for an open stream; on a closed one they do nothing, give 0 or
/// false, and turn a good status into `ioStreamFailed`.
class QV_BASE_API ioBufferedStream {
public:
  explicit ioBufferedStream(bool forReading) noexcept;
  ioBufferedStream(const ioBufferedStream& other) noexcept;
  ioBufferedStream& operator=(const ioBufferedStream& other) noexcept;
  virtual ~ioBufferedStream();

  /// Opens the file. A chain that is still in place is given up without being closed, here and in every other
  /// open function.
  virtual void openFile(const qvString::IString& name) = 0;
  /// Closes the transport and deletes the chain; nothing where the stream is closed. The status survives.
  virtual void close();
  /// Borrows the socket. Null gives `ioStreamFailed`.
  virtual void openSocket(qvTCP::Socket* socket) = 0;

  [[nodiscard]] bool good() const noexcept { return status_ == ioStreamOK; }
  [[nodiscard]] ioStreamStatus getStatus() const noexcept { return status_; }
  void setStatus(ioStreamStatus status) noexcept { status_ = status; }
  /// Clears the stream's status only. The links keep theirs, so it may come back with the next operation.
  void resetStatus() noexcept { status_ = ioStreamOK; }
  [[nodiscard]] bool isForReading() const noexcept { return forReading_; }

  /// Push (true) a filter on top of the chain or pop (false) whatever is on top. No order is enforced, but
  /// the reading side pushes in the order of the writing side. Popping a writer's filter completes its
  /// output. `compress(false)` also turns `ioStreamCompressedEnd` into a good status.
  void compress(bool on);
  void checksum(bool on);
  /// See ioEncryptKey.h for the key.
  void encrypt(bool on);

  /// Flushes the chain and moves the transport, a negative position meaning the end of a file. False where
  /// the transport has no position, as on a chain with a filter on top.
  bool seek(std::int64_t position);
  /// Flushes the chain and tells the transport's position; 0 where it has none. A reading stream loses what
  /// it had buffered: reading goes on from the position told.
  std::int64_t tell();

  /// Has the function told about the bytes that move through the link now on top, modulo 2^32.
  void associateProgressFunction(void (*function)(int totalBytes));

  /// The size of a file in bytes; -1 for an empty name and for a file that cannot be asked.
  [[nodiscard]] static std::int64_t fileSize(const qvString::IString& name);

protected:
  /// Takes a new link with its transport as the chain. It is deleted again where it failed, unless it failed
  /// by `kept`.
  void openChain(ioBuffer* link, ioStreamStatus kept);
  /// Takes a new link as the chain, whatever its status is.
  void setChain(ioBuffer* link) noexcept;
  /// Turns the top link's status into the stream's; a good one changes nothing.
  void promoteBufferStatus() noexcept;
  /// False on a closed stream, which it marks as failed.
  [[nodiscard]] bool demandOpen() noexcept;

  ioStreamStatus status_ = ioStreamOK;
  bool forReading_;
  ioBuffer* bufferChain_ = nullptr; ///< The top link; null while closed.

private:
  template <class Link>
  void changeFilter(bool on);
  void addBufferToChain(ioBuffer* link) noexcept;
  void popBufferChain();
};

static_assert(sizeof(ioBufferedStream) == (sizeof(void*) == 8 ? 24 : 16));

/// A stream that reads.
class QV_BASE_API ioBufferedStreamInput : public ioBufferedStream {
public:
  ioBufferedStreamInput() noexcept;

  void openFile(const qvString::IString& name) override;
  void openSocket(qvTCP::Socket* socket) override;
  /// Takes the standard input, which `close` then closes.
  void openStdin();
  /// Borrows the stream.
  void openIOStream(qvOS::IOStream* stream);
  /// Opens a range of a file. One that passes the file's end reads as empty. The status is not reset before.
  void openFileSlice(const qvString::IString& name, std::int64_t start, std::int64_t size);
  /// Opens the stored bytes of a package's entry: `ioStreamFailed` for null, `ioStreamOpenFailed` for an
  /// entry of no package.
  void openPackageFileEntry(const ioPackageFileEntry* entry);

  /// The next byte; 0 where the status is not good.
  char readChar();
  /// A decimal number after blanks, newlines and tabs, with or without a minus sign, of at most 39
  /// characters; 0 without digits. The character after it is consumed. A number past an int's range becomes
  /// the nearest int.
  int readInt();
  /// Reads up to and including a newline, at most `size` - 1 characters, and terminates them. At the end of
  /// the data one 0 byte is stored as if it were read. With a `size` below 1, or a status that is not good,
  /// only the terminator is stored, so `buffer` has room for one character in any case. Nothing for null.
  void readLine(char* buffer, int size);
  /// Reads `count` bytes. @return how many came; fewer only where the status is not good.
  int readData(char* buffer, int count);

private:
  friend class ioPacketFileAsciiBuffer;
  /// Fills the top link's buffer where nothing is left in it. False where there is still nothing.
  bool holdMore();
};

/// A stream that writes. Copying it shares the chain.
class QV_BASE_API ioBufferedStreamOutput : public ioBufferedStream {
public:
  ioBufferedStreamOutput() noexcept;

  /// Whether `openFile` empties an existing file; it does unless told otherwise.
  void truncateOnOpen(bool on) noexcept { truncate_ = on; }

  /// Opens or makes the file. A failure shows only at the next operation: straight after this call the status
  /// is good.
  void openFile(const qvString::IString& name) override;
  void openSocket(qvTCP::Socket* socket) override;
  /// Takes the standard output, which `close` then closes.
  void openStdout();
  /// Borrows the stream.
  void openIOStream(qvOS::IOStream* stream);
  /// Flushes and closes.
  void close() override;

  /// Hands everything down to the transport. A filter that has not gathered enough for a unit of its own
  /// keeps the rest. Nothing where the stream is closed.
  void flush();
  /// Writes one byte, after emptying the top link's buffer: it is slow, and makes a checksum block of each
  /// byte, so it is for single bytes only.
  void writeChar(char c);
  void writeData(const char* data, int count);
  /// Writes a terminated text without its terminator; nothing for null.
  void writeString(const char* text);
  /// Writes a formatted text (see QL_vsnprintf), cut to 1023 bytes.
  void printf(const char* format, ...);

private:
  bool truncate_ = true;
};

static_assert(sizeof(ioBufferedStreamInput) == sizeof(ioBufferedStream));
static_assert(sizeof(ioBufferedStreamOutput) == sizeof(ioBufferedStream) + sizeof(void*));
