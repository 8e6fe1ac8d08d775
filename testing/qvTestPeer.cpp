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

RefusingPort::RefusingPort(int port, bool ipv6)
    : Peer(::socket(ipv6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in6 six{};
  sockaddr_in four{};
  six.sin6_family = AF_INET6;
  six.sin6_addr = in6addr_loopback;
  four.sin_family = AF_INET;
  four.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  six.sin6_port = four.sin_port = htons(static_cast<std::uint16_t>(port));
  auto* const address = ipv6 ? reinterpret_cast<sockaddr*>(&six) : reinterpret_cast<sockaddr*>(&four);
  socklen_t size = ipv6 ? sizeof six : sizeof four;
  const int on = 1;
  if (ipv6) ::setsockopt(descriptor_, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
  if (::bind(descriptor_, address, size) || ::getsockname(descriptor_, address, &size)) return;
  port_ = ntohs(ipv6 ? six.sin6_port : four.sin_port);
}

Listener::Listener(bool ipv6) : RefusingPort(0, ipv6) { (void)::listen(descriptor_, 64); }

std::unique_ptr<Peer> Listener::accept() const {
  if (!waitReadable(descriptor_)) return nullptr;
  const int descriptor = ::accept4(descriptor_, nullptr, nullptr, SOCK_CLOEXEC);
  return descriptor < 0 ? nullptr : std::make_unique<Peer>(descriptor);
}

} // namespace qvTest
