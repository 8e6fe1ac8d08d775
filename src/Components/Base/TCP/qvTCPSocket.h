// A blocking TCP socket that is also a byte stream, and the client's side of a connection. Strings cross a
// socket in frames: two bytes of length, most significant first, then the text in UTF-8 with no terminator.
#pragma once

#include "Base/Containers/qvPair.h"
#include "Base/OS/qvOSIOStream.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/Utility/qvUtilInterval.h"
#include "Base/qvBase.h"

#include <cstdint>
#include <cstdio>

namespace qvString {
class CString;
class IString;
} // namespace qvString

namespace qvTCP {

class Address;
class SocketImpl;

/// A stream socket. Codes of its errors: 1 a system call failed; 2 misuse, or a connection that failed in a
/// way not told below; 3 a host not found, an address in use or a text too long; 4 closed, not connected,
/// network unreachable or refused. A socket belongs to one thread at a time; there are no locks. A write to a
/// closed peer is an error and never a signal of the system.
class QV_BASE_API Socket : public qvOS::IOStream {
public:
  /// Closes both sides; the result of the close is lost.
  ~Socket() override;
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  /// Reads exactly `count` bytes, waiting as long as it takes. `*got` (may be null) receives how many came,
  /// also on a failure. For a `count` of 0 the system is asked once too: it waits until there is something to
  /// read, takes nothing of it, and the result is code 4.
  /// @return no error; code 4 "connection closed" where nothing came any more; code 1 on any other failure.
  /// In throw mode a failure is thrown as well.
  qvUtil::Error read(void* buffer, std::uint64_t count, std::uint64_t* got) override;

  /// Writes exactly `count` bytes, waiting as long as it takes. `*put` (may be null) receives how many went,
  /// also on a failure.
  /// @return no error, or code 1. In throw mode a failure is thrown as well.
  qvUtil::Error write(const void* buffer, std::uint64_t count, std::uint64_t* put) override;

  /// Writes one frame of at most 65535 bytes, as two raw writes: the length, then the text. Where answers are
  /// waited for, `setNoDelay` spares the second the wait for the first one's acknowledgement.
  /// @return no error; code 3 for a longer text, of which nothing is sent; else as the raw `write`.
  qvUtil::Error write(const char* text);
  qvUtil::Error write(const qvString::CString& text);
  /// Writes the text's UTF-8 form as one frame.
  qvUtil::Error write(const qvString::IString& text);

  /// Reads one frame. `text` keeps its value where the frame did not come whole. The memory of that value, up
  /// to 64 KB, may stay this socket's own. Errors as of the raw `read`.
  qvUtil::Error read(qvString::CString& text);
  qvUtil::Error read(qvString::IString& text);

  /// Whether this is an accepted socket. Connecting a client socket does not set it.
  [[nodiscard]] bool connected() const noexcept;

  /// The limit of `wait`; zero, the start value, means none.
  [[nodiscard]] qvUtil::Interval getTimeout() const;
  void setTimeout(const qvUtil::Interval& timeout);

  /// Waits without limit until there is something to read, then tells true; false at once without a socket.
  /// This is no poll: for one, wait on a set of sockets with a small interval.
  [[nodiscard]] bool dataAvailable() const;

  /// Waits until there is something to read or the timeout has passed; both give no error.
  /// @return no error, or code 1.
  qvUtil::Error wait() const;

  /// In throw mode failures of the raw reads and writes, and texts too long, are thrown as well as returned.
  [[nodiscard]] bool getThrowMode() const noexcept;
  void setThrowMode(bool throwMode) noexcept;

  /// Sends small writes at once (true), or gathers them (false).
  /// @return no error; code 2 without a socket; code 1 where the system refuses.
  qvUtil::Error setNoDelay(bool noDelay);

  /// Closes sides: bit 1 the reading side, bit 2 the writing side, 3 both. With both bits of an open socket,
  /// or with the second side, everything is closed, a C stream included; otherwise one side only, the reading
  /// side first where both are named. The result tells an error, code 1, where the system's shutdown of the
  /// reading side or of the whole socket succeeded; so `close(3)` of a healthy socket carries one. It is no
  /// failure of the close.
  qvUtil::Error close(int how);

  /// The local end. The address is made once and stays this socket's own.
  /// @return null with code 2 without a socket, or code 1 where the system cannot tell.
  qv::pair<const Address*, qvUtil::Error> localAddress();

  /// The other end: of a client socket the address that it was built with.
  /// @return null with code 4 where the socket is not connected, or code 1 where the system cannot tell.
  qv::pair<const Address*, qvUtil::Error> remoteAddress();

  /// A C stream, open for reading and writing, over a duplicate of the socket's descriptor. It is made once,
  /// stays this socket's own and is closed with it. Between reading and writing again the caller seeks by 0,
  /// as C wants it; that this fails means nothing.
  /// @return no error; code 2 without a socket; code 1 where it cannot be made.
  qvUtil::Error getCStream(std::FILE*& stream);
  qv::pair<std::FILE*, qvUtil::Error> getCStream();

  /// The hidden state, for the library's own waiting and listening.
  [[nodiscard]] SocketImpl* getImpl() const noexcept { return impl_; }

protected:
  Socket();

private:
  SocketImpl* impl_;
};

/// The side that calls.
class QV_BASE_API ClientSocket : public Socket {
public:
  /// Remembers a copy of `address` as the remote end; nothing is connected yet.
  explicit ClientSocket(const Address& address);

  /// Connects to the address over IPv4, and the loopback also over IPv6, in this order, until one answers.
  /// A failure on an earlier candidate stays in the result when a later one connects, so what counts is
  /// whether the operations work. Prints "Connection failed: ..." to the standard output for each entry that
  /// refuses.
  /// @return no error; code 4 where the network is unreachable or the port refused; code 2 for anything else.
  qvUtil::Error connect();
};

} // namespace qvTCP
