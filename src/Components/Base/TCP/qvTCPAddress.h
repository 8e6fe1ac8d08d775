// Where a TCP connection leads: a host, by name or by dotted IPv4 number, and a port. A plain value; nothing
// is looked up before it is asked for.
#pragma once

#include "Base/Containers/qvPair.h"
#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/qvBase.h"

#include <cstdint>

struct addrinfo;

namespace qvTCP {

/// A host and a port. The host is held as it was written: a dotted IPv4 number, or anything else as a name.
/// Looked up texts are kept inside, so one address belongs to one thread at a time; copies are independent.
class Address {
public:
  /// The IPv4 loopback, "127.0.0.1".
  QV_BASE_API static const qvString::IString localhost;
  /// The IPv6 loopback, "::1".
  QV_BASE_API static const qvString::IString localhostV6;

  /// Takes `text` as the host; `port` -1 means that none is assigned.
  /// Throws `qvUtil::Error` with code 2 where `text` is empty.
  QV_BASE_API Address(const qvString::IString& text, int port);

  /// Takes "host:port", or a host alone, whose port is then -1. A text with two colons or more is a host
  /// alone, so an IPv6 number cannot carry a port in this form. The port reads as `atoi` reads it: letters
  /// give 0. Throws `qvUtil::Error` with code 2 where `text` or the host in it is empty.
  QV_BASE_API explicit Address(const qvString::IString& text);

  /// Whether the dotted number is known, as given or looked up.
  [[nodiscard]] bool isNumbersAndDotsCached() const noexcept { return numbersAndDotsCached_; }
  /// Whether the name is known, as given or looked up.
  [[nodiscard]] bool isNameCached() const noexcept { return nameCached_; }
  /// Whether the host was given as the exact text "127.0.0.1". The name "localhost" does not count.
  [[nodiscard]] bool isLocalLoopback() const noexcept { return localLoopback_; }
  /// The port; -1 where none is assigned.
  [[nodiscard]] int getPort() const noexcept { return port_; }
  [[nodiscard]] bool hasAssignedPort() const noexcept { return port_ != -1; }

  /// Ports are equal, and so are the dotted numbers where both sides know theirs, else the names.
  QV_BASE_API bool operator==(const Address& other) const;

  /// Looks up the name of a known dotted number, else the number of the name. IPv4 only; may take seconds.
  /// On success both texts are stored; the two questions above are answered as before.
  /// @return no error; code 3 where the host is unknown; code 1 for anything else.
  QV_BASE_API qvUtil::Error resolve() const;

  /// The dotted number, looked up by `resolve` where it is not known, and then kept.
  [[nodiscard]] QV_BASE_API qv::pair<qvString::IString, qvUtil::Error> getNumbersAndDots() const;
  /// The name, looked up by `resolve` where it is not known, and then kept.
  [[nodiscard]] QV_BASE_API qv::pair<qvString::IString, qvUtil::Error> getName() const;

  /// The system's list of stream addresses of either family for this host and port; `passive` asks for
  /// addresses to listen on. No port gives port 0.
  /// @return a list that the caller frees with `freeaddrinfo`, or null.
  [[nodiscard]] QV_BASE_API addrinfo* getAddrInfo(bool passive) const;

  /// The name of this machine, asked for once and then kept. The first call must not race another.
  [[nodiscard]] QV_BASE_API static const qvString::IString& localhostName();

private:
  friend class ClientSocket;
  void parse(const qvString::IString& text, int port);
  addrinfo* findAddresses(bool passive, qvUtil::Error& error) const;

  mutable bool numbersAndDotsCached_ = false;
  mutable bool nameCached_ = false;
  bool localLoopback_ = false;
  mutable qvString::IString numbersAndDots_;
  mutable qvString::IString name_;
  std::int32_t port_ = -1;

  static qvString::IString localhost_name;
};

} // namespace qvTCP
