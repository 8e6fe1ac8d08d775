// What only a POSIX system can show: permission bits, standard streams that a child gives away, and readers
// that only a signal stops.
#include "Base/IO/ioBufferFD.h"
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/tests/ioLinkTest.h"
#include "Base/String/qvStringIString.h"
#include "testing/qvTestChild.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPacketFile.h"
#include "testing/qvTestPipe.h"

#include <gtest/gtest.h>

#include <filesystem>

using ioLinkTest::readAll;

namespace {

TEST(ioBufferFD, MakesFilesForTheirOwner) {
  const qvTest::Directory directory;
  ioBufferFD link(false);
  link.openDescriptor(qvString::IString(directory.path("f").c_str(), qvString::UTF8Encoding));
  link.closeLink();
  EXPECT_EQ(std::filesystem::status(directory.path("f")).permissions(), std::filesystem::perms(0600));
}

TEST(ioBufferedStream, TakesTheStandardStreams) {
  const qvTest::Directory directory;
  const std::string source = directory.write("in", "from the standard input"),
                    target = directory.write("out", "");
  EXPECT_EQ(qvTest::inChild([&] {
              ASSERT_NE(std::freopen(source.c_str(), "r", stdin), nullptr);
              ASSERT_NE(std::freopen(target.c_str(), "w", stdout), nullptr);
              ioBufferedStreamInput input;
              input.openStdin();
              ioBufferedStreamOutput output;
              output.openStdout();
              output.writeString(readAll(input).c_str());
              output.close();
              input.close();
              EXPECT_FALSE(qvTest::isOpen(0) || qvTest::isOpen(1)); // closing closes them, too
            }),
            0);
  EXPECT_EQ(directory.read("out"), "from the standard input");
}

TEST(ioContextAscii, WaitsForEverForAPacketAndForTheEndOfASubPacketWithAnOpenChunk) {
  const auto expectWaiting = [](const std::string& file) {
    const auto client = [](ioReadContext& c) { c.startSubPacket(), c.endSubPacket(); };
    EXPECT_EQ(qvTest::inChild([&] {
                ualarm(200'000, 0);
                qvTest::readPackets(file, {{"t", client}});
              }),
              -SIGALRM)
        << file;
  };
  std::string file = qvTest::writePackets(ioWriteAscii, {"t"}, [](ioWriteContext& c) {
    c.startPacket("t", nullptr);
    c.startSubPacket(), c.startChunk(), c.endSubPacket();
    c.endPacket();
  });
  expectWaiting(file.substr(0, file.find('{')));
  expectWaiting(file.substr(0, file.rfind('{')));
  expectWaiting(file.erase(file.find(']'), 1));
}

} // namespace
