#include "Base/TCP/qvTCPAddress.h"

#include "Base/TCP/tests/qvTCPTest.h"
#include "testing/qvTestEnvironment.h"
#include "testing/qvTestPlatform.h"

#include <cerrno>
#include <optional>

using namespace qvTCPTest;
using qvString::IString;
using qvTCP::Address;

namespace {

TEST(TCPAddress, ReadsHostAndPort) {
  const struct {
    const char *text, *host;
    int port;
    bool isNumber, isLoopback;
  } rows[] = {
      {"127.0.0.1", "127.0.0.1", -1, true, true},
      {"127.0.0.2:1", "127.0.0.2", 1, true, false},
      {"localhost:http", "localhost", 0, false, false},
      {"localhost:", "localhost", 0, false, false},
      {"::1", "::1", -1, false, false},
      {"a:b:1", "a:b:1", -1, false, false},
      {"0x7f.1", "0x7f.1", -1, true, false},
      {" ", " ", -1, false, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    const Address address{IString(row.text)};
    EXPECT_EQ((row.isNumber ? address.getNumbersAndDots() : address.getName()).first, IString(row.host));
    EXPECT_EQ(address.getPort(), row.port);
    EXPECT_EQ(address.hasAssignedPort(), row.port != -1);
    EXPECT_EQ(address.isNumbersAndDotsCached(), row.isNumber);
    EXPECT_EQ(address.isNameCached(), !row.isNumber);
    EXPECT_EQ(address.isLocalLoopback(), row.isLoopback);
  }
  const std::pair<const char*, const char*> refused[] = {
      {":80", "2 qvTCP::Address: empty address specified"},
      {"", "2 qvTCP::Address: empty address or incorectly formed address"}};
  for (const auto& [text, error] : refused) try {
      ADD_FAILURE() << Address(IString(text)).getPort();
    } catch (const qvUtil::Error& thrown) {
      EXPECT_EQ(told(thrown), error);
    }
}

TEST(TCPAddress, ComparesAndLooksUpHosts) {
  EXPECT_TRUE(Address("127.0.0.1", 80) == Address(IString("127.0.0.1:80")));
  EXPECT_TRUE(Address("host", 1) == Address("host", 1));
  for (const Address& other : {Address("host", 2), Address("other", 1), Address("127.0.0.1", 1)})
    EXPECT_FALSE(Address("host", 1) == other);
  const Address name("localhost", 1), number("127.0.0.1", 1), unknown("no such host", 1);
  EXPECT_EQ(name.getNumbersAndDots().first, Address::localhost);
  EXPECT_TRUE(name.isNumbersAndDotsCached() && name.isNameCached() && !name.isLocalLoopback());
  const auto itsName = number.getName(); // which this machine may not know
  EXPECT_EQ(itsName.second.num() == 0, number.isNameCached());
  EXPECT_EQ(itsName.first.isEmpty(), !number.isNameCached());
  EXPECT_EQ(unknown.resolve().num(), 3);
  EXPECT_EQ(unknown.getAddrInfo(false), nullptr);
  addrinfo* const list = Address("127.0.0.1", -1).getAddrInfo(true);
  EXPECT_NE(list, nullptr);
  qvPlatform::freeAddressList(list);
  EXPECT_FALSE(Address::localhostName().isEmpty());

  qvTest::PlatformScript script;
  script.failCall(0, EIO, "getaddrinfo", 2);
  const auto failed = Address("localhost", 1).getNumbersAndDots();
  EXPECT_TRUE(failed.first.isEmpty() && failed.second.num() == 1);
  EXPECT_EQ(Address("127.0.0.1", 1).getAddrInfo(true), nullptr);
}

TEST(TCPFamilies, ObeyTheEnvironment) {
  const unsigned all = qvPlatform::availableFamilies(), sixOrNone = all & six;
  ASSERT_TRUE(all & four);
  const struct {
    bool fourOnly, sixOnly;
    unsigned expected;
  } rows[] = {{false, false, all},
              {true, false, four},
              {false, true, sixOrNone ? six : all},
              {true, true, sixOrNone ? six : four}};
  for (const auto& row : rows) {
    std::optional<qvTest::Environment> fourOnly, sixOnly;
    if (row.fourOnly) fourOnly.emplace("QV_IPV4_ONLY", "0"); // whatever the value is
    if (row.sixOnly) sixOnly.emplace("QV_IPV6_ONLY", "0");
    qvTCP::socketsStarted = false;
    qvTCP::startSockets();
    EXPECT_EQ(qvTCP::protocolFamilies, row.expected) << row.fourOnly << row.sixOnly;
  }
  qvTest::PlatformScript script;
  script.failCall(1, EAFNOSUPPORT, "socket");
  qvTCP::socketsStarted = false;
  EXPECT_TRUE(qvTCP::hasFamily(four) && !qvTCP::hasFamily(six));
  qvTCP::socketsStarted = false;
}

} // namespace
