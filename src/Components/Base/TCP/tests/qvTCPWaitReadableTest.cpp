#include "Base/TCP/qvTCPWaitReadable.h"

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringCString.h"
#include "Base/TCP/tests/qvTCPTest.h"
#include "testing/qvTestPlatform.h"
#include "testing/qvTestSanitizer.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <thread>
#include <vector>

using namespace qvTCPTest;
using qvString::CString;
using qvTCP::Socket;
using qvTCP::WaitReadable;

namespace {

// A server, clients, and the sockets that it has accepted from them.
struct Circle {
  explicit Circle(std::size_t size) {
    EXPECT_FALSE(server.listen());
    for (std::size_t i = 0; i < size; ++i) {
      clients.push_back(connectTo(server));
      sockets.push_back(acceptFrom(server));
    }
  }
  LocalServer server;
  std::vector<std::unique_ptr<Socket>> clients, sockets;
};

TEST(TCPWaitReadable, HoldsSixtyFourSockets) {
  Circle circle(65);
  for (const auto& client : circle.clients) EXPECT_FALSE(client->write("x"));
  for (const std::size_t size : {1u, 63u, 64u, 65u}) {
    SCOPED_TRACE(size);
    WaitReadable set;
    qv::vector<Socket*> sockets, ready(1, nullptr);
    for (std::size_t i = 0; i < size; ++i)
      for (int twice = 0; twice < 2; ++twice) {
        set.add(*circle.sockets[i]);
        sockets.push_back(circle.sockets[i].get());
      }
    const auto countReadable = [&] {
      const auto isIt = [&](const auto& socket) { return set.isReadable(*socket); };
      return static_cast<std::size_t>(std::count_if(circle.sockets.begin(), circle.sockets.end(), isIt));
    };
    const std::size_t most = std::min<std::size_t>(size, 64);
    EXPECT_EQ(countReadable(), most);      // only what was added
    for (std::size_t i = 0; i < size; ++i) // waits until the text is there
      EXPECT_EQ(circle.sockets[i]->dataAvailable(), true);
    EXPECT_FALSE(set.wait(10.0));
    EXPECT_EQ(countReadable(), most);
    EXPECT_EQ(set.isReadable(*circle.sockets[size - 1]), size < 65);

    EXPECT_FALSE(qvTCP::waitReadable(sockets, ready, 10.0));
    ASSERT_EQ(ready.size(), 1 + 2 * static_cast<int>(most));
    EXPECT_TRUE(!ready[0] && std::equal(ready.begin() + 1, ready.end(), sockets.begin()));
    set.reset();
    EXPECT_EQ(countReadable(), 0u);
  }
}

TEST(TCPWaitReadable, KeepsWhatIsReady) {
  Circle circle(3);
  EXPECT_FALSE(circle.clients[1]->write("x"));
  WaitReadable set, copy(set);
  LocalServer idle;
  copy.add(idle); // which does not listen
  for (const auto& socket : circle.sockets) copy.add(*socket);
  set.add(circle.server);
  EXPECT_TRUE(set.isReadable(circle.server) && set.isReadable(*circle.sockets[0]));
  EXPECT_FALSE(copy.wait(10.0));
  EXPECT_TRUE(set.isReadable(*circle.sockets[1]));
  EXPECT_FALSE(set.isReadable(circle.server) || set.isReadable(*circle.sockets[0]) || set.isReadable(idle));

  set.reset();
  set.add(circle.server);
  EXPECT_FALSE(set.wait(0.01));
  EXPECT_FALSE(set.isReadable(circle.server)); // nobody called
  for (const unsigned family : {four, six}) {
    if (family == six && !circle.server.getListeningSocketImplIPv6()->isOpen()) continue;
    const auto caller = connectTo(circle.server, family);
    set.reset();
    set.add(circle.server);
    EXPECT_FALSE(set.wait(10.0));
    EXPECT_TRUE(set.isReadable(circle.server));
    (void)acceptFrom(circle.server);
  }
  (void)circle.clients[0]->close(3); // which can be read, too
  qv::vector<Socket*> sockets{circle.clients[0].get(), nullptr, circle.sockets[2].get(),
                              circle.sockets[0].get()};
  EXPECT_FALSE(qvTCP::waitReadable(sockets, sockets, 10.0));
  EXPECT_EQ(sockets.size(), 5);
  EXPECT_EQ(sockets.back(), circle.sockets[0].get());
}

TEST(TCPWaitReadable, TellsWhyItCannotWait) {
  WaitReadable set;
  qv::vector<Socket*> sockets, ready;
  EXPECT_EQ(set.wait(qvUtil::Interval()).num(), 1); // and not for ever
  EXPECT_EQ(told(qvTCP::waitReadable(sockets, ready, qvUtil::Interval())), "1 select() failed");
  EXPECT_FALSE(set.wait(0.001));
  EXPECT_FALSE(qvTCP::waitReadable(sockets, ready, 0.001));
  Circle circle(1);
  EXPECT_FALSE(circle.clients[0]->write("x"));
  set.add(*circle.sockets[0]);
  qvTest::PlatformScript script;
  script.failCall(0, EIO, "poll");
  EXPECT_EQ(set.wait(10.0).num(), 1);
  EXPECT_FALSE(set.wait(10.0));
  EXPECT_TRUE(set.isReadable(*circle.sockets[0]));
}

// ---- Load ----------------------------------------------------------------------------------------------

constexpr int clientCount = 200, callers = 20, textsOfEach = qvTest::isSanitized ? 100 : 1000;

std::string textOf(int client, int number) {
  return std::to_string(client) + "/" + std::to_string(number) + std::string(number * 7 % 100, 'x');
}

// Serves all clients in one thread: waits for its callers and for up to 62 of its sockets at a time.
class Host {
public:
  LocalServer server{-1, clientCount};

