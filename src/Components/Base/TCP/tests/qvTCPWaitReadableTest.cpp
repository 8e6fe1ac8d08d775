#include "Base/TCP/qvTCPWaitReadable.h"

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringCString.h"
#include "Base/TCP/tests/qvTCPTest.h"
#include "testing/qvTestPlatform.h"
#include "testing/qvTestSanitizer.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <deque>
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
  for (std::size_t i = 0; i < 65; ++i) {
    EXPECT_FALSE(circle.clients[i]->write("x"));
    EXPECT_TRUE(circle.sockets[i]->dataAvailable()); // waits until the text is there
  }
  WaitReadable set;
  for (const std::size_t size : {63u, 64u, 65u}) {
    SCOPED_TRACE(size);
    qv::vector<Socket*> sockets, ready(1, nullptr);
    for (std::size_t i = 0; i < 2 * size; ++i) { // each of them twice
      sockets.push_back(circle.sockets[i / 2].get());
      set.add(*sockets.back());
    }
    const std::size_t most = std::min<std::size_t>(size, 64);
    const auto expectMost = [&] {
      for (std::size_t i = 0; i < 65; ++i) EXPECT_EQ(set.isReadable(*circle.sockets[i]), i < most) << i;
    };
    expectMost(); // only what was added
    EXPECT_FALSE(set.wait(10.0));
    expectMost();
    EXPECT_FALSE(qvTCP::waitReadable(sockets, ready, 10.0));
    ASSERT_EQ(ready.size(), 1 + 2 * static_cast<int>(most));
    EXPECT_TRUE(!ready[0] && std::equal(ready.begin() + 1, ready.end(), sockets.begin()));
    set.reset();
    EXPECT_FALSE(set.isReadable(*circle.sockets[0]));
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

  set.add(circle.server);
  set.add(*circle.clients[0]);
  (void)circle.clients[0]->close(3); // which the other side can read
  EXPECT_EQ(set.wait(0.01).num(), 1);
  qv::vector<Socket*> sockets{circle.clients[0].get(), nullptr, circle.sockets[2].get(),
                              circle.sockets[0].get()};
  EXPECT_FALSE(qvTCP::waitReadable(sockets, sockets, 10.0));
  EXPECT_EQ(sockets.size(), 5);
  EXPECT_EQ(sockets.back(), circle.sockets[0].get());
  for (const unsigned family : available({0, four, six})) {
    const auto caller = family ? connectTo(circle.server, family) : nullptr;
    set.reset();
    set.add(circle.server);
    EXPECT_FALSE(set.wait(family ? 10.0 : 0.01));
    EXPECT_EQ(set.isReadable(circle.server), family != 0);
    if (family) (void)acceptFrom(circle.server);
  }
}

TEST(TCPWaitReadable, TellsWhyItCannotWait) {
  WaitReadable set;
  qv::vector<Socket*> sockets, ready;
  EXPECT_EQ(set.wait(qvUtil::Interval()).num(), 1); // and not for ever
  EXPECT_EQ(told(qvTCP::waitReadable(sockets, ready, qvUtil::Interval())), "1 select() failed");
  EXPECT_FALSE(set.wait(0.001));
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

// Talks for every twentieth client, with one string of each in turn.
void call(const qvTCP::Server& server, int first) {
  std::map<int, std::unique_ptr<qvTCP::ClientSocket>> clients;
  for (int i = first; i < clientCount; i += callers) {
    clients[i] = connectTo(server);
    EXPECT_FALSE(clients[i]->setNoDelay(true));
  }
  for (int number = 0; number < textsOfEach; ++number)
    for (const auto& [i, client] : clients) ASSERT_FALSE(client->write(textOf(i, number).c_str()));
  for (const auto& [i, client] : clients) {
    CString text;
    ASSERT_FALSE(client->read(text));
    EXPECT_EQ(text.view(), "bye " + std::to_string(i));
  }
}

// One thread serves all: it waits for its callers and for up to 62 of its sockets at a time.
TEST(TCPLoad, ServesTwoHundredClientsInOneThread) {
  struct Guest {
    std::unique_ptr<Socket> socket;
    int client = -1, received = 0;
  };
  LocalServer server(-1, clientCount);
  ASSERT_FALSE(server.listen());
  std::vector<std::jthread> threads;
  for (int i = 0; i < callers; ++i) threads.emplace_back([&, i] { call(server, i); });
  std::deque<Guest> guests; // those that have not finished, in the order of their turns
  std::vector<Guest> finished;
  CString text;
  while (finished.size() < clientCount) {
    WaitReadable set;
    set.add(server);
    const std::size_t count = std::min<std::size_t>(guests.size(), 62);
    for (std::size_t i = 0; i < count; ++i) set.add(*guests[i].socket);
    ASSERT_FALSE(set.wait(0.001));
    for (std::size_t i = 0; i < count; ++i) {
      Guest guest = std::move(guests.front());
      guests.pop_front();
      if (set.isReadable(*guest.socket)) {
        ASSERT_FALSE(guest.socket->read(text));
        if (guest.client < 0) guest.client = std::atoi(text.asChar());
        ASSERT_EQ(text.view(), textOf(guest.client, guest.received++));
      }
      if (guest.received < textsOfEach)
        guests.push_back(std::move(guest));
      else
        finished.push_back(std::move(guest));
    }
    if (set.isReadable(server)) guests.push_back({acceptFrom(server)});
  }
  for (const Guest& guest : finished)
    EXPECT_FALSE(guest.socket->write(("bye " + std::to_string(guest.client)).c_str()));
}

} // namespace
