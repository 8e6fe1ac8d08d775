// Connecting: each candidate address, each entry that the system knows for it, until one answers.
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformSocket.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/qvTCPSocket.h"
#include "Base/TCP/qvTCPSocketImpl.h"

#include <cstdio>
#include <memory>
#include <vector>

namespace qvTCP {

using qvPlatform::SocketHandle;
using qvUtil::Error;

namespace {

using AddressList = std::unique_ptr<addrinfo, void (*)(addrinfo*)>;

// The address itself counts as IPv4. So with that family off only the loopback has a candidate.
std::vector<Address> candidatesFor(const Address& address) {
  std::vector<Address> candidates;
  if (hasFamily(qvPlatform::familyIPv4)) candidates.push_back(address);
  if (address.isLocalLoopback() && hasFamily(qvPlatform::familyIPv6))
    candidates.emplace_back(Address::localhostV6, address.getPort());
  return candidates;
}

// One attempt to connect, with what is told of all attempts so far.
class Attempt {
public:
  SocketHandle connected = qvPlatform::noSocket;
  Error error;
  int lastNumber = 0;

  void tryEntries(const addrinfo* entry) {
    for (; entry && connected == qvPlatform::noSocket; entry = qvPlatform::nextAddress(entry))
      tryEntry(entry);
  }

private:
  void tryEntry(const addrinfo* entry) {
    SocketHandle socket = qvPlatform::noSocket;
    if ((lastNumber = qvPlatform::openSocket(entry, &socket))) return;
    if (prepareAndConnect(socket, entry))
      connected = socket;
    else
      qvPlatform::closeSocket(socket);
  }

  bool prepareAndConnect(SocketHandle socket, const addrinfo* entry) {
    if ((lastNumber = qvPlatform::setLinger(socket, lingerSeconds))) {
      error = systemError(2, lastNumber, "Could not set LINGER socket option: %s");
      return false;
    }
    if ((lastNumber = qvPlatform::connectSocket(socket, entry))) {
      error = systemError(qvPlatform::isUnreachable(lastNumber) ? 4 : 2, lastNumber, "connect() failed: %s");
      std::printf("Connection failed: %s\n", error.message());
      return false;
    }
    return true;
  }
};

} // namespace

ClientSocket::ClientSocket(const Address& address) {
  getImpl()->remoteAddress = std::make_unique<Address>(address);
}

Error ClientSocket::connect() {
  SocketImpl& impl = *getImpl();
  (void)close(3);
  const std::vector<Address> candidates = candidatesFor(*impl.remoteAddress);
  if (candidates.empty()) return Error(2, "connect() failed: No useable protocol families found.");
  Attempt attempt;
  for (const Address& candidate : candidates) {
    Error unknown;
    const AddressList list(candidate.findAddresses(false, unknown), qvPlatform::freeAddressList);
    if (!list && &candidate == &candidates.back()) return unknown;
    attempt.tryEntries(list.get());
    if (attempt.connected == qvPlatform::noSocket) continue;
    impl.handle = attempt.connected;
    impl.closedSides = 0;
    impl.localAddress.reset();
    return attempt.error;
  }
  if (!attempt.error)
    attempt.error = Error(2, "connect() failed: %s", qvPlatform::systemErrorText(attempt.lastNumber).c_str());
  return attempt.error;
}

} // namespace qvTCP
