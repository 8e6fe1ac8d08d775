// Echoes of framed texts between two threads, and a stream of a gigabyte from one to the other, over the
// loopback: beside the same pieces sent and received with plain calls of the system, and beside Asio's
// blocking calls.
#include "Base/String/qvStringCString.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/qvTCPServer.h"
#include "Base/TCP/qvTCPSocket.h"
#include "bench/qvBench.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#ifdef BENCH_Asio
#include <asio.hpp>
#endif

namespace {

// Ends the program where a connection fails: nothing could be measured.
void demand(bool works) {
  if (!works) std::abort();
}

// ---- The library ----

class BaseEnd {
public:
  using Text = qvString::CString;
  using Pair = std::pair<BaseEnd, BaseEnd>;

  explicit BaseEnd(qvTCP::Socket* socket) : socket_(socket) { demand(!socket_->setNoDelay(true)); }

  static Pair connect() {
    qvTCP::Server server;
    server.setLoopbackOnly(true);
    demand(!server.listen());
    auto client =
        std::make_unique<qvTCP::ClientSocket>(qvTCP::Address(qvTCP::Address::localhost, server.getPort()));
    demand(!client->connect());
    return {BaseEnd(client.release()), BaseEnd(server.accept(qvUtil::Interval()).first)};
  }

  void send(const void* data, std::size_t size) { demand(!socket_->write(data, size, nullptr)); }
  void receive(void* data, std::size_t size) { demand(!socket_->read(data, size, nullptr)); }
  void sendText(const Text& text) { demand(!socket_->write(text)); }
  void receiveText(Text& text) { demand(!socket_->read(text)); }

private:
  std::unique_ptr<qvTCP::Socket> socket_;
};

// ---- The peers ----

// Two descriptors of one connection.
std::pair<int, int> connectDescriptors() {
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const address = reinterpret_cast<sockaddr*>(&place);
  socklen_t size = sizeof place;
  const int listener = ::socket(AF_INET, SOCK_STREAM, 0), client = ::socket(AF_INET, SOCK_STREAM, 0);
  demand(::bind(listener, address, size) == 0 && ::listen(listener, 1) == 0);
  demand(::getsockname(listener, address, &size) == 0 && ::connect(client, address, size) == 0);
  const int accepted = ::accept(listener, nullptr, nullptr);
  ::close(listener);
  for (const int descriptor : {client, accepted}) {
    const int on = 1;
    demand(::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) == 0);
  }
  return {client, accepted};
}

// The frames of the library, over the `send` and `receive` of `End`.
template <class End>
class FramedEnd {
public:
  using Text = std::string;

  void sendText(const Text& text) {
    const std::uint16_t head = htons(static_cast<std::uint16_t>(text.size()));
    end().send(&head, sizeof head);
    end().send(text.data(), text.size());
  }
  void receiveText(Text& text) {
    std::uint16_t head = 0;
    end().receive(&head, sizeof head);
    text.resize(ntohs(head));
    end().receive(text.data(), text.size());
  }

private:
  End& end() { return static_cast<End&>(*this); }
};

class SystemEnd : public FramedEnd<SystemEnd> {
public:
  using Pair = std::pair<SystemEnd, SystemEnd>;

  explicit SystemEnd(int descriptor) : descriptor_(descriptor) {}
  SystemEnd(SystemEnd&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  ~SystemEnd() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  static Pair connect() {
    const auto [client, accepted] = connectDescriptors();
    return {SystemEnd(client), SystemEnd(accepted)};
  }

  void send(const void* data, std::size_t size) {
    for (std::size_t done = 0; done < size;)
      done += moved(::send(descriptor_, static_cast<const char*>(data) + done, size - done, MSG_NOSIGNAL));
  }
  void receive(void* data, std::size_t size) {
    for (std::size_t done = 0; done < size;)
      done += moved(::recv(descriptor_, static_cast<char*>(data) + done, size - done, 0));
  }

private:
  static std::size_t moved(ssize_t count) {
    demand(count > 0);
    return static_cast<std::size_t>(count);
  }

  int descriptor_;
};

#ifdef BENCH_Asio
class AsioEnd : public FramedEnd<AsioEnd> {
public:
  using Pair = std::pair<AsioEnd, AsioEnd>;

  explicit AsioEnd(int descriptor) : socket_(context(), asio::ip::tcp::v4(), descriptor) {}
  static Pair connect() {
    const auto [client, accepted] = connectDescriptors();
    return {AsioEnd(client), AsioEnd(accepted)};
  }

  void send(const void* data, std::size_t size) { asio::write(socket_, asio::buffer(data, size)); }
  void receive(void* data, std::size_t size) { asio::read(socket_, asio::buffer(data, size)); }

private:
  static asio::io_context& context() {
    static asio::io_context instance;
    return instance;
  }

  asio::ip::tcp::socket socket_;
};
#endif

// ---- The work ----

template <class End, std::size_t size, int rounds>
void echo(benchmark::State& state) {
  const typename End::Text question(std::string(size, 'q').c_str());
  std::uint64_t result = 0;
  auto [near, far] = End::connect();
  for (auto _ : state) {
    result = 0;
    std::thread answering([&, &end = far] {
      typename End::Text text;
      for (int i = 0; i < rounds; ++i) end.receiveText(text), end.sendText(text);
    });
    typename End::Text answer;
    for (int i = 0; i < rounds; ++i) {
      near.sendText(question);
      near.receiveText(answer);
      result = qvBench::mixed(result, answer == question ? size : 0);
    }
    answering.join();
  }
  qvBench::setResult(state, result);
}

// A gigabyte in pieces of 64 KB, each with its number in front.
template <class End>
void stream(benchmark::State& state) {
  constexpr std::size_t pieceSize = 65536;
  constexpr std::uint64_t pieces = (std::uint64_t{1} << 30) / pieceSize;
  std::uint64_t result = 0;
  auto [near, far] = End::connect();
  for (auto _ : state) {
    result = 0;
    std::thread receiving([&, &end = far] {
      std::string piece(pieceSize, '\0');
      for (std::uint64_t i = 0, number = 0; i < pieces; ++i) {
        end.receive(piece.data(), pieceSize);
        std::memcpy(&number, piece.data(), sizeof number);
        result = qvBench::mixed(result, number);
      }
    });
    std::string piece(pieceSize, 's');
    for (std::uint64_t i = 0; i < pieces; ++i) {
      std::memcpy(piece.data(), &i, sizeof i);
      near.send(piece.data(), pieceSize);
    }
    receiving.join();
  }
  qvBench::setResult(state, result);
}

// The two threads mostly wait for each other, so the clock tells more than the processor's time.
void measure(const char* what, const std::string& who, void (*work)(benchmark::State&)) {
  const std::string name = std::string(what) + '/' + who;
  benchmark::RegisterBenchmark(name.c_str(), work)->UseRealTime()->Unit(benchmark::kMillisecond);
}

template <class End>
void measureAll(const char* who) {
  measure("echo of 64 bytes", who, echo<End, 64, 2000>);
  measure("echo of 64 KB", who, echo<End, 65535, 500>);
  measure("stream of 1 GB", who, stream<End>);
}

[[maybe_unused]] const bool registered = [] {
  measureAll<BaseEnd>("Base");
  measureAll<SystemEnd>("system calls");
#ifdef BENCH_Asio
  measureAll<AsioEnd>("Asio");
#endif
  return true;
}();

} // namespace
