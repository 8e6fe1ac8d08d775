#include "Base/TCP/qvTCPServer.h"

#include "Base/Containers/qvVector.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformSocket.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/qvTCPSocketImpl.h"
#include "Base/TCP/qvTCPSocketSet.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace qvTCP {

using qvPlatform::noSocket;
using qvPlatform::SocketHandle;
using qvUtil::Error;
using qvUtil::Interval;

namespace {

constexpr int chosenBySystem = -1;
constexpr int portInUse = 3;

class ServerImpl final : public qv::ImplBase {
public:
  ServerImpl(int wantedPort, int length) noexcept : port(wantedPort), backlog(length) {}

  std::int32_t port;
  std::int32_t backlog;
  std::unique_ptr<ListeningSocket> ipv4Socket, ipv6Socket; // null when not listening
  qv::vector<SocketHandle> sockets;                        // what `accept` waits on; `noSocket` once closed
  bool loopbackOnly = false;

  void stop(std::unique_ptr<ListeningSocket>& socket) {
    if (!socket) return;
    std::replace(sockets.begin(), sockets.end(), socket->getImpl()->handle, noSocket);
    socket.reset();
  }

  [[nodiscard]] int bind(const ListeningSocket& socket, unsigned family) const noexcept {
    const int wanted = port == chosenBySystem ? 0 : port;
    return qvPlatform::bindListener(socket.getImpl()->handle, family, loopbackOnly, wanted);
  }

  [[nodiscard]] bool startIPv6(ListeningSocket& bound, Error& error) {
    error = systemError(1, start(*ipv6Socket, bound));
    if (error) return false;
    std::string host;
    const int number =
        qvPlatform::socketEndpoint(ipv6Socket->getImpl()->handle, qvPlatform::SocketEnd::local, &host, &port);
    error = systemError(1, number, "Cannot get listening socket address:%s");
    return number == 0;
  }

  void startIPv4(ListeningSocket& bound, bool takesPort, Error& error) {
    error = systemError(1, start(*ipv4Socket, bound));
    if (!takesPort) return;
    const auto local = ipv4Socket->localAddress();
    if (local.first)
      port = local.first->getPort();
    else
      error = Error(1, "Cannot get listening socket address: %s", local.second.message());
  }

private:
  // Gives `listener` what `bound` has, remembers it in the first free place, and listens.
  int start(ListeningSocket& listener, ListeningSocket& bound) {
    SocketHandle& handle = listener.getImpl()->handle;
    handle = std::exchange(bound.getImpl()->handle, noSocket);
    if (const auto place = sockets.find(noSocket); place != sockets.end())
      *place = handle;
    else
      sockets.push_back(handle);
    return qvPlatform::listenSocket(handle, backlog);
  }
};

SocketImpl* implOf(const ListeningSocket* socket) noexcept { return socket ? socket->getImpl() : nullptr; }

int everythingClosed() noexcept { return qvPlatform::errorNumber(qvPlatform::ErrorKind::invalid); }

qv::pair<Socket*, Error> serverSocket(SocketHandle accepted) {
  auto socket = std::make_unique<ServerSocket>(accepted);
  if (const int number = qvPlatform::setLinger(accepted, lingerSeconds))
    return {nullptr, systemError(1, number)};
  return {socket.release(), Error()};
}

// No socket where the family is not available.
SocketHandle openFor(unsigned family) noexcept {
  SocketHandle handle = noSocket;
  return hasFamily(family) && qvPlatform::openListener(family, &handle) == 0 ? handle : noSocket;
}

} // namespace

ListeningSocket::ListeningSocket(std::intptr_t handle) { getImpl()->handle = handle; }

ServerSocket::ServerSocket(std::intptr_t handle) {
  getImpl()->handle = handle;
  getImpl()->isConnected = true;
}

Server::Server(int port, int backlog) : impl_(new ServerImpl(port, backlog)) {}

Server::~Server() = default;

void Server::setLoopbackOnly(bool loopbackOnly) { impl_.as<ServerImpl>().loopbackOnly = loopbackOnly; }

Error Server::isBindError(int result) {
  return systemError(qvPlatform::isAddressInUse(result) ? portInUse : 1, result, "bind() failed: %s");
}

// A port that the system chose for IPv6 may be in use over IPv4, by a connection that is closing, say. Then
// another one does.
Error Server::listen() {
  auto& impl = impl_.as<ServerImpl>();
  const bool autoPort = impl.port == chosenBySystem;
  for (int attempts = 8;; --attempts) {
    impl.stop(impl.ipv4Socket);
    impl.stop(impl.ipv6Socket);
    impl.ipv4Socket = std::make_unique<ListeningSocket>();
    impl.ipv6Socket = std::make_unique<ListeningSocket>();
    if (autoPort) impl.port = chosenBySystem;
    Error error;
    listenIpv6And4(error);
    if (!autoPort || error.num() != portInUse || attempts == 1) return error;
  }
}

// The port that the system chooses for IPv6 serves IPv4 as well. What was opened and not bound is closed at
// the end.
void Server::listenIpv6And4(Error& error) {
  auto& impl = impl_.as<ServerImpl>();
  ListeningSocket four(openFor(qvPlatform::familyIPv4)), six(openFor(qvPlatform::familyIPv6));
  const bool hasFour = four.getImpl()->isOpen(), hasSix = six.getImpl()->isOpen();
  const bool autoPort = impl.port == chosenBySystem;
  if (!hasFour && !hasSix) error = Error(2, "listen() failed: No useable protocol families found.");
  if (hasSix) {
    error = isBindError(impl.bind(six, qvPlatform::familyIPv6));
    if (!error && !impl.startIPv6(six, error)) return;
  }
  if (hasFour) {
    error = isBindError(impl.bind(four, qvPlatform::familyIPv4));
    if (!error) impl.startIPv4(four, autoPort && !impl.ipv6Socket->getImpl()->isOpen(), error);
  }
}

qv::pair<Socket*, Error> Server::accept(const Interval& interval) {
  auto& impl = impl_.as<ServerImpl>();
  if (impl.sockets.empty())
    if (const Error error = listen()) return {nullptr, error};
  const qvPlatform::Deadline deadline = deadlineAfter(interval);
  do {
    SocketSet ready;
    for (const SocketHandle socket : impl.sockets) ready.add(socket);
    SocketHandle accepted = noSocket;
    int number = ready.isEmpty() ? everythingClosed() : ready.wait(deadline);
    if (!number && !ready.isEmpty()) number = qvPlatform::acceptSocket(ready.first(), &accepted);
    if (number) return {nullptr, systemError(1, number)};
    if (accepted != noSocket) return serverSocket(accepted);
  } while (!deadline.isPast());
  return {nullptr, Error()};
}

Error Server::accept(Socket** socket, const Interval& interval) {
  const auto accepted = accept(interval);
  *socket = accepted.first;
  return accepted.second;
}

bool Server::connectionPending() const noexcept { return false; }

int Server::getPort() const noexcept { return impl_.as<ServerImpl>().port; }

void Server::shutdown() {
  auto& impl = impl_.as<ServerImpl>();
  impl.stop(impl.ipv4Socket);
}

SocketImpl* Server::getListeningSocketImplIPv4() const noexcept {
  return implOf(impl_.as<ServerImpl>().ipv4Socket.get());
}

SocketImpl* Server::getListeningSocketImplIPv6() const noexcept {
  return implOf(impl_.as<ServerImpl>().ipv6Socket.get());
}

} // namespace qvTCP
