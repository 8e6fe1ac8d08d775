// What only Windows Sockets does: it has to be started, and waits for 64 sockets at most.
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/qvTCPSocket.h"
#include "Base/TCP/qvTCPSocketImpl.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <array>

namespace {

TEST(TCPWindows, TellsWhySocketsDoNotStart) {
  const std::pair<int, std::string> rows[] = {
      {10014, "internal application error"}, {10036, "operation in progress"},
      {10067, "internal limits exceeded"},   {10091, "system not ready"},
      {10092, "version 2.2 not supported"},  {10093, "unknown error"}};
  for (const auto& [number, text] : rows) {
    qvTest::PlatformScript script;
    script.failCall(0, number, "WSAStartup");
    qvTCP::socketsStarted = false;
    testing::internal::CaptureStdout();
    qvTCP::ClientSocket client(qvTCP::Address("127.0.0.1", 1));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Cannot initialize Windows Sockets: " + text);
    EXPECT_STREQ(client.connect().message(), "connect() failed: No useable protocol families found.");
    EXPECT_EQ(script.count("WSAStartup"), 1);
  }
  qvTCP::socketsStarted = false;
}

TEST(TCPWindows, WaitsForNoMoreThanItCan) {
  EXPECT_TRUE(qvTCP::hasFamily(qvPlatform::familyIPv4));
  std::array<qvPlatform::SocketWait, 65> sockets;
  addrinfo* const list = qvTCP::Address("127.0.0.1", 1).getAddrInfo(false);
  for (auto& entry : sockets) ASSERT_EQ(qvPlatform::openSocket(list, &entry.socket), 0);
  qvPlatform::freeAddressList(list);
  EXPECT_NE(qvPlatform::waitReadable(sockets.data(), 65, qvPlatform::Deadline(0)), 0);
  EXPECT_EQ(qvPlatform::waitReadable(sockets.data(), 64, qvPlatform::Deadline(0)), 0);
  for (const auto& entry : sockets) qvPlatform::closeSocket(entry.socket);
}

} // namespace
