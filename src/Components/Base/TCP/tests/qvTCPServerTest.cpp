#include "Base/TCP/qvTCPServer.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/String/qvStringCString.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/tests/qvTCPTest.h"
#include "testing/qvTestPlatform.h"

#include <cerrno>
#include <chrono>
#include <thread>

using namespace qvTCPTest;
using qvTCP::Server;
using qvTCP::Socket;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

qvTCP::SocketImpl* listening(const Server& server, unsigned family) {
  return family == four ? server.getListeningSocketImplIPv4() : server.getListeningSocketImplIPv6();
}

// The families over which it listens.
unsigned listeningFamilies(const Server& server) {
  unsigned families = 0;
  for (const unsigned family : {four, six})
    if (const auto* const socket = listening(server, family); socket && socket->isOpen()) families |= family;
  return families;
}

// What a new client says comes out of the server's next socket.
void expectService(Server& server, unsigned family) {
  const auto client = connectTo(server, family);
  EXPECT_FALSE(client->write("ping"));
  const auto accepted = acceptFrom(server);
  ASSERT_TRUE(accepted);
  qvString::CString text;
  EXPECT_FALSE(accepted->read(text));
  EXPECT_EQ(text.view(), "ping");
  EXPECT_TRUE(accepted->connected());
  EXPECT_TRUE(*accepted->remoteAddress().first == *client->localAddress().first);
  EXPECT_TRUE(qvTest::closesOnExec(accepted->getImpl()->handle));
  EXPECT_EQ(qvTest::lingerOf(accepted->getImpl()->handle), 2);
}

TEST(TCPServer, ListensOverEachFamilyAloneAndBoth) {
  for (const unsigned families : available({four | six, four, six}))
    for (const bool loopbackOnly : {true, false}) {
      SCOPED_TRACE(testing::Message() << families << loopbackOnly);
      const Families those(families);
      const int mark = qvTest::descriptorMark();
      {
        Server server(-1, 64);
        server.setLoopbackOnly(loopbackOnly);
        EXPECT_TRUE(server.getPort() == -1 && !listening(server, four) && !listening(server, six));
        EXPECT_FALSE(server.listen());
        ASSERT_EQ(listeningFamilies(server), families);
        for (const unsigned family : {four, six}) {
          if (!(families & family)) continue;
          const auto handle = listening(server, family)->handle;
          std::string host;
          int port = 0;
          EXPECT_EQ(qvPlatform::socketEndpoint(handle, qvPlatform::SocketEnd::local, &host, &port), 0);
          const char* const hosts[] = {"0.0.0.0", "127.0.0.1", "::", "::1"};
          EXPECT_EQ(host, hosts[loopbackOnly + (family == six ? 2 : 0)]);
          EXPECT_EQ(port, server.getPort());
          EXPECT_TRUE(qvTest::closesOnExec(handle));
          expectService(server, families == six ? four : family); // a client finds ::1 by 127.0.0.1 only
        }
      }
      EXPECT_EQ(qvTest::descriptorMark(), mark);
    }
}

TEST(TCPServer, WaitsForConnectionsAsLongAsItIsTold) {
  LocalServer server;
  auto start = steady_clock::now();
  const auto nobody = server.accept(0.03); // listens by itself
  EXPECT_GE(steady_clock::now() - start, milliseconds(30));
  EXPECT_FALSE(nobody.first || nobody.second);
  std::unique_ptr<Socket> client;
  std::thread caller([&] {
    std::this_thread::sleep_for(milliseconds(30));
    client = connectTo(server);
  });
  start = steady_clock::now();
  Socket* accepted = nullptr;
  EXPECT_FALSE(server.accept(&accepted, qvUtil::Interval())); // no limit
  EXPECT_GE(steady_clock::now() - start, milliseconds(20));
  caller.join();
  EXPECT_TRUE(accepted);
  delete accepted;
  const auto waiting = connectTo(server);
  EXPECT_FALSE(server.connectionPending());
}

TEST(TCPServer, TellsThatAPortIsInUse) {
  for (const unsigned taken : available({four, six, four | six}))
    for (const unsigned families : available({four | six, six})) {
      SCOPED_TRACE(testing::Message() << "taken " << taken << " of " << families);
      const Families those(families);
      const qvTest::RefusingPort first(0, taken == six);
      const qvTest::RefusingPort second(taken == (four | six) ? first.port() : 0, true);
      if (!first.port() || !second.port()) continue; // another process was faster
      const int mark = qvTest::descriptorMark();
      LocalServer server(first.port());
      const unsigned left = families & ~taken;
      EXPECT_TRUE(tells(server.listen(), left == four || left == families ? "0 " : "3 bind() failed: "));
      EXPECT_EQ(listeningFamilies(server), left);
      EXPECT_EQ(server.getPort(), first.port());
      if (left) continue;
      EXPECT_EQ(qvTest::descriptorMark(), mark);
      EXPECT_EQ(server.accept(0.01).second.num(), 3); // tries to listen again
    }
}

