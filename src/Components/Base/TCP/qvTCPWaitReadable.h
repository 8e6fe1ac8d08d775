// Waiting for several sockets and servers at once.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/Utility/qvImplBase.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/Utility/qvUtilInterval.h"
#include "Base/qvBase.h"

namespace qvTCP {

class Server;
class Socket;

/// A set of at most 64 sockets: filled, waited on, asked, and then reset and filled anew. What is in the set
/// stays open until after the wait. One thread at a time.
///
/// A copy is a second view of the same set. It owns nothing, and is good only while the original lives.
class WaitReadable {
public:
  QV_BASE_API WaitReadable();
  WaitReadable(const WaitReadable&) = default;
  WaitReadable& operator=(const WaitReadable&) = default;

  /// Adds a socket. One that is closed or in the set already takes no place, and beyond 64 sockets all
  /// further ones are dropped: they are never reported.
  QV_BASE_API void add(const Socket& socket);
  /// Adds the sockets on which a server listens, up to two: IPv4, then IPv6.
  QV_BASE_API void add(const Server& server);

  /// Empties the set.
  QV_BASE_API void reset();

  /// Waits until a socket of the set can be read or accepted from, or is broken; zero means no limit. Leaves
  /// those in the set that are ready: none after the limit.
  /// @return no error, or code 1, which an empty set without a limit and a closed socket in it are too.
  QV_BASE_API qvUtil::Error wait(qvUtil::Interval interval);

  /// @{ Whether the set holds the socket, or one on which the server listens: after `wait` those that are
  /// ready, before it those that were added.
  [[nodiscard]] QV_BASE_API bool isReadable(const Socket& socket) const;
  [[nodiscard]] QV_BASE_API bool isReadable(const Server& server) const;
  /// @}

private:
  qv::ImplHandle impl_;
};

static_assert(sizeof(WaitReadable) == 2 * sizeof(void*));

/// Waits until one of the sockets can be read or is broken; a zero interval means no limit. Adds those that
/// are ready to `ready`, in their order and behind what it holds. Nulls, closed sockets and those after the
/// 64th are never reported.
/// @return no error, or code 1.
QV_BASE_API qvUtil::Error waitReadable(const qv::vector<Socket*>& sockets, qv::vector<Socket*>& ready,
                                       const qvUtil::Interval& interval);

} // namespace qvTCP