  Host() { EXPECT_FALSE(server.listen()); }

  void serve() {
    for (std::size_t next = 0; finished_ < clientCount; next = next + 62 < guests_.size() ? next + 62 : 0) {
      const std::size_t end = std::min(next + 62, guests_.size());
      wait_.reset();
      wait_.add(server);
      for (std::size_t i = next; i < end; ++i)
        if (!guests_[i].isFinished()) wait_.add(*guests_[i].socket);
      ASSERT_FALSE(wait_.wait(0.001));
      for (std::size_t i = next; i < end; ++i)
        if (wait_.isReadable(*guests_[i].socket)) read(guests_[i]);
      if (wait_.isReadable(server)) guests_.push_back({acceptFrom(server)});
    }
  }

private:
  struct Guest {
    std::unique_ptr<Socket> socket;
    int client = -1, received = 0;
    bool isFinished() const { return received == textsOfEach; }
  };

  void read(Guest& guest) {
    CString text;
    ASSERT_FALSE(guest.socket->read(text));
    if (guest.client < 0) guest.client = std::stoi(std::string(text.view()));
    ASSERT_EQ(text.view(), textOf(guest.client, guest.received++));
    if (!guest.isFinished()) return;
    EXPECT_FALSE(guest.socket->write(textOf(guest.client, guest.received).c_str()));
    ++finished_;
  }

  std::vector<Guest> guests_;
  WaitReadable wait_;
  int finished_ = 0;
};

// Talks for every twentieth client, with one string of each in turn.
void call(const Host& host, int first) {
  std::map<int, std::unique_ptr<qvTCP::ClientSocket>> clients;
  for (int i = first; i < clientCount; i += callers) {
    clients[i] = connectTo(host.server);
    EXPECT_FALSE(clients[i]->setNoDelay(true));
  }
  for (int number = 0; number < textsOfEach; ++number)
    for (const auto& [i, client] : clients) ASSERT_FALSE(client->write(textOf(i, number).c_str()));
  for (const auto& [i, client] : clients) {
    CString text;
    ASSERT_FALSE(client->read(text));
    EXPECT_EQ(text.view(), textOf(i, textsOfEach));
  }
}

TEST(TCPLoad, ServesTwoHundredClientsInOneThread) {
  Host host;
  std::vector<std::thread> threads;
  for (int i = 0; i < callers; ++i) threads.emplace_back(call, std::cref(host), i);
  host.serve();
  for (std::thread& thread : threads) thread.join();
}

} // namespace
