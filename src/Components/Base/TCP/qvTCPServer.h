// The side that is called: listens on one port, over IPv6 and IPv4 together, and hands out accepted sockets.
#pragma once

#include "Base/Containers/qvPair.h"
#include "Base/TCP/qvTCPSocket.h"
#include "Base/Utility/qvImplBase.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/Utility/qvUtilInterval.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qvTCP {

/// A socket that listens. A server makes it.
class QV_BASE_API ListeningSocket final : public Socket {
public:
  /// Owns `handle`, a socket of the system; -1 for none.
  explicit ListeningSocket(std::intptr_t handle = -1);
};

/// An accepted socket, the only kind for which `connected` is true.
class QV_BASE_API ServerSocket final : public Socket {
public:
  /// Owns `handle`, an accepted socket of the system.
  explicit ServerSocket(std::intptr_t handle);
};

/// Listens on a port. Codes of its errors are those of `Socket`. One thread owns a server; there are no
/// locks.
class Server {
public:
  /// `port` is 1 to 65535, or -1 to have the system choose one; with 0 it chooses too, but over IPv4 alone
  /// `getPort` does not tell which. About `backlog` connections may wait to be accepted. Nothing listens yet.
  QV_BASE_API explicit Server(int port = -1, int backlog = 1);
  /// Closes both listening sockets. Accepted sockets are their holders'.
  QV_BASE_API ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Listens on the loopback alone, or on all addresses of this machine. Counts from the next `listen` on.
  QV_BASE_API void setLoopbackOnly(bool loopbackOnly);

  /// Closes what listened before, and listens over IPv6 and over IPv4. One family is enough: what goes wrong
  /// with IPv6 is forgotten where IPv4 can be tried. Where IPv4 then fails, the server still listens over
  /// IPv6 although an error is returned.
  /// @return no error; code 3 where the port is in use; code 2 where this machine has no family; code 1 for
  /// anything else.
  QV_BASE_API qvUtil::Error listen();

  /// The next connection, waited for at most so long; zero means no limit, and not a poll. Listens first
  /// where the server never did. With connections of both families, one over IPv6 comes first.
  /// @return a `ServerSocket` that the caller deletes; null and no error after the limit; null and an error
  /// otherwise: of `listen`, or code 1. Running out of descriptors is such an error, and leaves the
  /// connection to the next call: a loop that goes on after errors pauses in between.
  [[nodiscard]] QV_BASE_API qv::pair<Socket*, qvUtil::Error> accept(const qvUtil::Interval& interval);
  /// The same, with the socket, or null, in `*socket`.
  QV_BASE_API qvUtil::Error accept(Socket** socket, const qvUtil::Interval& interval);

  /// False in all cases, also while a client waits. To ask, `accept` with a small interval, or
  /// `WaitReadable`.
  [[nodiscard]] QV_BASE_API bool connectionPending() const noexcept;

  /// The port; -1 as long as the system has not chosen one.
  [[nodiscard]] QV_BASE_API int getPort() const noexcept;

  /// Stops listening over IPv4. Over IPv6 the server listens on, until the next `listen` or its end.
  QV_BASE_API void shutdown();

  /// @{ The hidden state of a listening socket, for the library's own waiting; null before `listen`. It lives
  /// until the next `listen`, the `shutdown` of its family, or the server's end.
  [[nodiscard]] QV_BASE_API SocketImpl* getListeningSocketImplIPv4() const noexcept;
  [[nodiscard]] QV_BASE_API SocketImpl* getListeningSocketImplIPv6() const noexcept;
  /// @}

private:
  void listenIpv6And4(qvUtil::Error& error);
  static qvUtil::Error isBindError(int result);

  qv::ImplHandle impl_;
};

static_assert(sizeof(Server) == 2 * sizeof(void*));

} // namespace qvTCP
