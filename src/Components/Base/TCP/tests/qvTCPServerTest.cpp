#include "Base/TCP/qvTCPServer.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/String/qvStringCString.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/tests/qvTCPTest.h"
#include "testing/qvTestEnvironment.h"
#include "testing/qvTestPlatform.h"

#include <cerrno>
#include <chrono>
#include <optional>
#include <thread>

using namespace qvTCPTest;
using qvTCP::Server;
using qvTCP::Socket;
using std::chrono::steady_clock;

namespace {

qvTCP::SocketImpl* listening(const Server& server, unsigned family) {
  return family == four ? server.getListeningSocketImplIPv4() : server.getListeningSocketImplIPv6();
}

bool listens(const Server& server, unsigned family) {
  const auto* const socket = listening(server, family);
  return socket && socket->isOpen();
}

// Host and port, a blank between them.
std::string listensAt(const Server& server, unsigned family) {
  std::string host;
  int port = 0;
  EXPECT_EQ(qvPlatform::socketEndpoint(listening(server, family)->handle, qvPlatform::SocketEnd::local, &host,
                                       &port),
            0);
  return host + " " + std::to_string(port);
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

// The tests of one family or both; those with IPv6 are left out where there is none.
class TCPServer : public testing::Test {
protected:
  static bool hasAll(unsigned families) { return !(families & six) || qvTest::hasIPv6(); }
  const Families both_{qvTest::hasIPv6() ? four | six : four};
};

TEST_F(TCPServer, ListensOnWhatTheEnvironmentLeaves) {
  const struct {
    int line;
    const char* variable;
    unsigned families;
    bool loopbackOnly;
  } rows[] = {{__LINE__, nullptr, four | six, true},
              {__LINE__, nullptr, four | six, false},
              {__LINE__, "QV_IPV4_ONLY", four, true},
              {__LINE__, "QV_IPV4_ONLY", four, false},
              {__LINE__, "QV_IPV6_ONLY", six, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    if (!hasAll(row.families)) {
      std::printf("left out: this machine has no ::1\n");
      continue;
    }
    std::optional<qvTest::Environment> environment;
    if (row.variable) environment.emplace(row.variable, "1");
    qvTCP::socketsStarted = false;
    const int mark = qvTest::descriptorMark();
    {
      Server server(-1, 64);
      server.setLoopbackOnly(row.loopbackOnly);
      EXPECT_EQ(server.getPort(), -1);
      EXPECT_FALSE(listening(server, four) || listening(server, six) || server.connectionPending());
      EXPECT_FALSE(server.listen());
      const std::string port = " " + std::to_string(server.getPort());
      for (const unsigned family : {four, six}) {
        ASSERT_EQ(listens(server, family), (row.families & family) != 0);
        if (!listens(server, family)) continue;
        const char* const hosts[] = {"0.0.0.0", "127.0.0.1", "::", "::1"};
        EXPECT_EQ(listensAt(server, family), hosts[row.loopbackOnly + (family == six ? 2 : 0)] + port);
        EXPECT_TRUE(qvTest::closesOnExec(listening(server, family)->handle));
        if (family == four || row.families == (four | six)) expectService(server, family);
      }
      if (row.families == six) (void)connectTo(server, four), (void)acceptFrom(server); // as ::1
    }
    EXPECT_EQ(qvTest::descriptorMark(), mark);
  }
}

TEST_F(TCPServer, WaitsForConnectionsAsLongAsItIsTold) {
  LocalServer server;
  const auto start = steady_clock::now();
  const auto nobody = server.accept(0.03); // listens by itself
  EXPECT_GE(steady_clock::now() - start, std::chrono::milliseconds(30));
  EXPECT_FALSE(nobody.first || nobody.second);
  std::unique_ptr<Socket> client;
  std::thread caller([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    client = connectTo(server);
  });
  const auto again = steady_clock::now();
  Socket* accepted = nullptr;
  EXPECT_FALSE(server.accept(&accepted, qvUtil::Interval())); // no limit
  EXPECT_GE(steady_clock::now() - again, std::chrono::milliseconds(20));
  caller.join();
  EXPECT_TRUE(accepted);
  delete accepted;
  const auto waiting = connectTo(server);
  EXPECT_FALSE(server.connectionPending());
}

TEST_F(TCPServer, TellsThatAPortIsInUse) {
  if (!hasAll(six)) GTEST_SKIP() << "this machine has no ::1";
  for (const unsigned taken : {four, six, four | six})
    for (const unsigned families : {four | six, six}) {
      SCOPED_TRACE(testing::Message() << "taken " << taken << " of " << families);
      const Families available(families);
      const qvTest::RefusingPort first(0, taken == six);
      const qvTest::RefusingPort second(taken == (four | six) ? first.port() : 0, true);
      if (!first.port() || !second.port()) continue; // another process was faster
      const int mark = qvTest::descriptorMark();
      LocalServer server(first.port());
      const unsigned left = families & ~taken;
      const bool isError = (taken & families) != 0 && left != four;
      EXPECT_TRUE(startsWith(told(server.listen()), isError ? "3 bind() failed: " : "0 "));
      EXPECT_EQ(listens(server, four), (left & four) != 0);
      EXPECT_EQ(listens(server, six), (left & six) != 0);
      EXPECT_EQ(server.getPort(), first.port());
      if (left) continue;
      EXPECT_EQ(qvTest::descriptorMark(), mark);
      EXPECT_EQ(server.accept(0.01).second.num(), 3); // tries to listen again
    }
}

TEST_F(TCPServer, TellsWhichCallFailed) {
  const int inUse = qvTest::addressInUseNumber;
  const struct {
    int line;
    unsigned families;
    const char* call;
    int first, times, number;
    const char* error;
    unsigned left;
  } rows[] = {
      {__LINE__, four | six, "socket", 0, 2, EIO, "2 listen() failed: No useable protocol families found.",
       0},
      {__LINE__, four | six, "setsockopt", 0, 9, EIO,
       "2 listen() failed: No useable protocol families found.", 0},
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
    if (!hasAll(row.families)) continue;
    SCOPED_TRACE(row.line);
    const Families available(row.families);
    const int mark = qvTest::descriptorMark();
    {
      LocalServer server;
      qvTest::PlatformScript script;
      script.failCall(row.first, row.number, row.call, row.times);
      const bool tellsNumber = *row.error == '1' || *row.error == '3';
      EXPECT_EQ(told(server.listen()),
                row.error + (tellsNumber ? qvPlatform::systemErrorText(row.number) : std::string()));
      EXPECT_EQ(listens(server, four) * four + listens(server, six) * six, row.left);
    }
    EXPECT_EQ(qvTest::descriptorMark(), mark);
  }
  for (const int port : {65536, -2})
    EXPECT_TRUE(startsWith(told(Server(port).listen()), "1 bind() failed: ")) << port;
}

TEST_F(TCPServer, TellsWhyNothingIsAccepted) {
  LocalServer server;
  EXPECT_FALSE(server.listen());
  for (const char* call : {"poll", "accept", "setsockopt"}) {
    const auto client = connectTo(server);
    const int mark = qvTest::descriptorMark();
    qvTest::PlatformScript script;
    script.failCall(0, EIO, call);
    const auto accepted = server.accept(10.0);
    EXPECT_FALSE(accepted.first);
    EXPECT_TRUE(startsWith(told(accepted.second), "1 "));
    EXPECT_EQ(qvTest::descriptorMark(), mark);
    if (*call != 's') (void)acceptFrom(server);
  }
  // A peer that gave up is as if it had never called, and what is interrupted goes on.
  const int interrupted = qvPlatform::errorNumber(qvPlatform::ErrorKind::interrupted);
  for (const int number : {interrupted, qvTest::gaveUpNumber}) {
    const auto client = connectTo(server);
    qvTest::PlatformScript script;
    script.failCall(0, number, "accept", 2);
    (void)acceptFrom(server);
    EXPECT_EQ(script.failures(), 2);
  }
  const auto client = connectTo(server);
  qvTest::PlatformScript script;
  script.failCall(0, qvTest::gaveUpNumber, "accept", 1 << 30);
  const auto nobody = server.accept(0.01);
  EXPECT_FALSE(nobody.first || nobody.second);
}

TEST_F(TCPServer, OutlivesAPeerThatResetsBeforeItIsAccepted) {
  LocalServer server;
  EXPECT_FALSE(server.listen());
  const auto gone = connectTo(server);
  EXPECT_EQ(qvPlatform::setLinger(gone->getImpl()->handle, 0), 0);
  (void)gone->close(3);
  const auto client = connectTo(server);
  EXPECT_FALSE(client->write("here"));
  qvString::CString text;
  for (int i = 0; i < 2 && text.isEmpty(); ++i) (void)acceptFrom(server)->read(text);
  EXPECT_EQ(text.view(), "here");
}

TEST_F(TCPServer, ListensAgainAndForgetsWhatWasClosed) {
  LocalServer server;
  for (int round = 0; round < 3; ++round) { // on a port whose last connections are still closing
    const int port = server.getPort();
    ASSERT_FALSE(server.listen());
    EXPECT_TRUE(round == 0 || server.getPort() == port);
    const auto client = connectTo(server);
    const auto accepted = acceptFrom(server);
    (void)accepted->close(3);
  }
  server.shutdown();
  EXPECT_FALSE(listening(server, four));
  server.shutdown();
  const qvTest::Listener other; // may get the number of the socket that was closed
  qvTCP::ClientSocket client(qvTCP::Address(qvTCP::Address::localhost, other.port()));
  EXPECT_FALSE(client.connect());
  const bool overSix = listens(server, six);
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
