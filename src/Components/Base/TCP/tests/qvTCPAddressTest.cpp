#include "Base/TCP/qvTCPAddress.h"

#include "Base/Platform/qvPlatformSocket.h"
#include "Base/TCP/qvTCPSocketImpl.h"
#include "testing/qvTestEnvironment.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <optional>

namespace {

using qvTCP::Address;
using qvUtil::Error;

std::string host(const Address& address) {
  return (address.isNameCached() ? address.getName() : address.getNumbersAndDots()).first.asUTF8();
}

TEST(TCPAddress, ReadsHostAndPort) {
  const struct {
    int line;
    const char* text;
    const char* host;
    int port;
    bool numbers;
    bool loopback;
  } rows[] = {
      {__LINE__, "127.0.0.1", "127.0.0.1", -1, true, true},
      {__LINE__, "127.0.0.2:1", "127.0.0.2", 1, true, false},
      {__LINE__, "localhost:http", "localhost", 0, false, false},
      {__LINE__, "localhost:", "localhost", 0, false, false},
      {__LINE__, "::1", "::1", -1, false, false},
      {__LINE__, "a:b:1", "a:b:1", -1, false, false},
      {__LINE__, "0x7f.1", "0x7f.1", -1, true, false},
      {__LINE__, " ", " ", -1, false, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const Address address{qvString::IString(row.text)};
    EXPECT_EQ(host(address), row.host);
    EXPECT_EQ(address.getPort(), row.port);
    EXPECT_EQ(address.hasAssignedPort(), row.port != -1);
    EXPECT_EQ(address.isNumbersAndDotsCached(), row.numbers);
    EXPECT_EQ(address.isNameCached(), !row.numbers);
    EXPECT_EQ(address.isLocalLoopback(), row.loopback);
  }
}

TEST(TCPAddress, RefusesAnEmptyHost) {
  const auto thrownBy = [](auto make) {
    try {
      make();
    } catch (const Error& error) {
      return error;
    }
    return Error();
  };
  const Error none(2, "qvTCP::Address: empty address specified");
  EXPECT_EQ(thrownBy([] { Address("", 80); }), none);
  EXPECT_EQ(thrownBy([] { Address(qvString::IString(":80")); }), none);
  EXPECT_EQ(thrownBy([] { Address{qvString::IString()}; }),
            Error(2, "qvTCP::Address: empty address or incorectly formed address"));
}

TEST(TCPAddress, ComparesAndLooksUpHosts) {
  EXPECT_TRUE(Address("127.0.0.1", 80) == Address(qvString::IString("127.0.0.1:80")));
  EXPECT_TRUE(Address("host", 1) == Address("host", 1));
  for (const Address& other : {Address("host", 2), Address("other", 1), Address("127.0.0.1", 1)})
    EXPECT_FALSE(Address("host", 1) == other);
  const Address name("localhost", 1);
  const auto number = name.getNumbersAndDots();
  EXPECT_FALSE(number.second) << number.second.message();
  EXPECT_EQ(number.first, Address::localhost);
  EXPECT_TRUE(name.isNumbersAndDotsCached() && name.isNameCached() && !name.isLocalLoopback());

  const Address loopback("127.0.0.1", 1);
  const auto itsName = loopback.getName(); // which this machine may not know
  EXPECT_EQ(itsName.second.num() == 0, loopback.isNameCached());
  EXPECT_EQ(itsName.first.isEmpty(), !loopback.isNameCached());

  EXPECT_EQ(Address("no such host", 1).resolve().num(), 3);
  EXPECT_EQ(Address("no such host", 1).getAddrInfo(false), nullptr);
  qvTest::PlatformScript script;
  script.failCall(0, EIO, "getaddrinfo", 3);
  const auto failed = Address("localhost", 1).getNumbersAndDots();
  EXPECT_EQ(failed.second.num(), 1);
  EXPECT_TRUE(failed.first.isEmpty());
  EXPECT_EQ(Address("127.0.0.1", 1).getName().second.num(), 1);
  EXPECT_EQ(Address("127.0.0.1", 1).getAddrInfo(true), nullptr);

  addrinfo* list = Address("127.0.0.1", -1).getAddrInfo(true);
  EXPECT_NE(list, nullptr);
  qvPlatform::freeAddressList(list);
  EXPECT_FALSE(Address::localhostName().isEmpty());
}

TEST(TCPFamilies, ObeyTheEnvironment) {
  const unsigned all = qvPlatform::availableFamilies();
  ASSERT_TRUE(all & qvPlatform::familyIPv4);
  const unsigned six = all & qvPlatform::familyIPv6 ? qvPlatform::familyIPv6 : 0;
  const struct {
    int line;
    bool ipv4Only, ipv6Only;
    unsigned expected;
  } rows[] = {{__LINE__, false, false, all},
              {__LINE__, true, false, qvPlatform::familyIPv4},
              {__LINE__, false, true, six ? six : all},
              {__LINE__, true, true, six ? six : qvPlatform::familyIPv4}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    std::optional<qvTest::Environment> fourOnly, sixOnly;
    if (row.ipv4Only) fourOnly.emplace("QV_IPV4_ONLY", "0"); // whatever the value is
    if (row.ipv6Only) sixOnly.emplace("QV_IPV6_ONLY", "0");
    qvTCP::socketsStarted = false;
    qvTCP::startSockets();
    EXPECT_EQ(qvTCP::protocolFamilies, row.expected);
  }
  qvTest::PlatformScript script;
  script.failCall(1, EAFNOSUPPORT, "socket");
  qvTCP::socketsStarted = false;
  EXPECT_TRUE(qvTCP::hasFamily(qvPlatform::familyIPv4));
  EXPECT_FALSE(qvTCP::hasFamily(qvPlatform::familyIPv6));
  qvTCP::socketsStarted = false;
}

} // namespace
