// What a process with other limits of descriptors shows.
#include "Base/TCP/qvTCPWaitReadable.h"
#include "Base/TCP/tests/qvTCPTest.h"
#include "testing/qvTestChild.h"
#include "testing/qvTestProcessor.h"

#include <fcntl.h>
#include <sys/resource.h>

using namespace qvTCPTest;

namespace {

rlim_t allowDescriptors(rlim_t count) {
  rlimit limit{};
  EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlim_t before = limit.rlim_cur;
  limit.rlim_cur = count;
  return setrlimit(RLIMIT_NOFILE, &limit) == 0 ? before : 0;
}

TEST(TCPPosix, TellsWhenDescriptorsRunOut) {
  EXPECT_EQ(qvTest::inChild([] {
              LocalServer server;
              ASSERT_FALSE(server.listen());
              const auto client = connectTo(server);
              const rlim_t before = allowDescriptors(qvTest::descriptorMark());
              const double start = qvTest::processorSeconds();
              for (int i = 0; i < 10; ++i) {
                const auto accepted = server.accept(1.0);
                EXPECT_TRUE(!accepted.first && accepted.second.num() == 1);
              }
              EXPECT_LT(qvTest::processorSeconds() - start, 0.1);
              ASSERT_NE(allowDescriptors(before), 0u);
              EXPECT_TRUE(acceptFrom(server)); // the connection was not lost
            }),
            0);
}

TEST(TCPPosix, WaitsOnDescriptorsAboveAThousand) {
  EXPECT_EQ(qvTest::inChild([] {
              if (!allowDescriptors(1200)) return; // more than this machine allows
              ASSERT_EQ(fcntl(0, F_DUPFD, 1199), 1199);
              while (dup(0) < 1100) {
              }
              LocalServer server;
              ASSERT_FALSE(server.listen());
              const auto client = connectTo(server);
              const auto accepted = acceptFrom(server);
              ASSERT_GT(accepted->getImpl()->handle, 1023);
              EXPECT_FALSE(client->write("x"));
              qvTCP::WaitReadable set;
              set.add(*accepted);
              EXPECT_FALSE(set.wait(10.0));
              EXPECT_TRUE(set.isReadable(*accepted));
            }),
            0);
}

} // namespace
