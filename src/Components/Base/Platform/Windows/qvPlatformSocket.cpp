// Over Windows Sockets 2.2. Sockets are opened without overlapped transfers, so that they also serve as the
// files that C streams read and write. The system then lets one call at a time have such a socket, so no
// other thread's call can end one that waits.
#include "Base/Platform/qvPlatformSocket.h"

#include "Base/Platform/qvPlatformError.h"

#include <fcntl.h>
#include <io.h>
#include <winsock2.h>
#include <ws2tcpip.h>

#include "Base/Platform/qvPlatformSocketAddress.h" // needs the headers above

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

namespace qvPlatform {
namespace {

SOCKET nativeOf(SocketHandle socket) noexcept { return static_cast<SOCKET>(socket); }

const char* startFailureText(int number) noexcept {
  switch (number) {
  case WSAEFAULT:
    return "internal application error";
  case WSAEINPROGRESS:
    return "operation in progress";
  case WSAEPROCLIM:
    return "internal limits exceeded";
  case WSASYSNOTREADY:
    return "system not ready";
  case WSAVERNOTSUPPORTED:
    return "version 2.2 not supported";
  default:
    return "unknown error";
  }
}

bool startWindowsSockets() noexcept {
  int number = beforeCall("WSAStartup");
  WSADATA data;
  if (!number) number = ::WSAStartup(MAKEWORD(2, 2), &data);
  if (number) std::printf("Cannot initialize Windows Sockets: %s", startFailureText(number));
  return number == 0;
}

int openStream(int family, int type, int protocol, SocketHandle* socket) noexcept {
  const auto open = [&] {
    return static_cast<SocketHandle>(
        ::WSASocketA(family, type, protocol, nullptr, 0, WSA_FLAG_NO_HANDLE_INHERIT));
  };
  return retryCall("socket", open, *socket);
}

bool canOpen(int family) noexcept {
  SocketHandle socket = noSocket;
  if (openStream(family, SOCK_STREAM, 0, &socket)) return false;
  ::closesocket(nativeOf(socket));
  return true;
}

template <class T>
int setOption(SocketHandle socket, int level, int option, const T& value) noexcept {
  const auto* const bytes = reinterpret_cast<const char*>(&value);
  return retryCall("setsockopt",
                   [&] { return ::setsockopt(nativeOf(socket), level, option, bytes, sizeof value); });
}

// Whether the calls on a socket wait until they can do something.
int setWaiting(SocketHandle socket, bool waits) noexcept {
  u_long option = waits ? 0 : 1;
  return ::ioctlsocket(nativeOf(socket), FIONBIO, &option) ? ::WSAGetLastError() : 0;
}

// Calls take no more at once.
int lengthOf(std::size_t size) noexcept { return static_cast<int>(std::min<std::size_t>(size, INT_MAX)); }

// Only waits where the set is empty, since `select` refuses that.
int selectWithin(fd_set* set, std::chrono::microseconds limit) noexcept {
  if (set->fd_count == 0) {
    ::Sleep(static_cast<DWORD>(std::chrono::ceil<std::chrono::milliseconds>(limit).count()));
    return 0;
  }
  const auto microseconds = limit.count();
  timeval time = {static_cast<long>(microseconds / 1'000'000), static_cast<long>(microseconds % 1'000'000)};
  return ::select(0, set, nullptr, nullptr, &time);
}

// Leaves those sockets in the set that are ready.
int selectUntil(fd_set* set, const Deadline& deadline) noexcept {
  constexpr std::chrono::microseconds most = std::chrono::hours(1);
  const fd_set wanted = *set;
  const auto wait = [&] {
    *set = wanted;
    return selectWithin(set, deadline.left(most));
  };
  int ready = 0;
  do {
    if (const int error = retryCall("poll", wait, ready)) return error;
  } while (ready == 0 && !deadline.isPast());
  return 0;
}

} // namespace

unsigned availableFamilies() noexcept {
  if (!startWindowsSockets()) return 0;
  return (canOpen(AF_INET) ? familyIPv4 : 0) | (canOpen(AF_INET6) ? familyIPv6 : 0);
}

bool isUnreachable(int number) noexcept { return number == WSAENETUNREACH || number == WSAECONNREFUSED; }

bool isAddressInUse(int number) noexcept { return number == WSAEADDRINUSE; }

// The system takes blanks for a number, too.
bool isDottedNumber(const char* text) noexcept {
  return *text >= '0' && *text <= '9' && ::inet_addr(text) != INADDR_NONE;
}

int openSocket(const addrinfo* entry, SocketHandle* socket) noexcept {
  return openStream(entry->ai_family, entry->ai_socktype, entry->ai_protocol, socket);
}

int connectSocket(SocketHandle socket, const addrinfo* entry) noexcept {
  const auto size = static_cast<int>(entry->ai_addrlen);
  return retryCall("connect", [&] { return ::connect(nativeOf(socket), entry->ai_addr, size); });
}

int closeSocket(SocketHandle socket) noexcept {
  const int scripted = beforeCall("closesocket");
  const int error = ::closesocket(nativeOf(socket)) ? ::WSAGetLastError() : 0;
  return scripted ? scripted : error;
}

int shutdownSocket(SocketHandle socket, SocketSide side) noexcept {
  const int how = side == SocketSide::receive ? SD_RECEIVE : side == SocketSide::send ? SD_SEND : SD_BOTH;
  return retryCall("shutdown", [&] { return ::shutdown(nativeOf(socket), how); });
}

int setLinger(SocketHandle socket, int seconds) noexcept {
  linger value{};
  value.l_onoff = 1;
  value.l_linger = static_cast<u_short>(std::clamp(seconds, 0, USHRT_MAX));
  return setOption(socket, SOL_SOCKET, SO_LINGER, value);
}

int setNoDelay(SocketHandle socket, bool on) noexcept {
  return setOption(socket, IPPROTO_TCP, TCP_NODELAY, static_cast<BOOL>(on));
}

int receiveSome(SocketHandle socket, void* buffer, std::size_t size, std::size_t* count) noexcept {
  int received = 0;
  const auto receive = [&] {
    return ::recv(nativeOf(socket), static_cast<char*>(buffer), lengthOf(size), 0);
  };
  const int error = retryCall("recv", receive, received);
  *count = error ? 0 : static_cast<std::size_t>(received);
  return error;
}

int sendSome(SocketHandle socket, const void* buffer, std::size_t size, std::size_t* count) noexcept {
  int sent = 0;
  const auto send = [&] {
    return ::send(nativeOf(socket), static_cast<const char*>(buffer), lengthOf(size), 0);
  };
  const int error = retryCall("send", send, sent);
  *count = error ? 0 : static_cast<std::size_t>(sent);
  return error;
}

// A port whose last connections have ended may be had in any case; this option keeps it from everybody else.
int openListener(unsigned family, SocketHandle* socket) noexcept {
  if (const int error = openStream(familyNumber(family), SOCK_STREAM, 0, socket)) return error;
  int error = setOption(*socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, BOOL{TRUE});
  if (!error && family == familyIPv6) error = setOption(*socket, IPPROTO_IPV6, IPV6_V6ONLY, DWORD{1});
  if (!error) error = setWaiting(*socket, false);
  if (error) closeSocket(std::exchange(*socket, noSocket));
  return error;
}

int bindListener(SocketHandle socket, unsigned family, bool loopbackOnly, int port) noexcept {
  if (port < 0 || port > largestPort) return WSAEINVAL;
  const ListenAddress address = listenAddress(family, loopbackOnly, port);
  return retryCall("bind", [&] { return ::bind(nativeOf(socket), &address.any, address.size); });
}

int listenSocket(SocketHandle socket, int backlog) noexcept {
  return retryCall("listen", [&] { return ::listen(nativeOf(socket), backlog); });
}

// What is accepted has the properties of the listener, but would be inherited by started programs.
int acceptSocket(SocketHandle listener, SocketHandle* socket) noexcept {
  const auto accept = [&] {
    return static_cast<SocketHandle>(::accept(nativeOf(listener), nullptr, nullptr));
  };
  int error = retryCall("accept", accept, *socket);
  if (!error) {
    ::SetHandleInformation(reinterpret_cast<HANDLE>(*socket), HANDLE_FLAG_INHERIT, 0);
    error = setWaiting(*socket, true);
    if (!error) return 0;
    closeSocket(*socket);
  }
  *socket = noSocket;
  const bool nobodyWaits = error == WSAEWOULDBLOCK || error == WSAECONNRESET || error == WSAECONNABORTED;
  return nobodyWaits ? 0 : error;
}

int waitReadable(SocketWait* sockets, std::size_t count, const Deadline& deadline) noexcept {
  if ((count == 0 && deadline.isNever()) || count > FD_SETSIZE) return WSAEINVAL;
  fd_set set;
  set.fd_count = static_cast<u_int>(count);
  for (std::size_t i = 0; i < count; ++i) {
    set.fd_array[i] = nativeOf(sockets[i].socket);
    sockets[i].ready = false;
    if (sockets[i].socket == noSocket) return WSAENOTSOCK;
  }
  if (const int error = selectUntil(&set, deadline)) return error;
  for (std::size_t i = 0; i < count; ++i)
    sockets[i].ready = ::__WSAFDIsSet(nativeOf(sockets[i].socket), &set) != 0;
  return 0;
}

int socketEndpoint(SocketHandle socket, SocketEnd end, std::string* host, int* port) {
  sockaddr_storage storage{};
  int size = sizeof storage;
  auto* address = reinterpret_cast<sockaddr*>(&storage);
  const bool local = end == SocketEnd::local;
  const int error = retryCall(local ? "getsockname" : "getpeername", [&] {
    return local ? ::getsockname(nativeOf(socket), address, &size)
                 : ::getpeername(nativeOf(socket), address, &size);
  });
  if (error) return error;
  char hostText[NI_MAXHOST], portText[NI_MAXSERV];
  if (const int number = ::getnameinfo(address, size, hostText, sizeof hostText, portText, sizeof portText,
                                       NI_NUMERICHOST | NI_NUMERICSERV))
    return number;
  *host = hostText;
  *port = std::atoi(portText);
  return 0;
}

// The duplicate is a file of the C runtime, which closes it as a handle. So it is made as a handle as well:
// of a duplicate that Windows Sockets made, it would keep its own record for ever.
int duplicateSocket(SocketHandle socket, int* descriptor) noexcept {
  if (const int error = beforeCall("dup")) return error;
  HANDLE duplicate = nullptr;
  const HANDLE process = ::GetCurrentProcess();
  if (!::DuplicateHandle(process, reinterpret_cast<HANDLE>(socket), process, &duplicate, 0, FALSE,
                         DUPLICATE_SAME_ACCESS))
    return static_cast<int>(::GetLastError());
  *descriptor = ::_open_osfhandle(reinterpret_cast<std::intptr_t>(duplicate), _O_RDWR | _O_NOINHERIT);
  if (*descriptor >= 0) return 0;
  ::CloseHandle(duplicate);
  return ERROR_TOO_MANY_OPEN_FILES;
}

int openSocketStream(int descriptor, std::FILE** stream) noexcept {
  if (const int error = beforeCall("fdopen")) return error;
  *stream = ::_fdopen(descriptor, "rb+");
  return *stream ? 0 : ERROR_TOO_MANY_OPEN_FILES;
}

int closeDescriptor(int descriptor) noexcept {
  const int scripted = beforeCall("close");
  const int error = ::_close(descriptor) ? ERROR_INVALID_HANDLE : 0;
  return scripted ? scripted : error;
}

} // namespace qvPlatform
