// The other end of a TCP connection, made of plain system calls. Everything ends within ten seconds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace qvTest {

/// Whether this machine has the IPv6 loopback.
[[nodiscard]] bool hasIPv6();

/// The least number that the next descriptor of this process gets: unchanged where nothing leaked.
[[nodiscard]] int nextDescriptor();

/// Whether a started program does not inherit the descriptor.
[[nodiscard]] bool closesOnExec(std::intptr_t descriptor);

/// Whether small writes go out at once.
[[nodiscard]] bool hasNoDelay(std::intptr_t socket);

/// How many seconds a close waits for data that is not yet sent; -1 where it does not.
[[nodiscard]] int lingerOf(std::intptr_t socket);

/// One accepted connection, closed with the object.
class Peer {
public:
  explicit Peer(int descriptor) : descriptor_(descriptor) {}
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

private:
  int descriptor_;
};

/// Listens on a port of the loopback that the system chooses.
class Listener {
public:
  explicit Listener(bool ipv6 = false);
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  /// 0 where it could not listen.
  [[nodiscard]] int port() const { return port_; }
  /// The next connection; null where none came.
  [[nodiscard]] std::unique_ptr<Peer> accept() const;

private:
  int descriptor_;
  int port_;
};

/// Holds a port of the IPv4 loopback, `port` or one that the system chooses, on which connections are
/// refused.
class RefusingPort {
public:
  explicit RefusingPort(int port = 0);
  ~RefusingPort();
  RefusingPort(const RefusingPort&) = delete;
  RefusingPort& operator=(const RefusingPort&) = delete;

  /// 0 where the port is another's.
  [[nodiscard]] int port() const { return port_; }

private:
  int descriptor_;
  int port_;
};

} // namespace qvTest
