#include "Base/IO/ioBufferChecksum.h"
#include "Base/IO/ioBufferCompress.h"
#include "Base/IO/ioBufferEncrypt.h"
#include "Base/IO/ioBufferFileSubset.h"
#include "Base/IO/ioBufferTCP.h"
#include "Base/IO/tests/ioLinkTest.h"
#include "Base/String/qvStringIString.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPipe.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <thread>

using ioLinkTest::readAll;

namespace {

/// A link whose raw reads and writes are scripted.
class Scripted : public ioBuffer {
public:
  explicit Scripted(bool forReading) : ioBuffer(forReading, 4) {}
  ~Scripted() override { ++destroyed; }

  void finish() override { calls += "finish "; }
  [[nodiscard]] int kind() const override { return 99; }
  void closeLink() override {}
  int readRaw(void* destination, int count) override {
    const int piece = std::min(count, static_cast<int>(input.size()));
    if (piece == 0) setStatus(ioBufferAtEnd);
    std::copy_n(input.data(), piece, static_cast<char*>(destination));
    input.erase(0, static_cast<std::size_t>(piece));
    return piece;
  }
  void writeRaw(const void* source, int count) override {
    output.append(static_cast<const char*>(source), static_cast<std::size_t>(count)) += '|';
  }

  std::string input, output, calls;
  static inline int destroyed = 0;
};

qvString::IString wide(const std::string& path) { return {path.c_str(), qvString::UTF8Encoding}; }

TEST(ioBuffer, ReadsInPiecesUntilTheEnd) {
  Scripted link(true);
  link.input = "0123456789";
  char out[20] = {};
  for (const int none : {0, -1}) EXPECT_EQ(link.readBytes(out, none), 0);
  EXPECT_EQ(link.readBytes(out, 6), 6);
  EXPECT_EQ(link.heldBytes(), 2);
  EXPECT_EQ(link.totalBytes(), 8);
  link.flushBuffer(); // a reading link drops what it holds
  EXPECT_EQ(link.readBytes(out + 6, 9), 2);
  EXPECT_STREQ(out, "01234589");
  EXPECT_EQ(link.getStatus(), ioBufferAtEnd);
  EXPECT_EQ(link.readBytes(out, 1), 0);
}

TEST(ioBuffer, WritesFullBuffersAndFlushesTheRest) {
  Scripted link(false);
  static int told;
  link.setProgressFunction([](int total) { told = total; });
  for (const int none : {0, -1}) link.writeBytes("x", none);
  link.writeBytes("0123", 4);
  EXPECT_EQ(link.output, "");
  link.writeBytes("45678", 5);
  EXPECT_EQ(link.output, "0123|4567|");
  EXPECT_EQ(told, 8);
  link.flushBuffer();
  link.flushBuffer();
  EXPECT_EQ(link.output, "0123|4567|8|");
  EXPECT_EQ(told, 9);
  link.setStatus(ioBufferDiskFull);
  link.writeBytes("9", 1);
  link.flushBuffer();
  EXPECT_EQ(link.output, "0123|4567|8|");
}

TEST(ioBuffer, OwnsWhatLiesBelow) {
  Scripted::destroyed = 0;
  {
    auto* const bottom = new Scripted(false);
    Scripted top(false);
    top.setNext(bottom);
    EXPECT_EQ(top.detachNext(), bottom);
    EXPECT_EQ(top.calls, "finish ");
    EXPECT_EQ(top.nextLink(), nullptr);
    top.setNext(bottom);
    bottom->retain();
    ioBuffer::release(bottom);
  }
  EXPECT_EQ(Scripted::destroyed, 2);
}

TEST(ioBuffer, InheritsStatuses) {
  for (int below = ioBufferOK; below <= ioBufferFailed; ++below)
    for (const bool includeEnd : {false, true}) {
      auto* const bottom = new Scripted(true);
      Scripted top(true);
      top.setStatus(ioBufferOpenFailed);
      top.inheritStatus(includeEnd);
      top.setNext(bottom);
      bottom->setStatus(static_cast<ioBufferStatus>(below));
      top.inheritStatus(includeEnd);
      const bool isEnd = below == ioBufferAtEnd || below == ioBufferCompressedEnd;
      const bool rises = below != ioBufferOK && (includeEnd || !isEnd);
      EXPECT_EQ(top.getStatus(), rises ? below : ioBufferOpenFailed) << below;
    }
}

TEST(ioBuffer, TellsItsKindAndFailsWithoutATransport) {
  for (const bool forReading : {false, true}) {
    const std::unique_ptr<ioBuffer> links[] = {
        std::make_unique<ioBufferFD>(forReading),       std::make_unique<ioBufferCompress>(forReading),
        std::make_unique<ioBufferChecksum>(forReading), std::make_unique<ioBufferTCP>(forReading),
        std::make_unique<ioBufferEncrypt>(forReading),  std::make_unique<ioBufferIOStream>(forReading),
        std::make_unique<ioBufferFileSubset>()};
    for (int kind = 0; kind < 7; ++kind) {
      ioBuffer& link = *links[kind];
      EXPECT_EQ(link.kind(), kind);
      char c = 'x';
      if (forReading)
        EXPECT_LE(link.readRaw(&c, 1), 0) << kind;
      else
        link.writeRaw(&c, 1);
      const ioBufferStatus ofASlice = forReading ? ioBufferAtEnd : ioBufferOK; // of a slice of nothing
      EXPECT_EQ(link.getStatus(), kind == 6                 ? ofASlice
                                  : forReading && kind == 2 ? ioBufferBadChecksum
                                                            : ioBufferFailed)
          << kind;
    }
  }
}

// ---- Files ---------------------------------------------------------------------------------------------

TEST(ioBufferFD, OpensReadsAndWritesFiles) {
  const qvTest::Directory directory;
  const std::string path = directory.path("f");
  {
    ioBufferFD link(false);
    link.openDescriptor(wide(path));
    link.writeBytes("0123456789", 10);
    link.flushChain();
    EXPECT_EQ(link.tellLink(), 10);
    EXPECT_TRUE(link.seekLink(2));
    link.writeBytes("ab", 2);
    link.flushChain();
    EXPECT_TRUE(link.seekLink(-5)); // the end
    EXPECT_EQ(link.tellLink(), 10);
    link.closeLink();
    link.closeLink();
    EXPECT_TRUE(link.good());
  }
  EXPECT_EQ(directory.read("f"), "01ab456789");
}

TEST(ioBufferFD, TakesOverADescriptorAndWaitsForThoseThatDoNot) {
  ioBufferFD negative(true);
  negative.attachDescriptor(-1);
  EXPECT_EQ(negative.getStatus(), ioBufferOpenFailed);
  const auto [reading, writing] = qvTest::openPipe();
  const std::string data(300000, 'p');
  std::thread writer([&data, end = writing] {
    ioBufferFD link(false);
    link.attachDescriptor(end);
    link.writeBytes(data.data(), static_cast<int>(data.size()));
    link.flushChain();
    link.closeLink();
    EXPECT_TRUE(link.good());
  });
  ioBufferFD link(true);
  link.attachDescriptor(reading);
  EXPECT_TRUE(readAll(link, 1000) == data);
  EXPECT_EQ(link.getStatus(), ioBufferAtEnd);
  EXPECT_EQ(link.readRaw(nullptr, 1), -1);
  link.closeLink();
  writer.join();
  EXPECT_FALSE(qvTest::isOpen(reading));
}

TEST(ioBufferFileSubset, ReadsItsSliceOnly) {
  const qvTest::Directory directory;
  const std::string path = directory.write("f", "0123456789");
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  const struct {
    std::int64_t start, size;
    std::string content;
  } rows[] = {{2, 5, "23456"},
              {0, 10, "0123456789"},
              {9, 1, "9"},
              {10, 0, ""},
              {2, 0, ""},
              {2, 9, ""},
              {11, 0, ""},
              {most, most, ""},
              {2, -1, ""},
              {-20, 5, ""},
              {-most - 1, -most - 1, ""}};
  for (const auto& row : rows) {
    ioBufferFileSubset link;
    link.openSlice(wide(path), row.start, row.size);
    EXPECT_EQ(readAll(link, 3), row.content) << row.start << ' ' << row.size;
    EXPECT_EQ(link.getStatus(), ioBufferAtEnd) << row.start << ' ' << row.size;
    link.closeLink();
  }
  ioBufferFileSubset link;
  link.openSlice(wide(path), 2, 5);
  EXPECT_EQ(link.tellLink(), 0);
  EXPECT_TRUE(link.seekLink(3));
  EXPECT_EQ(link.tellLink(), 3);
  EXPECT_EQ(readAll(link), "56");
  link.setStatus(ioBufferOK);
  EXPECT_TRUE(link.seekLink(4));
  EXPECT_FALSE(link.seekLink(5));
  EXPECT_EQ(link.getStatus(), ioBufferAtEnd);
  link.closeLink();
}

// ---- Streams -------------------------------------------------------------------------------------------

/// Answers each read with the next row, then with a failure.
class Answers : public qvOS::IOStream {
public:
  qvUtil::Error read(void* buffer, std::uint64_t size, std::uint64_t* count) override {
    if (answers.empty()) return {4, "broken"};
    const auto [bytes, code] = answers.front();
    answers.erase(answers.begin());
    std::copy_n(bytes.data(), std::min<std::size_t>(bytes.size(), size), static_cast<char*>(buffer));
    *count = bytes.size();
    return code ? qvUtil::Error(code, "end") : qvUtil::Error();
  }
  qvUtil::Error write(const void*, std::uint64_t, std::uint64_t* count) override {
    EXPECT_EQ(count, nullptr);
    return {4, "full"};
  }
  std::vector<std::pair<std::string, int>> answers;
};

TEST(ioBufferIOStream, EndsOnlyWhereAFailureBringsNoBytes) {
  Answers stream;
  stream.answers = {{"ab", 0}, {"", 0}, {"cd", 3}, {"ef", 0}, {std::string(5000, 'g'), 0}};
  ioBufferIOStream link(true);
  link.attachStream(&stream);
  EXPECT_EQ(readAll(link), "abcdef" + std::string(4096, 'g')); // more than was asked for is not there
  EXPECT_EQ(link.getStatus(), ioBufferAtEnd);
  EXPECT_EQ(link.lastError().num(), 4);
  ioBufferIOStream writing(false);
  writing.attachStream(&stream);
  writing.writeBytes("x", 1);
  writing.flushChain();
  EXPECT_EQ(writing.getStatus(), ioBufferFailed);
}

} // namespace
