// Stream sockets and host names. Operations return the system's number, 0 for success; names in brackets are
// what each announces to `beforeCall`. What a signal interrupts goes on.
#pragma once

#include "Base/Platform/qvPlatformDeadline.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

struct addrinfo;

namespace qvPlatform {

/// A socket of the system. Never inherited by a started program.
using SocketHandle = std::intptr_t;
inline constexpr SocketHandle noSocket = -1;

/// The families that a stream socket can be opened for: bit 1 IPv4, bit 2 IPv6 [socket]. A system that wants
/// to be started for sockets is started here [WSAStartup], before any other call, and tells on the standard
/// output why it could not be.
inline constexpr unsigned familyIPv4 = 1;
inline constexpr unsigned familyIPv6 = 2;
[[nodiscard]] unsigned availableFamilies() noexcept;

/// Whether `number` tells that a connection was refused or its network cannot be reached.
[[nodiscard]] bool isUnreachable(int number) noexcept;

/// Whether `number` tells that another socket has the port.
[[nodiscard]] bool isAddressInUse(int number) noexcept;

// ---- Hosts ----

/// Whether `text` is an IPv4 number as `inet_addr` reads it: one to four parts, each in any C base.
[[nodiscard]] bool isDottedNumber(const char* text) noexcept;

enum class Lookup { found, unknownHost, failed };
enum class HostForm { name, number };

/// The name or the number, as `form` says, of an IPv4 host [getaddrinfo]. `*text` receives it, or the
/// failure's text.
[[nodiscard]] Lookup lookUpHost(const char* host, HostForm form, std::string* text);

/// The stream addresses of both families for a host (null for this machine) and a port; `passive` for
/// listening [getaddrinfo].
/// @return a list for `freeAddressList`, or null, and then `error` (may be null) says why.
[[nodiscard]] addrinfo* addressList(const char* host, int port, bool passive, std::string* error);
void freeAddressList(addrinfo* list) noexcept;
[[nodiscard]] const addrinfo* nextAddress(const addrinfo* entry) noexcept;

// ---- Sockets ----

/// Opens a socket of the entry's family, type and protocol [socket].
[[nodiscard]] int openSocket(const addrinfo* entry, SocketHandle* socket) noexcept;
/// Connects it to the entry's address [connect].
[[nodiscard]] int connectSocket(SocketHandle socket, const addrinfo* entry) noexcept;
/// Closes it [closesocket]. The handle is gone in every case.
int closeSocket(SocketHandle socket) noexcept;

enum class SocketSide { receive, send, both };
/// Ends the traffic of a side, for every handle of the connection [shutdown].
int shutdownSocket(SocketHandle socket, SocketSide side) noexcept;

/// Lets a close wait as long for data that is not yet sent [setsockopt].
[[nodiscard]] int setLinger(SocketHandle socket, int seconds) noexcept;
/// Sends small writes at once, or gathers them [setsockopt].
[[nodiscard]] int setNoDelay(SocketHandle socket, bool on) noexcept;

/// Receives some of `size` bytes, at least 1 unless the peer has closed [recv]. `*count` is 0 on a failure.
[[nodiscard]] int receiveSome(SocketHandle socket, void* buffer, std::size_t size,
                              std::size_t* count) noexcept;
/// Sends some of `size` bytes, without a signal where the peer has closed [send]. `*count` is 0 on a failure.
[[nodiscard]] int sendSome(SocketHandle socket, const void* buffer, std::size_t size,
                           std::size_t* count) noexcept;

// ---- Listening ----

/// Opens a stream socket of one family for listening [socket, setsockopt]. An IPv6 one leaves IPv4 to another
/// socket. It may have a port whose last connections are still closing, never one that is in use.
[[nodiscard]] int openListener(unsigned family, SocketHandle* socket) noexcept;
/// Binds such a socket to the loopback or to all addresses of its family [bind]. Port 0 lets the system
/// choose; one of more than 16 bits is an error.
[[nodiscard]] int bindListener(SocketHandle socket, unsigned family, bool loopbackOnly, int port) noexcept;
/// Lets about `backlog` connections wait to be accepted [listen].
[[nodiscard]] int listenSocket(SocketHandle socket, int backlog) noexcept;
/// Takes the connection that has waited longest, and never waits for one [accept]: `*socket` is `noSocket`
/// where there is none, since a peer may give up before it is accepted.
[[nodiscard]] int acceptSocket(SocketHandle listener, SocketHandle* socket) noexcept;

// ---- Waiting ----

/// One socket of a wait, and what came of it.
struct SocketWait {
  SocketHandle socket;
  bool ready;
};

/// Waits until one of the sockets can be read, accepted from or is broken, or the time is over, and then none
/// is ready [poll]. An invalid handle is an error, and so are an empty set without a deadline and, on some
/// systems, more than 64 sockets.
[[nodiscard]] int waitReadable(SocketWait* sockets, std::size_t count, const Deadline& deadline) noexcept;

/// The number of the host at one end, dotted for IPv4, and the port [getsockname, getpeername].
enum class SocketEnd { local, remote };
[[nodiscard]] int socketEndpoint(SocketHandle socket, SocketEnd end, std::string* host, int* port);

/// Another descriptor of the same connection, owned by the caller [dup].
[[nodiscard]] int duplicateSocket(SocketHandle socket, int* descriptor) noexcept;
/// A C stream, open for reading and writing, that owns `descriptor` and whose writes raise no signal
/// [fdopen]. On a failure the descriptor stays the caller's. Between reading and writing again stands a seek,
/// as C wants it, whose failure means nothing here.
[[nodiscard]] int openSocketStream(int descriptor, std::FILE** stream) noexcept;
/// Closes a descriptor of `duplicateSocket` that no stream owns [close].
int closeDescriptor(int descriptor) noexcept;

} // namespace qvPlatform
