// Client sockets against a peer made of plain system calls, on the loopback.
#include "Base/TCP/qvTCPSocket.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformSocket.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/qvTCPSocketImpl.h"
#include "Base/TCP/tests/qvTCPTest.h"
#include "testing/qvTestPeer.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <future>

namespace {

using qvString::CString;
using qvString::IString;
using qvTCP::Address;
using qvTCP::ClientSocket;
using qvUtil::Error;
using namespace qvTCPTest;

// A connected pair.
struct Connection {
  qvTest::Listener listener;
  ClientSocket client;
  std::unique_ptr<qvTest::Peer> peer;

  explicit Connection(bool ipv6 = false)
      : listener(ipv6), client(Address(ipv6 ? Address::localhostV6 : Address::localhost, listener.port())) {
    const Error error = client.connect();
    EXPECT_FALSE(error) << error.message();
    peer = listener.accept();
    if (!peer) throw std::runtime_error("no connection came");
  }
};

class TCPSocket : public testing::TestWithParam<bool> {
protected:
  void SetUp() override {
    if (GetParam() && !qvTest::hasIPv6()) GTEST_SKIP() << "this machine has no ::1";
  }
};

INSTANTIATE_TEST_SUITE_P(Families, TCPSocket, testing::Values(false, true),
                         [](const auto& row) { return row.param ? "IPv6" : "IPv4"; });

TEST_P(TCPSocket, FramesTexts) {
  Connection link(GetParam());
  for (const std::size_t size : {0, 255, 256, 65535}) {
    SCOPED_TRACE(size);
    const std::string text(size, 'x');
    auto received = std::async(std::launch::async, [&] { return link.peer->receive(size + 2); });
    EXPECT_FALSE(link.client.write(CString(text.c_str())));
    EXPECT_EQ(received.get(), frame(text));

    auto sent = std::async(std::launch::async, [&] { link.peer->send(frame(text)); });
    CString read("before");
    EXPECT_FALSE(link.client.read(read));
    EXPECT_EQ(read.view(), text);
  }
  EXPECT_EQ(told(link.client.write(CString(65536u, 'x'))), "3 buffer passed to Socket::write() is too long");

  const IString wide(QV_W("h\u00e9\u20ac"));
  EXPECT_FALSE(link.client.write(wide));
  EXPECT_FALSE(link.client.write("plain"));
  EXPECT_EQ(link.peer->receive(15),
            frame("h\xc3\xa9\xe2\x82\xac") + frame("plain")); // nothing of the long ones
  link.peer->send(frame("h\xc3\xa9\xe2\x82\xac") + frame(std::string("a\0b", 3)) + frame("cut").substr(0, 4));
  link.peer->close();
  IString text;
  EXPECT_FALSE(link.client.read(text));
  EXPECT_EQ(text, wide);
  CString bytes;
  EXPECT_FALSE(link.client.read(bytes));
  EXPECT_EQ(bytes.view(), std::string_view("a\0b", 3));
  EXPECT_EQ(told(link.client.read(text)), "4 connection closed");
  EXPECT_EQ(text, wide);
}

TEST_P(TCPSocket, KnowsItsEnds) {
  Connection link(GetParam());
  const auto local = link.client.localAddress();
  ASSERT_TRUE(local.first) << local.second.message();
  const IString& loopback = GetParam() ? Address::localhostV6 : Address::localhost;
  EXPECT_TRUE(*local.first == Address(loopback, local.first->getPort()));
  EXPECT_NE(local.first->getPort(), link.listener.port());
  EXPECT_TRUE(*link.client.remoteAddress().first == Address(loopback, link.listener.port()));

  // As an accepted socket asks for its other end.
  qvTCP::SocketImpl& impl = *link.client.getImpl();
  impl.remoteAddress.reset();
  EXPECT_FALSE(link.client.connected());
  EXPECT_EQ(told(link.client.remoteAddress().second), "4 Socket not connected");
  impl.isConnected = true;
  qvTest::PlatformScript script;
  script.failCall(0, EIO, "getpeername");
  EXPECT_EQ(link.client.remoteAddress().second.num(), 1);
  EXPECT_TRUE(*link.client.remoteAddress().first == Address(loopback, link.listener.port()));
}

TEST(TCPClient, SetsOptionsAndConnectsAgain) {
  Connection link;
  const int mark = qvTest::descriptorMark();
  (void)link.client.close(2);
  EXPECT_FALSE(link.client.connect());
  EXPECT_TRUE(link.peer->atEnd());
  EXPECT_EQ(qvTest::descriptorMark(), mark);
  EXPECT_FALSE(link.client.write("x"));
  EXPECT_EQ(link.listener.accept()->receive(3), frame("x"));

  const auto handle = link.client.getImpl()->handle;
  EXPECT_TRUE(link.client.getCStream().first);
  EXPECT_TRUE(qvTest::closesOnExec(handle) &&
              qvTest::descriptorClosesOnExec(link.client.getImpl()->descriptor));
  EXPECT_EQ(qvTest::lingerOf(handle), 2);
  for (const bool on : {true, false}) {
    EXPECT_FALSE(link.client.setNoDelay(on));
    EXPECT_EQ(qvTest::hasNoDelay(handle), on);
  }
  qvTest::PlatformScript script;
  script.failCall(0, EIO, "setsockopt");
  EXPECT_TRUE(startsWith(told(link.client.setNoDelay(true)), "1 setsockopt() failed: "));
}

TEST(TCPClient, TellsThatThePeerHasClosed) {
  char buffer[8] = {};
  std::uint64_t count = 99;
  Connection link;
  link.peer->send("abc");
  EXPECT_EQ(told(link.client.read(nullptr, 0, &count)), "4 connection closed"); // asks once, takes nothing
  EXPECT_EQ(count, 0u);
  link.peer->close();
  EXPECT_EQ(told(link.client.read(buffer, 8, &count)), "4 connection closed");
  EXPECT_EQ(std::string(buffer, count), "abc");
  EXPECT_FALSE(link.client.write(nullptr, 0, nullptr));
}

TEST(TCPClient, TellsThatThePeerHasReset) {
  char buffer[8] = {};
  std::uint64_t count = 99;
  for (const bool throwMode : {false, true}) {
    SCOPED_TRACE(throwMode);
    Connection link;
    link.client.setThrowMode(throwMode);
    const auto outcome = [](auto&& call) {
      try {
        return told(call());
      } catch (const Error& error) {
        return "thrown " + told(error);
      }
    };
    const std::string thrown = throwMode ? "thrown " : "";
    link.peer->reset();
    count = 99;
    EXPECT_TRUE(startsWith(outcome([&] { return link.client.read(buffer, 8, &count); }), thrown + "1 "));
    EXPECT_EQ(count, 0u);
    count = 99; // A signal of the broken pipe would end this process.
    const auto write = [&] { return link.client.write("abc", 3, &count); };
    EXPECT_TRUE(startsWith(outcome(write), thrown + "1 send() failed: "));
    EXPECT_EQ(count, 0u);
  }
}

TEST(TCPClient, MovesWhatIsInterruptedAndInPieces) {
  Connection link;
  for (const char* call : {"send", "recv", "poll"}) {
    qvTest::PlatformScript script;
    script.failCall(0, qvPlatform::errorNumber(qvPlatform::ErrorKind::interrupted), call, 3);
    auto echo = std::async(std::launch::async, [&] { link.peer->send(link.peer->receive(300'000)); });
    const std::string text(300'000, 'y');
    std::string back(text.size(), '\0');
    std::uint64_t count = 0;
    EXPECT_FALSE(link.client.write(text.data(), text.size(), &count));
    EXPECT_EQ(count, text.size());
    EXPECT_TRUE(link.client.dataAvailable());
    EXPECT_FALSE(link.client.read(back.data(), back.size(), nullptr));
    EXPECT_EQ(back, text);
    EXPECT_EQ(script.failures(), 3);
  }
}

TEST(TCPClient, Waits) {
  Connection link;
  link.client.setTimeout(qvUtil::Interval(0.03));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(link.client.wait());
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
  link.peer->send("x");
  EXPECT_TRUE(link.client.dataAvailable());
  link.client.setTimeout(qvUtil::Interval());
  EXPECT_FALSE(link.client.wait());
  (void)link.client.close(3);
  EXPECT_EQ(link.client.wait().num(), 1); // and not for ever
  EXPECT_FALSE(link.client.dataAvailable());
  EXPECT_NE(qvPlatform::waitReadable(nullptr, 0, -1, nullptr), 0);
  EXPECT_EQ(qvPlatform::waitReadable(nullptr, 0, 1000, nullptr), 0);
  qvPlatform::SocketWait closed{qvPlatform::noSocket, false};
  EXPECT_NE(qvPlatform::waitReadable(&closed, 1, -1, nullptr), 0);
  EXPECT_GT(qvTCP::waitLimit(qvUtil::Interval(1e300)), 0);
  EXPECT_EQ(qvTCP::waitLimit(qvUtil::Interval()), -1);
}

TEST(TCPClient, TellsHowConnectingEnds) {
  const Families both(qvPlatform::familyIPv4 | qvPlatform::familyIPv6);
  const qvTest::RefusingPort refusing;
  const Address nobody(Address::localhost, refusing.port());
  EXPECT_TRUE(startsWith(told(ClientSocket(nobody).connect()), "4 connect() failed: "));
  EXPECT_TRUE(startsWith(told(ClientSocket(Address("no such host", 1)).connect()), "2 getaddrinfo failed: "));

  const struct {
    int line;
    const char* call;
    int number;
    const char* error;
  } rows[] = {{__LINE__, "socket", EIO, "2 connect() failed: "},
              {__LINE__, "setsockopt", EIO, "2 Could not set LINGER socket option: "},
              {__LINE__, "connect", EIO, "2 connect() failed: "},
              {__LINE__, "connect", qvTest::unreachableNumber, "4 connect() failed: "}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const int mark = qvTest::descriptorMark();
    qvTest::PlatformScript script;
    script.failCall(0, row.number, row.call, 9);
    EXPECT_TRUE(startsWith(told(ClientSocket(nobody).connect()), row.error));
    EXPECT_EQ(qvTest::descriptorMark(), mark);
  }
}

TEST(TCPClient, FallsBackToIPv6ForTheLoopback) {
  if (!qvTest::hasIPv6()) GTEST_SKIP() << "this machine has no ::1";
  const qvTest::Listener listener(true);
  const qvTest::RefusingPort refusing(listener.port());
  if (!refusing.port()) GTEST_SKIP() << "another process has this port over IPv4";
  const Address loopback(Address::localhost, listener.port());
  {
    const Families both(qvPlatform::familyIPv4 | qvPlatform::familyIPv6);
    ClientSocket client(loopback);
    EXPECT_TRUE(startsWith(told(client.connect()), "4 connect() failed: ")); // of the first candidate
    EXPECT_FALSE(client.write("x"));
    EXPECT_EQ(listener.accept()->receive(3), frame("x"));
  }
  const Families sixAlone(six);
  EXPECT_FALSE(ClientSocket(loopback).connect());
  EXPECT_EQ(told(ClientSocket(Address("127.0.0.2", 1)).connect()),
            "2 connect() failed: No useable protocol families found.");
}

TEST(TCPClient, ClosesSidesInEitherOrder) {
  const struct {
    int line;
    std::initializer_list<std::pair<int, int>> closes; // which sides, and the code that comes back
    bool peerSeesEnd;
    bool open;
  } rows[] = {
      // The shutdown of the reading side, and of the whole, tells its success as an error.
      {__LINE__, {{3, 1}, {3, 0}}, true, false}, {__LINE__, {{1, 1}, {1, 1}}, false, true},
      {__LINE__, {{2, 0}}, true, true},          {__LINE__, {{1, 1}, {2, 1}, {1, 0}}, true, false},
      {__LINE__, {{0, 0}, {4, 0}}, false, true}, {__LINE__, {{2, 0}, {1, 1}, {3, 0}}, true, false},
  };
  for (const bool stream : {false, true})
    for (const auto& row : rows) {
      SCOPED_TRACE(row.line);
      const int mark = qvTest::descriptorMark();
      {
        Connection link;
        EXPECT_EQ(stream, stream && link.client.getCStream().first);
        for (const auto& [how, code] : row.closes) EXPECT_EQ(link.client.close(how).num(), code) << how;
        EXPECT_EQ(link.client.getImpl()->isOpen(), row.open);
        EXPECT_TRUE(!row.peerSeesEnd || link.peer->atEnd());
        if (row.open) {
          link.peer->send("still here");
          EXPECT_EQ(link.client.write("x").num() == 0, !row.peerSeesEnd);
        } else {
          EXPECT_EQ(link.client.write("x").num(), 1);
          EXPECT_EQ(link.client.getCStream().second.num(), 2);
        }
      }
      EXPECT_EQ(qvTest::descriptorMark(), mark);
    }
}

TEST(TCPClient, TellsWhenAHandleDoesNotClose) {
  enum Failing { socketAlone, stream, socketBesideAStream };
  for (const auto& [failing, text] : {std::pair(socketAlone, "1 "),
                                      {stream, "1 fclose() on socket stream failed"},
                                      {socketBesideAStream, "1 _close() of C file descriptor failed"}}) {
    SCOPED_TRACE(text);
    Connection link;
    EXPECT_TRUE(failing == socketAlone || link.client.getCStream().first);
    qvTest::PlatformScript script;
    script.failCall(0, EIO, "shutdown"); // whose success would be told first
    if (failing == stream)
      EXPECT_EQ(qvPlatform::closeDescriptor(link.client.getImpl()->descriptor), 0);
    else
      script.failCall(0, EIO, "closesocket");
    EXPECT_TRUE(startsWith(told(link.client.close(3)), text));
    EXPECT_FALSE(link.client.close(3));
  }
}

TEST(TCPClient, OffersACStream) {
  const int mark = qvTest::descriptorMark();
  {
    Connection link;
    std::FILE* stream = link.client.getCStream().first;
    ASSERT_TRUE(stream);
    for (int round = 0; round < 2; ++round) { // turns between writing and reading
      std::fprintf(stream, "line %d\n", round);
      EXPECT_EQ(std::fflush(stream), 0);
      EXPECT_EQ(link.peer->receive(7), "line " + std::to_string(round) + "\n");
      link.peer->send("answer\n");
      char line[16] = {};
      EXPECT_STREQ(std::fgets(line, sizeof line, stream), "answer\n");
      (void)std::fseek(stream, 0, SEEK_CUR);
    }
    std::fputs("last", stream);
    EXPECT_FALSE(link.client.close(2)); // what is buffered goes out first
    EXPECT_EQ(link.peer->receive(5), "last");

    Connection whole;
    std::fputs("not lost", whole.client.getCStream().first);
    (void)whole.client.close(3);
    EXPECT_EQ(whole.peer->receive(9), "not lost");
  }
  EXPECT_EQ(qvTest::descriptorMark(), mark);

  Connection gone;
  std::FILE* stream = gone.client.getCStream().first;
  gone.peer->reset();
  std::fputs("into the void", stream);
  EXPECT_NE(std::fflush(stream), 0); // an error and no signal

  for (const char* call : {"dup", "fdopen"}) {
    Connection link;
    const int before = qvTest::descriptorMark();
    qvTest::PlatformScript script;
    script.failCall(0, EMFILE, call);
    const std::string text = told(link.client.getCStream().second);
    EXPECT_TRUE(startsWith(text, *call == 'd' ? "1 _open_osfhandle() failed for  socket: "
                                              : "1 _fdopen() failed for socket file descriptor"));
    EXPECT_EQ(qvTest::descriptorMark(), before);
    EXPECT_TRUE(link.client.getCStream().first);
  }
}

TEST(TCPClient, AnswersWithoutASocket) {
  struct Bare : qvTCP::Socket {
  } bare;
  char byte = 0;
  EXPECT_EQ(told(bare.localAddress().second), "2 No socket has been created");
  EXPECT_EQ(told(bare.remoteAddress().second), "4 Socket not connected");
  EXPECT_EQ(told(bare.setNoDelay(true)), "2 No socket has been created");
  EXPECT_EQ(told(bare.getCStream().second), "2 socket is not connected");
  EXPECT_TRUE(bare.read(&byte, 1, nullptr).num() == 1 && bare.write(&byte, 1, nullptr).num() == 1);
  EXPECT_FALSE(bare.close(3));
}

} // namespace
