#include "Base/TCP/qvTCPSocket.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformSocket.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/qvTCPSocketImpl.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>

namespace qvTCP {

using qvPlatform::SocketEnd;
using qvPlatform::SocketSide;
using qvPlatform::systemErrorText;
using qvString::CString;
using qvString::IString;
using qvUtil::Error;
using qvUtil::Interval;

static_assert(sizeof(Socket) == 2 * sizeof(void*) && sizeof(ClientSocket) == sizeof(Socket));

namespace {

constexpr std::uint64_t largestPiece = 1 << 30; // what every system moves in one call
constexpr unsigned int frameLimit = 65536;

Error noSocketError() { return Error(2, "No socket has been created"); }

Error thrownInThrowMode(const SocketImpl& impl, Error error) {
  if (error && impl.throwMode) throw error;
  return error;
}

// Asks `moveSome(done, size, &moved)` until all `count` bytes went, at least once. `*total` (may be null)
// receives how many did.
template <class MoveSome>
Error moveAll(const SocketImpl& impl, std::uint64_t count, std::uint64_t* total, MoveSome moveSome) {
  Error error;
  std::uint64_t done = 0;
  do {
    std::size_t moved = 0;
    error = moveSome(done, static_cast<std::size_t>(std::min(count - done, largestPiece)), &moved);
    done += moved;
  } while (!error && done < count);
  if (total) *total = done;
  return thrownInThrowMode(impl, error);
}

int waitFor(const SocketImpl& impl, const Interval& limit) noexcept {
  qvPlatform::SocketWait entry{impl.handle, false};
  return qvPlatform::waitReadable(&entry, 1, deadlineAfter(limit));
}

Error makeAddress(const SocketImpl& impl, SocketEnd end, std::unique_ptr<Address>& address) {
  std::string host;
  int port = 0;
  const Error error = systemError(1, qvPlatform::socketEndpoint(impl.handle, end, &host, &port));
  if (!error) address = std::make_unique<Address>(IString(host.c_str(), qvString::UTF8Encoding), port);
  return error;
}

// The result of a shutdown is told the other way round when reading ends or everything closes: success is the
// error. Callers know that and do not take it for a failure of the close.
Error invertedShutdownError(int number, const char* format) {
  return number ? Error() : Error(1, format, systemErrorText(0).c_str());
}

Error closeWholly(SocketImpl& impl) {
  if (impl.stream) std::fflush(impl.stream);
  const SocketSide left = impl.closedSides & 1   ? SocketSide::send
                          : impl.closedSides & 2 ? SocketSide::receive
                                                 : SocketSide::both;
  Error error = invertedShutdownError(qvPlatform::shutdownSocket(impl.handle, left), "%s");
  const bool hadStream = impl.stream != nullptr;
  if (hadStream && std::fclose(impl.stream) != 0 && !error)
    error = Error(1, "fclose() on socket stream failed");
  impl.stream = nullptr;
  impl.descriptor = -1; // the stream closed it
  const int number = qvPlatform::closeSocket(impl.handle);
  if (number && !error)
    error = hadStream ? Error(1, "_close() of C file descriptor failed") : systemError(1, number);
  impl.handle = qvPlatform::noSocket;
  impl.closedSides = 3;
  return error;
}

} // namespace

Socket::Socket() : impl_(new SocketImpl) { startSockets(); }

Socket::~Socket() {
  (void)Socket::close(3);
  delete impl_;
}

Error Socket::read(void* buffer, std::uint64_t count, std::uint64_t* got) {
  const auto receive = [&](std::uint64_t done, std::size_t size, std::size_t* moved) {
    auto* const target = static_cast<std::byte*>(buffer) + done;
    if (const int number = qvPlatform::receiveSome(impl_->handle, target, size, moved))
      return systemError(1, number);
    return *moved ? Error() : Error(4, "connection closed");
  };
  return moveAll(*impl_, count, got, receive);
}

// A send of nothing is no error; the loop asks again.
Error Socket::write(const void* buffer, std::uint64_t count, std::uint64_t* put) {
  const auto send = [&](std::uint64_t done, std::size_t size, std::size_t* moved) {
    const auto* const source = static_cast<const std::byte*>(buffer) + done;
    return systemError(1, qvPlatform::sendSome(impl_->handle, source, size, moved), "send() failed: %s");
  };
  return moveAll(*impl_, count, put, send);
}

Error Socket::write(const char* text) { return write(CString(text)); }

Error Socket::write(const CString& text) {
  const unsigned int length = text.length();
  if (length >= frameLimit)
    return thrownInThrowMode(*impl_, Error(3, "buffer passed to Socket::write() is too long"));
  const unsigned char head[2] = {static_cast<unsigned char>(length >> 8), static_cast<unsigned char>(length)};
  Error error = write(head, sizeof head, nullptr);
  if (!error && length) error = write(text.asChar(), length, nullptr);
  return error;
}

Error Socket::write(const IString& text) { return write(CString(text.asUTF8())); }

// `text` keeps its value until the frame is whole. Then the two change places, so that nothing is copied and
// frames of like length need no new memory.
Error Socket::read(CString& text) {
  unsigned char head[2];
  if (const Error error = read(head, sizeof head, nullptr)) return error;
  const unsigned int length = 256u * head[0] + head[1];
  CString& frame = impl_->frame;
  if (frame.length() < length)
    frame = CString(length, '\0');
  else
    frame.erase(length);
  if (length)
    if (const Error error = read(&frame[0], length, nullptr)) return error;
  text.swap(frame);
  if (frame.capacity() > frameLimit) frame = CString();
  return Error();
}

Error Socket::read(IString& text) {
  CString bytes;
  Error error = read(bytes);
  if (!error) text.assign(bytes, qvString::UTF8Encoding);
  return error;
}

bool Socket::connected() const noexcept { return impl_->isConnected; }

Interval Socket::getTimeout() const { return impl_->timeout; }

void Socket::setTimeout(const Interval& timeout) { impl_->timeout = timeout; }

bool Socket::dataAvailable() const { return impl_->isOpen() && waitFor(*impl_, Interval()) == 0; }

Error Socket::wait() const { return systemError(1, waitFor(*impl_, impl_->timeout)); }

bool Socket::getThrowMode() const noexcept { return impl_->throwMode; }

void Socket::setThrowMode(bool throwMode) noexcept { impl_->throwMode = throwMode; }

Error Socket::setNoDelay(bool noDelay) {
  if (!impl_->isOpen()) return noSocketError();
  return systemError(1, qvPlatform::setNoDelay(impl_->handle, noDelay), "setsockopt() failed: %s");
}

Error Socket::close(int how) {
  if (!impl_->isOpen()) return Error();
  if (impl_->closesWholly(how)) return closeWholly(*impl_);
  if (how & 1) {
    impl_->closedSides |= 1;
    return invertedShutdownError(qvPlatform::shutdownSocket(impl_->handle, SocketSide::receive),
                                 "shutdown(socket,0) failed: %s");
  }
  if (how & 2) {
    if (impl_->stream) std::fflush(impl_->stream);
    impl_->closedSides |= 2;
    return systemError(1, qvPlatform::shutdownSocket(impl_->handle, SocketSide::send),
                       "shutdown(socket,1) failed: %s");
  }
  return Error();
}

qv::pair<const Address*, Error> Socket::localAddress() {
  Error error;
  if (!impl_->localAddress)
    error = impl_->isOpen() ? makeAddress(*impl_, SocketEnd::local, impl_->localAddress) : noSocketError();
  return {impl_->localAddress.get(), error};
}

qv::pair<const Address*, Error> Socket::remoteAddress() {
  Error error;
  if (!impl_->remoteAddress)
    error = impl_->isConnected ? makeAddress(*impl_, SocketEnd::remote, impl_->remoteAddress)
                               : Error(4, "Socket not connected");
  return {impl_->remoteAddress.get(), error};
}

// The stream writes to a duplicate, so that its close and the socket's close never meet on one descriptor.
Error Socket::getCStream(std::FILE*& stream) {
  stream = impl_->stream;
  if (stream) return Error();
  if (!impl_->isOpen()) return Error(2, "socket is not connected");
  int descriptor = -1;
  if (const int number = qvPlatform::duplicateSocket(impl_->handle, &descriptor))
    return systemError(1, number, "_open_osfhandle() failed for  socket: %s");
  if (qvPlatform::openSocketStream(descriptor, &impl_->stream)) {
    qvPlatform::closeDescriptor(descriptor);
    impl_->stream = nullptr;
    return Error(1, "_fdopen() failed for socket file descriptor");
  }
  impl_->descriptor = descriptor;
  stream = impl_->stream;
  return Error();
}

qv::pair<std::FILE*, Error> Socket::getCStream() {
  std::FILE* stream = nullptr;
  const Error error = getCStream(stream);
  return {stream, error};
}

} // namespace qvTCP
