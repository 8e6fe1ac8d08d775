// What the tests of sockets and servers share.
#pragma once

#include "Base/Platform/qvPlatformSocket.h"
#include "Base/TCP/qvTCPServer.h"
#include "Base/TCP/qvTCPSocketImpl.h"
#include "testing/qvTestPeer.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace qvTCPTest {

inline constexpr unsigned four = qvPlatform::familyIPv4, six = qvPlatform::familyIPv6;

/// Those of the combinations that this machine's loopback has.
inline std::vector<unsigned> available(std::initializer_list<unsigned> combinations) {
  std::vector<unsigned> result = combinations;
  std::erase_if(result, [](unsigned families) { return (families & six) && !qvTest::hasIPv6(); });
  return result;
}

inline const qvString::IString& loopback(unsigned family) {
  return family == six ? qvTCP::Address::localhostV6 : qvTCP::Address::localhost;
}

inline std::string told(const qvUtil::Error& error) {
  return std::to_string(error.num()) + " " + error.message();
}
/// Whether the error is told so, up to the system's text.
inline bool tells(const qvUtil::Error& error, const std::string& start) {
  return told(error).starts_with(start) || (ADD_FAILURE() << told(error), false);
}

/// The families as the process sees them, for one scope.
struct Families {
  explicit Families(unsigned families) {
    qvTCP::socketsStarted = true;
    qvTCP::protocolFamilies = families;
  }
  ~Families() { qvTCP::socketsStarted = false; }
};

inline std::string frame(const std::string& text) {
  return std::string{static_cast<char>(text.size() >> 8), static_cast<char>(text.size())} + text;
}

/// A server on the loopback, at a port that the system chooses.
struct LocalServer : qvTCP::Server {
  explicit LocalServer(int port = -1, int backlog = 64) : Server(port, backlog) { setLoopbackOnly(true); }
};

/// A client of a server, already connected.
inline std::unique_ptr<qvTCP::ClientSocket> connectTo(const qvTCP::Server& server, unsigned family = four) {
  auto client = std::make_unique<qvTCP::ClientSocket>(qvTCP::Address(loopback(family), server.getPort()));
  (void)client->connect();
  EXPECT_TRUE(client->getImpl()->isOpen());
  return client;
}

/// The next connection, within ten seconds.
inline std::unique_ptr<qvTCP::Socket> acceptFrom(qvTCP::Server& server) {
  const auto accepted = server.accept(10.0);
  EXPECT_TRUE(accepted.first) << told(accepted.second);
  return std::unique_ptr<qvTCP::Socket>(accepted.first);
}

} // namespace qvTCPTest
