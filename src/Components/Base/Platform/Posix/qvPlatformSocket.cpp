#include "Base/Platform/qvPlatformSocket.h"

#include "Base/Platform/qvPlatformError.h"

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Base/Platform/qvPlatformSocketAddress.h" // needs the headers above

#include <chrono>
#include <climits>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace qvPlatform {
namespace {

int descriptorOf(SocketHandle socket) noexcept {
  return socket < 0 || socket > INT_MAX ? -1 : static_cast<int>(socket);
}

bool canOpen(int family) noexcept {
  int socket = -1;
  if (retryCall(
          "socket", [&] { return ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0); }, socket))
    return false;
  ::close(socket);
  return true;
}

// A connect that a signal interrupted goes on by itself; its outcome is told when the socket becomes
// writable.
int finishConnect(int socket) noexcept {
  pollfd entry{socket, POLLOUT, 0};
  while (::poll(&entry, 1, -1) < 0)
    if (errno != EINTR) return errno;
  int outcome = 0;
  socklen_t size = sizeof outcome;
  return ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &outcome, &size) ? errno : outcome;
}

// The system lets go of the descriptor whatever it answers, so an interrupted close is done and never
// repeated.
int closeAnnounced(const char* name, int descriptor) noexcept {
  const int scripted = beforeCall(name);
  const int error = ::close(descriptor) < 0 && errno != EINTR ? errno : 0;
  return scripted ? scripted : error;
}

template <class T>
int setOption(SocketHandle socket, int level, int option, const T& value) noexcept {
  return retryCall("setsockopt",
                   [&] { return ::setsockopt(descriptorOf(socket), level, option, &value, sizeof value); });
}

int pollUntil(pollfd* entries, std::size_t count, const Deadline& deadline) noexcept {
  constexpr std::chrono::milliseconds most(INT_MAX);
  const auto wait = [&] { return ::poll(entries, count, static_cast<int>(deadline.left(most).count())); };
  int ready = 0;
  do {
    if (const int error = retryCall("poll", wait, ready)) return error;
  } while (ready == 0 && !deadline.isPast());
  return 0;
}

} // namespace

unsigned availableFamilies() noexcept {
  return (canOpen(AF_INET) ? familyIPv4 : 0) | (canOpen(AF_INET6) ? familyIPv6 : 0);
}

bool isUnreachable(int number) noexcept { return number == ENETUNREACH || number == ECONNREFUSED; }

bool isAddressInUse(int number) noexcept { return number == EADDRINUSE; }

bool isDottedNumber(const char* text) noexcept { return ::inet_addr(text) != INADDR_NONE; }

int openSocket(const addrinfo* entry, SocketHandle* socket) noexcept {
  const auto open = [&] {
    return ::socket(entry->ai_family, entry->ai_socktype | SOCK_CLOEXEC, entry->ai_protocol);
  };
  return retryCall("socket", open, *socket);
}

int connectSocket(SocketHandle socket, const addrinfo* entry) noexcept {
  if (const int error = beforeCall("connect")) return error;
  const int descriptor = descriptorOf(socket);
  if (!::connect(descriptor, entry->ai_addr, entry->ai_addrlen)) return 0;
  return errno == EINTR ? finishConnect(descriptor) : errno;
}

int closeSocket(SocketHandle socket) noexcept { return closeAnnounced("closesocket", descriptorOf(socket)); }

int shutdownSocket(SocketHandle socket, SocketSide side) noexcept {
  const int how = side == SocketSide::receive ? SHUT_RD : side == SocketSide::send ? SHUT_WR : SHUT_RDWR;
  return retryCall("shutdown", [&] { return ::shutdown(descriptorOf(socket), how); });
}

int setLinger(SocketHandle socket, int seconds) noexcept {
  linger value{};
  value.l_onoff = 1;
  value.l_linger = seconds;
  return setOption(socket, SOL_SOCKET, SO_LINGER, value);
}

int setNoDelay(SocketHandle socket, bool on) noexcept {
  return setOption(socket, IPPROTO_TCP, TCP_NODELAY, static_cast<int>(on));
}

int receiveSome(SocketHandle socket, void* buffer, std::size_t size, std::size_t* count) noexcept {
  ssize_t received = 0;
  const int error = retryCall(
      "recv", [&] { return ::recv(descriptorOf(socket), buffer, size, 0); }, received);
  *count = error ? 0 : static_cast<std::size_t>(received);
  return error;
}

int sendSome(SocketHandle socket, const void* buffer, std::size_t size, std::size_t* count) noexcept {
  ssize_t sent = 0;
  const int error = retryCall(
      "send", [&] { return ::send(descriptorOf(socket), buffer, size, MSG_NOSIGNAL); }, sent);
  *count = error ? 0 : static_cast<std::size_t>(sent);
  return error;
}