TEST(TCPServer, TellsWhichCallFailed) {
  const int inUse = qvTest::addressInUseNumber;
  const char* const noFamily = "2 listen() failed: No useable protocol families found.";
  const struct {
    int line;
    unsigned families;
    const char* call;
    int first, times, number;
    const char* error; // followed by the system's text
    unsigned left;
  } rows[] = {
      {__LINE__, four | six, "socket", 0, 2, EIO, noFamily, 0},
      {__LINE__, four | six, "setsockopt", 0, 9, EIO, noFamily, 0},
      {__LINE__, four | six, "socket", 0, 1, EIO, "0 ", six}, // IPv4 is opened first
      {__LINE__, four | six, "bind", 0, 2, EIO, "1 bind() failed: ", 0},
      {__LINE__, four | six, "bind", 0, 1, EIO, "0 ", four},
      {__LINE__, four | six, "bind", 1, 1, inUse, "0 ", four | six}, // chooses another port
      {__LINE__, four | six, "bind", 1, 99, inUse, "3 bind() failed: ", 0},
      {__LINE__, six, "bind", 0, 99, inUse, "3 bind() failed: ", 0},
      {__LINE__, four | six, "listen", 0, 1, EIO, "1 ", six},
      {__LINE__, four | six, "listen", 1, 1, EIO, "1 ", four | six},
      {__LINE__, four | six, "getsockname", 0, 1, EIO, "1 Cannot get listening socket address:", six},
      {__LINE__, four, "getsockname", 0, 1, EIO, "1 Cannot get listening socket address: ", four},
  };
  for (const auto& row : rows) {
    if (available({row.families}).empty()) continue;
    SCOPED_TRACE(row.line);
    const Families those(row.families);
    const int mark = qvTest::descriptorMark();
    {
      LocalServer server;
      qvTest::PlatformScript script;
      script.failCall(row.first, row.number, row.call, row.times);
      const bool isSystems = *row.error == '1' || *row.error == '3';
      EXPECT_EQ(told(server.listen()),
                row.error + (isSystems ? qvPlatform::systemErrorText(row.number) : ""));
      EXPECT_EQ(listeningFamilies(server), row.left);
    }
    EXPECT_EQ(qvTest::descriptorMark(), mark);
  }
  for (const int port : {65536, -2}) EXPECT_TRUE(tells(Server(port).listen(), "1 bind() failed: ")) << port;
}

TEST(TCPServer, TellsWhyNothingIsAccepted) {
  LocalServer server;
  EXPECT_FALSE(server.listen());
  const int interrupted = qvPlatform::errorNumber(qvPlatform::ErrorKind::interrupted);
  const struct {
    const char* call;
    int number, times;
    bool isError, isLost;
  } rows[] = {{"poll", EIO, 1, true, false},
              {"accept", EIO, 1, true, false},
              {"setsockopt", EIO, 1, true, true},
              {"accept", interrupted, 2, false, false},           // goes on
              {"accept", qvTest::gaveUpNumber, 2, false, false}}; // as if that peer had never called
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.call << " " << row.number);
    const auto client = connectTo(server);
    const int mark = qvTest::descriptorMark();
    qvTest::PlatformScript script;
    script.failCall(0, row.number, row.call, row.times);
    EXPECT_TRUE(!row.isError || tells(server.accept(10.0).second, "1 "));
    EXPECT_EQ(qvTest::descriptorMark(), mark);
    if (!row.isLost) (void)acceptFrom(server);
    EXPECT_EQ(script.failures(), row.times);
  }
  const auto client = connectTo(server);
  qvTest::PlatformScript script;
  script.failCall(0, qvTest::gaveUpNumber, "accept", 1 << 30);
  const auto nobody = server.accept(0.01);
  EXPECT_FALSE(nobody.first || nobody.second);
}

TEST(TCPServer, ListensAgainAndForgetsWhatWasClosed) {
  LocalServer server;
  for (int round = 0; round < 3; ++round) { // on a port whose last connections are still closing
    const int port = server.getPort();
    ASSERT_FALSE(server.listen());
    EXPECT_TRUE(round == 0 || server.getPort() == port);
    const auto client = connectTo(server);
    (void)acceptFrom(server)->close(3);
  }
  server.shutdown();
  server.shutdown();
  EXPECT_FALSE(listening(server, four));
  const qvTest::Listener other; // may get the number of the socket that was closed
  qvTCP::ClientSocket client(qvTCP::Address(loopback(four), other.port()));
  EXPECT_FALSE(client.connect());
  const bool overSix = listeningFamilies(server) == six;
  EXPECT_EQ(server.accept(0.02).second.num(), overSix ? 0 : 1);
  EXPECT_TRUE(other.accept());
  if (overSix) expectService(server, six);

  const Families fourAlone(four);
  EXPECT_FALSE(server.listen());
  expectService(server, four);
  server.shutdown();
  for (const double limit : {0.0, 0.01}) EXPECT_EQ(server.accept(limit).second.num(), 1); // and not for ever
}

} // namespace
