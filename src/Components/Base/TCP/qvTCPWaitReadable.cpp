#include "Base/TCP/qvTCPWaitReadable.h"

#include "Base/TCP/qvTCPServer.h"
#include "Base/TCP/qvTCPSocket.h"
#include "Base/TCP/qvTCPSocketImpl.h"
#include "Base/TCP/qvTCPSocketSet.h"

namespace qvTCP {

using qvUtil::Error;
using qvUtil::Interval;

namespace {

class WaitReadableImpl final : public qv::ImplBase {
public:
  // The state may be null: a server that does not listen has none.
  void add(const SocketImpl* socket) {
    if (socket) set.add(socket->handle);
  }
  [[nodiscard]] bool contains(const SocketImpl* socket) const {
    return socket && set.contains(socket->handle);
  }

  SocketSet set;
};

} // namespace

WaitReadable::WaitReadable() : impl_(new WaitReadableImpl) {}

void WaitReadable::add(const Socket& socket) { impl_.as<WaitReadableImpl>().add(socket.getImpl()); }

void WaitReadable::add(const Server& server) {
  auto& impl = impl_.as<WaitReadableImpl>();
  impl.add(server.getListeningSocketImplIPv4());
  impl.add(server.getListeningSocketImplIPv6());
}

void WaitReadable::reset() { impl_.as<WaitReadableImpl>().set.clear(); }

Error WaitReadable::wait(Interval interval) {
  return systemError(1, impl_.as<WaitReadableImpl>().set.wait(deadlineAfter(interval)));
}

bool WaitReadable::isReadable(const Socket& socket) const {
  return impl_.as<WaitReadableImpl>().contains(socket.getImpl());
}

bool WaitReadable::isReadable(const Server& server) const {
  const auto& impl = impl_.as<WaitReadableImpl>();
  return impl.contains(server.getListeningSocketImplIPv4()) ||
         impl.contains(server.getListeningSocketImplIPv6());
}

// `ready` may be the same vector, so only what stood there before is looked at.
Error waitReadable(const qv::vector<Socket*>& sockets, qv::vector<Socket*>& ready, const Interval& interval) {
  SocketSet set;
  for (const Socket* socket : sockets)
    if (socket) set.add(socket->getImpl()->handle);
  if (set.wait(deadlineAfter(interval))) return Error(1, "select() failed");
  for (int i = 0, count = sockets.size(); i < count; ++i) {
    Socket* const socket = sockets[i];
    if (socket && set.contains(socket->getImpl()->handle)) ready.push_back(socket);
  }
  return Error();
}

} // namespace qvTCP