int openListener(unsigned family, SocketHandle* socket) noexcept {
  const int type = SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK;
  int error = retryCall(
      "socket", [&] { return ::socket(familyNumber(family), type, 0); }, *socket);
  if (error) return error;
  error = setOption(*socket, SOL_SOCKET, SO_REUSEADDR, 1);
  if (!error && family == familyIPv6) error = setOption(*socket, IPPROTO_IPV6, IPV6_V6ONLY, 1);
  if (error) closeSocket(std::exchange(*socket, noSocket));
  return error;
}

int bindListener(SocketHandle socket, unsigned family, bool loopbackOnly, int port) noexcept {
  if (port < 0 || port > largestPort) return EINVAL;
  const ListenAddress address = listenAddress(family, loopbackOnly, port);
  return retryCall("bind", [&] { return ::bind(descriptorOf(socket), &address.any, address.size); });
}

int listenSocket(SocketHandle socket, int backlog) noexcept {
  return retryCall("listen", [&] { return ::listen(descriptorOf(socket), backlog); });
}

int acceptSocket(SocketHandle listener, SocketHandle* socket) noexcept {
  const auto accept = [&] { return ::accept4(descriptorOf(listener), nullptr, nullptr, SOCK_CLOEXEC); };
  const int error = retryCall("accept", accept, *socket);
  if (!error) return 0;
  *socket = noSocket;
  const bool nobodyWaits =
      error == EAGAIN || error == EWOULDBLOCK || error == ECONNABORTED || error == EPROTO;
  return nobodyWaits ? 0 : error;
}

int waitReadable(SocketWait* sockets, std::size_t count, const Deadline& deadline) noexcept try {
  if (count == 0 && deadline.isNever()) return EINVAL;
  std::vector<pollfd> entries(count);
  for (std::size_t i = 0; i < count; ++i) {
    entries[i] = {descriptorOf(sockets[i].socket), POLLIN, 0};
    sockets[i].ready = false;
    if (entries[i].fd < 0) return EBADF;
  }
  if (const int error = pollUntil(entries.data(), count, deadline)) return error;
  for (std::size_t i = 0; i < count; ++i) {
    if (entries[i].revents & POLLNVAL) return EBADF;
    sockets[i].ready = entries[i].revents != 0;
  }
  return 0;
} catch (const std::bad_alloc&) {
  return ENOMEM;
}

int socketEndpoint(SocketHandle socket, SocketEnd end, std::string* host, int* port) {
  const int descriptor = descriptorOf(socket);
  sockaddr_storage storage{};
  socklen_t size = sizeof storage;
  auto* address = reinterpret_cast<sockaddr*>(&storage);
  const bool local = end == SocketEnd::local;
  const int error = retryCall(local ? "getsockname" : "getpeername", [&] {
    return local ? ::getsockname(descriptor, address, &size) : ::getpeername(descriptor, address, &size);
  });
  if (error) return error;
  char hostText[NI_MAXHOST], portText[NI_MAXSERV];
  if (::getnameinfo(address, size, hostText, sizeof hostText, portText, sizeof portText,
                    NI_NUMERICHOST | NI_NUMERICSERV))
    return EAFNOSUPPORT;
  *host = hostText;
  *port = std::atoi(portText);
  return 0;
}

int duplicateSocket(SocketHandle socket, int* descriptor) noexcept {
  return retryCall(
      "dup", [&] { return ::fcntl(descriptorOf(socket), F_DUPFD_CLOEXEC, 3); }, *descriptor);
}

namespace {

// The four operations of a C stream over a socket. The descriptor travels as the cookie itself.
int fromCookie(void* cookie) noexcept { return static_cast<int>(reinterpret_cast<std::intptr_t>(cookie)); }

ssize_t readCookie(void* cookie, char* buffer, std::size_t size) noexcept {
  std::size_t count = 0;
  if (const int error = receiveSome(fromCookie(cookie), buffer, size, &count)) {
    errno = error;
    return -1;
  }
  return static_cast<ssize_t>(count);
}

// The stream takes a count below `size` for a failure, so 0 tells one; a negative count is not allowed here.
ssize_t writeCookie(void* cookie, const char* buffer, std::size_t size) noexcept {
  std::size_t done = 0;
  while (done < size) {
    std::size_t count = 0;
    if (const int error = sendSome(fromCookie(cookie), buffer + done, size - done, &count)) {
      errno = error;
      break;
    }
    done += count;
  }
  return static_cast<ssize_t>(done);
}

int seekCookie(void*, off64_t*, int) noexcept {
  errno = ESPIPE; // what a socket answers; the stream then turns between reading and writing without a seek
  return -1;
}

int closeCookie(void* cookie) noexcept {
  if (const int error = closeDescriptor(fromCookie(cookie))) {
    errno = error;
    return -1;
  }
  return 0;
}

} // namespace

int openSocketStream(int descriptor, std::FILE** stream) noexcept {
  if (const int error = beforeCall("fdopen")) return error;
  void* cookie = reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor));
  *stream = ::fopencookie(cookie, "r+b", {readCookie, writeCookie, seekCookie, closeCookie});
  return *stream ? 0 : errno;
}

int closeDescriptor(int descriptor) noexcept { return closeAnnounced("close", descriptor); }

} // namespace qvPlatform
