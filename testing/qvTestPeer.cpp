#include "testing/qvTestPeer.h"

#include "qvTestSystem.h"

namespace qvTest {

using namespace system;

namespace {

template <class T>
T optionOf(std::intptr_t socket, int level, int option) {
  T value{};
  socklen_t size = sizeof value;
  (void)::getsockopt(handleOf(socket), level, option, reinterpret_cast<char*>(&value), &size);
  return value;
}

template <class T>
void setOption(std::intptr_t socket, int level, int option, const T& value) {
  (void)::setsockopt(handleOf(socket), level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

} // namespace

const int unreachableNumber = system::unreachableNumber;
const int addressInUseNumber = system::addressInUseNumber;
const int gaveUpNumber = system::gaveUpNumber;

bool hasIPv6() { return Listener(true).port() != 0; }

bool closesOnExec(std::intptr_t socket) { return !isInherited(socket); }
bool descriptorClosesOnExec(int descriptor) { return !isDescriptorInherited(descriptor); }

bool hasNoDelay(std::intptr_t socket) { return optionOf<int>(socket, IPPROTO_TCP, TCP_NODELAY) != 0; }

int lingerOf(std::intptr_t socket) {
  const auto value = optionOf<linger>(socket, SOL_SOCKET, SO_LINGER);
  return value.l_onoff ? value.l_linger : -1;
}

int descriptorMark() { return system::descriptorMark(); }

void Peer::send(const std::string& bytes) const {
  for (std::size_t done = 0; done < bytes.size();) {
    const auto sent = ::send(handleOf(socket_), bytes.data() + done, bytes.size() - done, noSignal);
    if (sent <= 0) return;
    done += static_cast<std::size_t>(sent);
  }
}

std::string Peer::receive(std::size_t size) const {
  std::string bytes(size, '\0');
  std::size_t done = 0;
  while (done < size && waitReadable(socket_)) {
    const auto received = ::recv(handleOf(socket_), bytes.data() + done, size - done, 0);
    if (received <= 0) break;
    done += static_cast<std::size_t>(received);
  }
  bytes.resize(done);
  return bytes;
}

bool Peer::atEnd() const {
  char byte;
  return waitReadable(socket_) && ::recv(handleOf(socket_), &byte, 1, MSG_PEEK) == 0;
}

void Peer::close() {
  if (socket_ >= 0) closeSocket(socket_);
  socket_ = -1;
}

void Peer::reset() {
  setOption(socket_, SOL_SOCKET, SO_LINGER, linger{1, 0});
  close();
}

RefusingPort::RefusingPort(int port, bool ipv6) : Peer(openSocket(ipv6 ? AF_INET6 : AF_INET)) {
  sockaddr_in6 six{};
  sockaddr_in four{};
  six.sin6_family = AF_INET6;
  six.sin6_addr = in6addr_loopback;
  four.sin_family = AF_INET;
  four.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  six.sin6_port = four.sin_port = htons(static_cast<std::uint16_t>(port));
  auto* const address = ipv6 ? reinterpret_cast<sockaddr*>(&six) : reinterpret_cast<sockaddr*>(&four);
  socklen_t size = ipv6 ? sizeof six : sizeof four;
  if (ipv6) setOption(socket_, IPPROTO_IPV6, IPV6_V6ONLY, 1);
  const auto handle = handleOf(socket_);
  if (::bind(handle, address, size) || ::getsockname(handle, address, &size)) return;
  port_ = ntohs(ipv6 ? six.sin6_port : four.sin_port);
}

Listener::Listener(bool ipv6) : RefusingPort(0, ipv6) { (void)::listen(handleOf(socket_), 64); }

std::unique_ptr<Peer> Listener::accept() const {
  if (!waitReadable(socket_)) return nullptr;
  const std::intptr_t accepted = acceptSocket(socket_);
  return accepted < 0 ? nullptr : std::make_unique<Peer>(accepted);
}

} // namespace qvTest
