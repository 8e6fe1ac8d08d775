// Packet files between two processes: each end is a stream over a socket of the library.
#include "Base/IO/tests/ioLinkTest.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/qvTCPServer.h"
#include "testing/qvTestChild.h"
#include "testing/qvTestPacketFile.h"
#include "testing/qvTestSanitizer.h"

#include <csignal>
#include <optional>

using qvTCP::Socket;

namespace {

// 100 MB, unless a sanitizer makes that too slow.
constexpr int packetCount = qvTest::isSanitized ? 40 : 400, packetSize = 65536;

int valueAt(int packet, int place) { return packet * (place / 7) ^ place; }

// Told the number of each packet before it goes, or once it came.
using Visitor = std::function<void(int packet)>;

ioStatus send(Socket& socket, const std::string& filters, int count, const Visitor& visit) {
  ioBufferedStreamOutput stream;
  stream.openSocket(&socket);
  ioLinkTest::push(stream, filters);
  qvTest::PacketTypes registry(false, {{"part", nullptr}});
  const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(stream, ioWriteBinary, &registry));
  context->startFile();
  std::vector<int> values(packetSize);
  for (int packet = 0; packet < count; ++packet) {
    visit(packet);
    for (int i = 0; i < packetSize; ++i) values[i] = valueAt(packet, i);
    context->startPacket("part", nullptr);
    context->writeIntArray(values.data(), packetSize);
    context->endPacket();
  }
  context->endFile();
  stream.close();
  (void)socket.close(2);
  return stream.good() ? context->getStatus() : ioFailed;
}

ioStatus receive(Socket& socket, const std::string& filters, const Visitor& visit) {
  ioBufferedStreamInput stream;
  stream.openSocket(&socket);
  ioLinkTest::push(stream, filters);
  int packet = 0;
  std::vector<int> values(packetSize);
  const auto check = [&](ioReadContext& context) {
    context.fetchIntArray(values.data(), packetSize);
    if (!context.good()) return;
    int wrong = 0;
    for (int i = 0; i < packetSize; ++i) wrong += values[i] != valueAt(packet, i);
    EXPECT_EQ(wrong, 0) << packet;
    visit(packet++);
  };
  qvTest::PacketTypes registry(true, {{"part", check}});
  const std::unique_ptr<ioReadContext> context(ioReadContextAlloc(stream, &registry));
  if (!context) return ioFailed;
  ioClientReadContext client(context.get());
  return context->readFile(client);
}

/// A server, and a child that talks to it.
class ioTwoProcesses : public ioLinkTest::WithKey {
protected:
  template <class Talk>
  void start(Talk talk) {
    server_.setLoopbackOnly(true);
    ASSERT_FALSE(server_.listen());
    child_.emplace([&] {
      qvTCP::ClientSocket socket(qvTCP::Address(qvTCP::Address::localhost, server_.getPort()));
      ASSERT_FALSE(socket.connect());
      talk(socket);
    });
    socket_.reset(server_.accept(30.0).first);
    ASSERT_TRUE(socket_);
  }

  qvTCP::Server server_;
  std::optional<qvTest::Child> child_;
  std::unique_ptr<Socket> socket_;
};

void nothing(int) {}

TEST_F(ioTwoProcesses, ExchangePacketFiles) {
  for (const char* filters : {"", "cs", "ecs"}) {
    SCOPED_TRACE(filters);
    start([&](Socket& socket) {
      EXPECT_EQ(send(socket, filters, packetCount, nothing), ioOK);
      int answers = 0;
      EXPECT_EQ(receive(socket, filters, [&](int) { ++answers; }), ioOK);
      EXPECT_EQ(answers, 3);
    });
    int received = 0;
    EXPECT_EQ(receive(*socket_, filters, [&](int) { ++received; }), ioOK);
    EXPECT_EQ(received, packetCount);
    EXPECT_EQ(send(*socket_, filters, 3, nothing), ioOK);
    EXPECT_EQ(child_->wait(), 0);
  }
}

TEST_F(ioTwoProcesses, SeeThatTheOtherDied) {
  const Visitor dieInTheMiddle = [](int packet) {
    if (packet == packetCount / 3) raise(SIGKILL);
  };
  for (const char* filters : {"", "cs", "ecs"}) {
    SCOPED_TRACE(filters);
    start([&](Socket& socket) { send(socket, filters, packetCount, dieInTheMiddle); });
    int received = 0;
    EXPECT_NE(receive(*socket_, filters, [&](int) { ++received; }), ioOK);
    EXPECT_LE(received, packetCount / 3);
    EXPECT_EQ(child_->wait(), -SIGKILL);

    start([&](Socket& socket) { receive(socket, filters, dieInTheMiddle); });
    EXPECT_EQ(send(*socket_, filters, packetCount, nothing), ioFailed);
    EXPECT_EQ(child_->wait(), -SIGKILL);
  }
}

} // namespace
