// Client sockets against a peer made of plain system calls, on the loopback.
#include "Base/TCP/qvTCPSocket.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/tests/qvTCPTest.h"
#include "testing/qvTestPlatform.h"

#include <cerrno>
#include <chrono>
#include <future>
#include <stdexcept>
#include <tuple>
#include <utility>

using namespace qvTCPTest;
using qvString::CString;
using qvString::IString;
using qvTCP::Address;
using qvTCP::ClientSocket;
using qvUtil::Error;

namespace {

// A connected pair.
struct Connection {
  qvTest::Listener listener;
  ClientSocket client;
  std::unique_ptr<qvTest::Peer> peer;

  explicit Connection(unsigned family = four)
      : listener(family == six), client(Address(loopback(family), listener.port())) {
    EXPECT_TRUE(tells(client.connect(), "0 "));
    peer = listener.accept();
    if (!peer) throw std::runtime_error("no connection came");
  }
};

TEST(TCPSocket, FramesTexts) {
  Connection link;
  CString read("before");
  for (const std::size_t size : {255, 65535, 0, 256, 65535}) {
    SCOPED_TRACE(size);
    const std::string text(size, 'x');
    auto echo = std::async(std::launch::async, [&] {
      const std::string bytes = link.peer->receive(size + 2);
      link.peer->send(bytes);
      return bytes;
    });
    EXPECT_FALSE(link.client.write(CString(text.c_str())));
    EXPECT_FALSE(link.client.read(read));
    EXPECT_EQ(read.view(), text);
    EXPECT_EQ(echo.get(), frame(text));
  }
  EXPECT_EQ(link.client.write(CString(65536u, 'x')).num(), 3);
  IString wide(QV_W("h\u00e9\u20ac"));
  EXPECT_FALSE(link.client.write(wide));
  EXPECT_FALSE(link.client.write("plain"));
  const std::string inUtf8 = frame("h\xc3\xa9\xe2\x82\xac");
  EXPECT_EQ(link.peer->receive(15), inUtf8 + frame("plain")); // nothing of the long one
  link.peer->send(frame(std::string("a\0b", 3)) + inUtf8 + frame("cut").substr(0, 4));
  link.peer->close();
  EXPECT_FALSE(link.client.read(read));
  EXPECT_EQ(read.view(), std::string_view("a\0b", 3));
  IString text;
  EXPECT_FALSE(link.client.read(text));
  EXPECT_EQ(told(link.client.read(text)), "4 connection closed");
  EXPECT_EQ(text, wide);
}

TEST(TCPSocket, KnowsItsEnds) {
  for (const unsigned family : available({four, six})) {
    Connection link(family);
    const auto local = link.client.localAddress();
    ASSERT_TRUE(tells(local.second, "0 "));
    EXPECT_TRUE(*local.first == Address(loopback(family), local.first->getPort()));
    EXPECT_NE(local.first->getPort(), link.listener.port());
    EXPECT_TRUE(*link.client.remoteAddress().first == Address(loopback(family), link.listener.port()));
    EXPECT_FALSE(link.client.connected());
  }
  EXPECT_TRUE(tells(qvTCP::ServerSocket(qvPlatform::noSocket).remoteAddress().second, "1 "));
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
  EXPECT_TRUE(link.client.getCStream().first && qvTest::closesOnExec(handle));
  EXPECT_TRUE(qvTest::descriptorClosesOnExec(link.client.getImpl()->descriptor));
  EXPECT_EQ(qvTest::lingerOf(handle), 2);
  for (const bool on : {true, false}) {
    EXPECT_FALSE(link.client.setNoDelay(on));
    EXPECT_EQ(qvTest::hasNoDelay(handle), on);
  }
}

TEST(TCPClient, TellsWhichCallFailed) {
  using Client = ClientSocket&;
  const auto openStream = [](Client client) { return client.getCStream().second; };
  const struct {
    const char* call;
    Error (*act)(Client client);
    const char* error;
  } rows[] = {{"setsockopt", [](Client client) { return client.setNoDelay(true); }, "setsockopt() failed: "},
              {"getsockname", [](Client client) { return client.localAddress().second; }, ""},
              {"dup", openStream, "_open_osfhandle() failed for  socket: "},
              {"fdopen", openStream, "_fdopen() failed for socket file descriptor"},
              {"shutdown", [](Client client) { return client.close(2); }, "shutdown(socket,1) failed: "},
              {"poll", [](Client client) { return client.setTimeout(0.001), client.wait(); }, ""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.call);
    Connection link;
    const int mark = qvTest::descriptorMark();
    qvTest::PlatformScript script;
    script.failCall(0, EIO, row.call);
    EXPECT_TRUE(tells(row.act(link.client), std::string("1 ") + row.error));
    EXPECT_EQ(qvTest::descriptorMark(), mark);
    EXPECT_FALSE(row.act(link.client)); // the next time it works
  }
  for (const auto& [failing, text] : {std::pair("", "1 "),
                                      {"stream", "1 fclose() on socket stream failed"},
                                      {"beside a stream", "1 _close() of C file descriptor failed"}}) {
    Connection link;
    EXPECT_TRUE(!*failing || link.client.getCStream().first);
    const bool isStream = *failing == 's';
    EXPECT_TRUE(!isStream || qvPlatform::closeDescriptor(link.client.getImpl()->descriptor) == 0);
    qvTest::PlatformScript script;
    script.failCall(0, EIO, "shutdown"); // whose success would be told first
    script.failCall(0, EIO, isStream ? "" : "closesocket");
    EXPECT_TRUE(tells(link.client.close(3), text));
    EXPECT_FALSE(link.client.close(3));
  }
}

TEST(TCPClient, TellsThatThePeerIsGone) {
  char buffer[8] = {};
  std::uint64_t count = 99;
  Connection closed;
  closed.peer->send("abc");
  EXPECT_EQ(told(closed.client.read(nullptr, 0, &count)), "4 connection closed"); // asks once, takes nothing
  EXPECT_EQ(count, 0u);
  closed.peer->close();
  EXPECT_EQ(told(closed.client.read(buffer, 8, &count)), "4 connection closed");
  EXPECT_EQ(std::string(buffer, count), "abc");
  EXPECT_FALSE(closed.client.write(nullptr, 0, nullptr));
  for (const std::string thrown : {"", "thrown "}) {
    Connection link;
    link.client.setThrowMode(!thrown.empty());
    link.peer->reset();
    qvTest::PlatformScript script;
    script.failCall(0, EIO, "recv"); // systems differ in what is read after a reset
    const auto outcome = [](auto call) {
      try {
        return told(call());
      } catch (const Error& error) {
        return "thrown " + told(error);
      }
    };
    const auto read = [&] { return link.client.read(buffer, 8, &count); };
    EXPECT_TRUE(outcome(read).starts_with(thrown + "1 "));
    EXPECT_EQ(std::exchange(count, 99u), 0u);
    const auto write = [&] { return link.client.write("abc", 3, &count); }; // a signal would end this process
    EXPECT_TRUE(outcome(write).starts_with(thrown + "1 send() failed: "));
    EXPECT_EQ(count, 0u);
    const auto writeTooMuch = [&] { return link.client.write(CString(65536u, 'x')); };
    EXPECT_EQ(outcome(writeTooMuch), thrown + "3 buffer passed to Socket::write() is too long");
  }
}

TEST(TCPClient, MovesWhatIsInterruptedAndInPieces) {
  Connection link;
  const std::string text(300'000, 'y');
  for (const char* call : {"send", "recv", "poll"}) {
    qvTest::PlatformScript script;
    script.failCall(0, qvPlatform::errorNumber(qvPlatform::ErrorKind::interrupted), call, 3);
    auto echo = std::async(std::launch::async, [&] { link.peer->send(link.peer->receive(text.size())); });
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
  link.client.setTimeout(0.03);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(link.client.wait());
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
  link.peer->send("x");
  EXPECT_TRUE(link.client.dataAvailable());
  for (const double limit : {0.0, 1e300}) { // none, and the longest
    link.client.setTimeout(limit);
    EXPECT_FALSE(link.client.wait());
  }
  (void)link.client.close(3);
  EXPECT_EQ(link.client.wait().num(), 1); // and not for ever
  EXPECT_FALSE(link.client.dataAvailable());
}

TEST(TCPClient, TellsHowConnectingEnds) {
  const Families both(four | six);
  const qvTest::RefusingPort refusing;
  const Address nobody(Address::localhost, refusing.port());
  EXPECT_TRUE(tells(ClientSocket(nobody).connect(), "4 connect() failed: "));
  EXPECT_TRUE(tells(ClientSocket(Address("no such host", 1)).connect(), "2 getaddrinfo failed: "));
  const std::tuple<const char*, int, const char*> rows[] = {
      {"socket", EIO, "2 connect() failed: "},
      {"setsockopt", EIO, "2 Could not set LINGER socket option: "},
      {"connect", EIO, "2 connect() failed: "},
      {"connect", qvTest::unreachableNumber, "4 connect() failed: "}};
  for (const auto& [call, number, error] : rows) {
    const int mark = qvTest::descriptorMark();
    qvTest::PlatformScript script;
    script.failCall(0, number, call, 9);
    EXPECT_TRUE(tells(ClientSocket(nobody).connect(), error)) << call;
    EXPECT_EQ(qvTest::descriptorMark(), mark);
  }
  const Families sixAlone(six);
  EXPECT_EQ(told(ClientSocket(Address("127.0.0.2", 1)).connect()),
            "2 connect() failed: No useable protocol families found.");
}

TEST(TCPClient, FallsBackToIPv6ForTheLoopback) {
  if (!qvTest::hasIPv6()) GTEST_SKIP() << "this machine has no ::1";
  const qvTest::Listener listener(true);
  const qvTest::RefusingPort refusing(listener.port());
  if (!refusing.port()) GTEST_SKIP() << "another process has this port over IPv4";
  const Families both(four | six);
  ClientSocket client(Address(Address::localhost, listener.port()));
  EXPECT_TRUE(tells(client.connect(), "4 connect() failed: ")); // of the first candidate
  EXPECT_FALSE(client.write("x"));
  EXPECT_EQ(listener.accept()->receive(3), frame("x"));
}

TEST(TCPClient, ClosesSidesInEitherOrder) {
  const struct {
    int line;
    std::initializer_list<std::pair<int, int>> closes; // which sides, and the code that comes back
    bool peerSeesEnd, open;
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
        EXPECT_EQ(link.client.write("x").num() == 0, !row.peerSeesEnd);
        EXPECT_EQ(link.client.getCStream().second.num(), row.open ? 0 : 2);
      }
      EXPECT_EQ(qvTest::descriptorMark(), mark);
    }
}

TEST(TCPClient, OffersACStream) {
  Connection link;
  std::FILE* const stream = link.client.getCStream().first;
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
  EXPECT_EQ(link.client.getCStream().first, stream);
  for (const int how : {2, 3}) { // what is buffered goes out first
    Connection closing;
    std::fputs("last", closing.client.getCStream().first);
    (void)closing.client.close(how);
    EXPECT_EQ(closing.peer->receive(5), "last");
  }
  link.peer->reset();
  std::fputs("into the void", stream);
  EXPECT_NE(std::fflush(stream), 0); // an error and no signal
}

} // namespace
