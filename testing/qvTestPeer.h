// The other end of a TCP connection, made of plain system calls. Everything ends within ten seconds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace qvTest {

/// Whether this machine has the IPv6 loopback.
[[nodiscard]] bool hasIPv6();

/// A number that stays as it is unless a socket or a descriptor of one leaks.
[[nodiscard]] int descriptorMark();

/// Whether a started program does not inherit the socket, or the descriptor of one.
[[nodiscard]] bool closesOnExec(std::intptr_t socket);
[[nodiscard]] bool descriptorClosesOnExec(int descriptor);

/// The system's numbers for a network that cannot be reached, a port that is in use, and a peer that gave up
/// before it was accepted.
extern const int unreachableNumber, addressInUseNumber, gaveUpNumber;

/// Whether small writes go out at once.
[[nodiscard]] bool hasNoDelay(std::intptr_t socket);

/// How many seconds a close waits for data that is not yet sent; -1 where it does not.
[[nodiscard]] int lingerOf(std::intptr_t socket);

/// One accepted connection, closed with the object.
class Peer {
public:
  explicit Peer(std::intptr_t socket) : socket_(socket) {}
  ~Peer() { close(); }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void send(const std::string& bytes) const;
  /// Exactly `size` bytes; fewer where the connection ends or nothing comes any more.
  [[nodiscard]] std::string receive(std::size_t size) const;
  /// Whether the other side ended its sending and nothing is left to read.
  [[nodiscard]] bool atEnd() const;
  void close();
  /// Closes so that the other side sees a reset.
  void reset();

protected:
  std::intptr_t socket_;
};

/// Holds a port of the loopback, `port` or one that the system chooses, on which connections are refused.
class RefusingPort : protected Peer {
public:
  explicit RefusingPort(int port = 0, bool ipv6 = false);

  /// 0 where the port could not be had.
  [[nodiscard]] int port() const { return port_; }

private:
  int port_ = 0;
};

/// Listens on a port of the loopback that the system chooses.
class Listener : public RefusingPort {
public:
  explicit Listener(bool ipv6 = false);

  /// The next connection; null where none came.
  [[nodiscard]] std::unique_ptr<Peer> accept() const;
};

} // namespace qvTest
