#include "testing/qvTestPeer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

namespace qvTest {
namespace {

bool waitReadable(int descriptor) {
  pollfd entry{descriptor, POLLIN, 0};
  return ::poll(&entry, 1, 10'000) > 0;
}

// Stores the loopback's address in `storage`; returns its size.
socklen_t loopback(bool ipv6, int port, sockaddr_storage& storage) {
  storage = {};
  if (ipv6) {
    auto& address = reinterpret_cast<sockaddr_in6&>(storage);
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    address.sin6_port = htons(static_cast<std::uint16_t>(port));
    return sizeof address;
  }
  auto& address = reinterpret_cast<sockaddr_in&>(storage);
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  return sizeof address;
}

int portOf(int descriptor) {
  sockaddr_in6 address{}; // both families have the port in the same place
  socklen_t size = sizeof address;
  return ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) ? 0
                                                                                 : ntohs(address.sin6_port);
}

// A socket on that port; it has none where the port could not be had.
int bindLoopback(bool ipv6, int port) {
  const int descriptor = ::socket(ipv6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_storage address;
  const socklen_t size = loopback(ipv6, port, address);
  const int on = 1;
  if (ipv6) ::setsockopt(descriptor, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
  (void)::bind(descriptor, reinterpret_cast<sockaddr*>(&address), size);
  return descriptor;
}

template <class T>
T optionOf(std::intptr_t socket, int level, int option) {
  T value{};
  socklen_t size = sizeof value;
  (void)::getsockopt(static_cast<int>(socket), level, option, &value, &size);
  return value;
}

} // namespace

bool hasIPv6() { return Listener(true).port() != 0; }

bool closesOnExec(std::intptr_t descriptor) {
  return ::fcntl(static_cast<int>(descriptor), F_GETFD) == FD_CLOEXEC;
}

bool hasNoDelay(std::intptr_t socket) { return optionOf<int>(socket, IPPROTO_TCP, TCP_NODELAY) != 0; }

int lingerOf(std::intptr_t socket) {
  const auto value = optionOf<linger>(socket, SOL_SOCKET, SO_LINGER);
  return value.l_onoff ? value.l_linger : -1;
}

int nextDescriptor() {
  const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ::close(descriptor);
  return descriptor;
}

void Peer::send(const std::string& bytes) const {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t sent = ::send(descriptor_, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
    if (sent <= 0) return;
    done += static_cast<std::size_t>(sent);
  }
}

std::string Peer::receive(std::size_t size) const {
  std::string bytes(size, '\0');
  std::size_t done = 0;
  while (done < size && waitReadable(descriptor_)) {
    const ssize_t received = ::recv(descriptor_, bytes.data() + done, size - done, 0);
    if (received <= 0) break;
    done += static_cast<std::size_t>(received);
  }
  bytes.resize(done);
  return bytes;
}

bool Peer::atEnd() const {
  char byte;
  return waitReadable(descriptor_) && ::recv(descriptor_, &byte, 1, MSG_PEEK) == 0;
}

void Peer::close() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

void Peer::reset() {
  const linger atOnce{1, 0};
  ::setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  close();
}

Listener::Listener(bool ipv6) : descriptor_(bindLoopback(ipv6, 0)), port_(portOf(descriptor_)) {
  if (::listen(descriptor_, 64)) port_ = 0;
}

Listener::~Listener() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

RefusingPort::RefusingPort(int port) : descriptor_(bindLoopback(false, port)), port_(portOf(descriptor_)) {}

RefusingPort::~RefusingPort() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

std::unique_ptr<Peer> Listener::accept() const {
  if (!waitReadable(descriptor_)) return nullptr;
  const int descriptor = ::accept4(descriptor_, nullptr, nullptr, SOCK_CLOEXEC);
  return descriptor < 0 ? nullptr : std::make_unique<Peer>(descriptor);
}

} // namespace qvTest
