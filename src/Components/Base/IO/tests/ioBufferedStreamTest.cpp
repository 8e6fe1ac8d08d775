#include "Base/IO/ioBufferedStream.h"

#include "Base/IO/ioHeader.h"
#include "Base/IO/tests/ioLinkTest.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/String/qvStringIString.h"
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/qvTCPSocket.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPeer.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <functional>

using namespace ioLinkTest;
using namespace std::string_literals;

namespace {

qvString::IString wide(const std::string& path) { return {path.c_str(), qvString::UTF8Encoding}; }

/// An input stream over text.
struct TextInput : ioBufferedStreamInput {
  explicit TextInput(std::string content)
      : text(std::move(content)), memory(static_cast<const void*>(text.data()), text.size()) {
    openIOStream(&memory);
  }
  std::string text;
  qvOS::MemoryIOStream memory;
};

// ---- Chains --------------------------------------------------------------------------------------------

/// Every order of up to `most` filters.
std::vector<std::string> allChains(std::size_t most) {
  std::vector<std::string> chains = {""};
  for (std::size_t i = 0; i < chains.size() && chains[i].size() < most; ++i)
    for (const char filter : "cse"s) chains.push_back(chains[i] + filter);
  return chains;
}

/// The status in which a chain ends: its topmost filter that has an end of its own tells it.
ioStreamStatus endOf(const std::string& filters) {
  const std::size_t top = filters.find_last_of("ce");
  return top != std::string::npos && filters[top] == 'c' ? ioStreamCompressedEnd : ioStreamAtEnd;
}

void fill(ioBufferedStreamOutput& output, const std::string& filters, const std::string& data, int piece) {
  push(output, filters);
  writeAll(output, data, static_cast<std::size_t>(piece));
  output.close();
  EXPECT_TRUE(output.good());
}

/// What a chain makes of `data`.
std::string stored(const std::string& filters, const std::string& data, int piece) {
  qvOS::MemoryIOStream memory;
  ioBufferedStreamOutput output;
  output.openIOStream(&memory);
  fill(output, filters, data, piece);
  return bytesOf(memory);
}

void expectToRead(ioBufferedStreamInput& input, const std::string& filters, const std::string& data,
                  int piece) {
  push(input, filters);
  EXPECT_TRUE(readAll(input, piece) == data) << filters << piece;
  EXPECT_EQ(input.getStatus(), endOf(filters)) << filters;
  input.close();
}

constexpr int pieces[] = {1, 7, 4095, 4096, 4097, 1000000};

class ioBufferedStreamChains : public WithKey {};

TEST_F(ioBufferedStreamChains, CarryBytesOverFilesSlicesAndMemory) {
  const qvTest::Directory directory;
  const qvString::IString file = wide(directory.path("f")), slice = wide(directory.path("slice"));
  qvTest::Random random(7);
  const std::string data = mixed(random, 30000, 200);
  int n = 0;
  for (const std::string& chain : allChains(4)) {
    const int writePiece = pieces[n % 6], readPiece = pieces[n / 6 % 6];
    ++n;
    ioBufferedStreamOutput output;
    output.openFile(file);
    fill(output, chain, data, writePiece);
    ioBufferedStreamInput input;
    input.openFile(file);
    expectToRead(input, chain, data, readPiece);
    const std::string bytes = directory.read("f");
    directory.write("slice", "before" + bytes + "after");
    for (const bool isReset : {false, true}) { // opening a slice keeps the status
      input.openFileSlice(slice, 6, static_cast<std::int64_t>(bytes.size()));
      EXPECT_EQ(input.good(), isReset);
      if (isReset) expectToRead(input, chain, data, readPiece);
      input.close();
      input.resetStatus();
    }
    TextInput memory(stored(chain, data, writePiece));
    expectToRead(memory, chain, data, readPiece);
  }
  const std::string large = mixed(random, 1200000, 200);
  for (const char* const chain : {"", "cs", "se", "ecs"})
    for (const int piece : pieces) {
      TextInput input(stored(chain, large, piece));
      expectToRead(input, chain, large, piece);
    }
}

TEST_F(ioBufferedStreamChains, CarryBytesOverASocket) {
  const qvTest::Listener listener;
  qvTest::Random random(9);
  const std::string data = mixed(random, 30000, 200);
  for (const std::string& chain : allChains(2)) {
    qvTCP::ClientSocket socket(qvTCP::Address("127.0.0.1", listener.port()));
    ASSERT_FALSE(socket.connect());
    const std::unique_ptr<qvTest::Peer> peer = listener.accept();
    ioBufferedStreamOutput output;
    output.openSocket(&socket);
    fill(output, chain, data, 777);
    (void)socket.close(2);
    const std::string received = peer->receive(100000);
    EXPECT_TRUE(received == stored(chain, data, 777) || chain.find('e') != std::string::npos) << chain;
    peer->send(received + std::string(8192, '\0')); // a socket waits for whole buffers
    peer->close();
    ioBufferedStreamInput input;
    input.openSocket(&socket);
    push(input, chain);
    std::string back(data.size(), '\0');
    EXPECT_EQ(input.readData(back.data(), static_cast<int>(back.size())), static_cast<int>(data.size()));
    EXPECT_TRUE(back == data) << chain;
    for (const bool throws :
         {false, true}) { // a connection never ends, and a socket that throws throws into no stream
      socket.setThrowMode(throws);
      input.openSocket(&socket);
      (void)readAll(input);
      EXPECT_EQ(input.getStatus(), ioStreamFailed);
      input.close();
    }
  }
}

TEST_F(ioBufferedStreamChains, EndInAStatusWhereverTheStreamIsCutOrChanged) {
  qvTest::Random random(10);
  const std::string data = mixed(random, 60, 5);
  for (const std::string& chain : allChains(3)) {
    if (chain.empty()) continue;
    const std::string whole = stored(chain, data, 1000);
    for (std::size_t i = 0; i < whole.size(); ++i)
      for (const bool isCut : {false, true}) {
        TextInput input(isCut ? whole.substr(0, i) : whole);
        if (!isCut) input.text[i] = static_cast<char>(input.text[i] ^ 1 << random.below(8));
        push(input, chain);
        const std::string got = readAll(input);
        const bool endsWell = input.getStatus() == endOf(chain);
        // What has a sum or a tag is either refused or right; sums let a cut between blocks pass.
        EXPECT_TRUE(chain.find_first_of("se") == std::string::npos || !endsWell ||
                    got == data.substr(0, got.size()))
            << chain << " at " << i;
        EXPECT_TRUE(chain.find('e') == std::string::npos || !isCut || !endsWell || got == data)
            << chain << " at " << i;
      }
  }
}

TEST_F(ioBufferedStreamChains, GrowAndShrinkAtTheTop) {
  qvOS::MemoryIOStream memory;
  ioBufferedStreamOutput output;
  output.openIOStream(&memory);
  output.writeString("plain ");
  void (ioBufferedStream::*const filters[])(bool) = {&ioBufferedStream::compress, &ioBufferedStream::checksum,
                                                     &ioBufferedStream::encrypt};
  for (const auto filter : filters) {
    (output.*filter)(true);
    output.writeString("filtered ");
    (output.*filter)(false);
    output.writeString("plain ");
  }
  output.close();
  TextInput input(bytesOf(memory));
  const auto next = [&](int size) {
    std::string text(static_cast<std::size_t>(size), '\0');
    EXPECT_EQ(input.readData(text.data(), size), size);
    return text;
  };
  EXPECT_EQ(next(6), "plain ");
  input.compress(true);
  EXPECT_EQ(readAll(input), "filtered ");
  EXPECT_EQ(input.getStatus(), ioStreamCompressedEnd);
  input.compress(false);
  EXPECT_TRUE(input.good());
  EXPECT_EQ(next(6), "plain ");
  input.checksum(true);
  EXPECT_EQ(next(9), "filtered ");
  input.compress(false); // whatever is on top
  EXPECT_EQ(next(6), "plain ");
  input.encrypt(true);
  EXPECT_EQ(readAll(input), "filtered ");
  EXPECT_EQ(input.getStatus(), ioStreamAtEnd);
  input.encrypt(false);
  input.resetStatus();
  EXPECT_EQ(readAll(input), "plain ");
}

TEST_F(ioBufferedStreamChains, HaveNoPositionThroughAFilter) {
  const qvTest::Directory directory;
  ioBufferedStreamInput input;
  input.openFile(wide(directory.write("f", "0123456789")));
  input.checksum(true);
  EXPECT_EQ(input.tell(), 0);
  EXPECT_FALSE(input.seek(3));
  input.checksum(false);
  EXPECT_TRUE(input.seek(3));
  EXPECT_EQ(input.readChar(), '3');
  EXPECT_EQ(input.tell(), 10); // what was buffered is dropped
  EXPECT_TRUE(input.good());
  EXPECT_EQ(input.readChar(), 0);
  EXPECT_EQ(input.getStatus(), ioStreamAtEnd);
  input.close();
}

// ---- Streams -------------------------------------------------------------------------------------------

TEST(ioBufferedStream, TellsAFailedOutputOpenAtTheNextPromotionOnly) {
  const qvTest::Directory directory;
  const qvString::IString none = wide(directory.path("no/such"));
  for (int next = 0; next < 3; ++next) {
    ioBufferedStreamOutput output;
    output.openFile(none);
    EXPECT_TRUE(output.good());
    if (next == 0) output.writeString("x");
    if (next == 1) output.flush();
    if (next == 2) output.close();
    EXPECT_EQ(output.getStatus(), ioStreamOpenFailed);
    output.close();
  }
  ioBufferedStreamInput input;
  for (const qvString::IString& name : {none, wide(directory.path()), qvString::IString()}) {
    input.openFile(name);
    EXPECT_EQ(input.getStatus(), ioStreamOpenFailed);
  }
  input.openSocket(nullptr);
  EXPECT_EQ(input.getStatus(), ioStreamFailed);
  input.resetStatus();
  input.openFileSlice(none, 0, 1);
  EXPECT_EQ(input.getStatus(), ioStreamOpenFailed);
  input.resetStatus();
  input.openFileSlice(wide(directory.write("f", "abc")), 1, 5);
  EXPECT_EQ(input.getStatus(), ioStreamAtEnd);
  EXPECT_EQ(readAll(input), "");
  input.close();
}

TEST(ioBufferedStream, RefusesWorkWhileClosed) {
  ioBufferedStreamInput input;
  ioBufferedStreamOutput output;
  char c = 0;
  const std::function<long()> uses[] = {
      [&] { return long{input.readChar()}; },          [&] { return long{input.readInt()}; },
      [&] { return long{input.readData(&c, 1)}; },     [&] { return long{input.seek(0)}; },
      [&] { return static_cast<long>(input.tell()); }, [&] { return input.compress(true), 0L; },
      [&] { return output.writeChar('x'), 0L; },       [&] { return output.writeString("x"), 0L; },
      [&] { return output.encrypt(true), 0L; },
  };
  for (const auto& use : uses) {
    input.resetStatus();
    output.resetStatus();
    EXPECT_EQ(use(), 0);
    EXPECT_NE(input.getStatus() == ioStreamFailed, output.getStatus() == ioStreamFailed);
  }
  output.setStatus(ioStreamDiskFull);
  output.flush();
  output.close();
  output.checksum(false);
  output.associateProgressFunction(nullptr);
  EXPECT_EQ(output.getStatus(), ioStreamDiskFull);
}

TEST(ioBufferedStream, TellsFailuresOfTheDisk) {
  const qvTest::Directory directory;
  const qvString::IString file = wide(directory.write("f", "data"));
  using enum qvPlatform::ErrorKind;
  const struct {
    int line;
    const char* call;
    qvPlatform::ErrorKind error;
    bool forReading;
    ioStreamStatus status;
  } rows[] = {
      {__LINE__, "open", denied, true, ioStreamOpenFailed},
      {__LINE__, "open", interrupted, true, ioStreamOK},
      {__LINE__, "read", ioFailure, true, ioStreamFailed},
      {__LINE__, "read", interrupted, true, ioStreamOK},
      {__LINE__, "close", ioFailure, true, ioStreamFailed},
      {__LINE__, "write", noSpace, false, ioStreamDiskFull},
      {__LINE__, "write", ioFailure, false, ioStreamFailed},
      {__LINE__, "write", interrupted, false, ioStreamOK},
      {__LINE__, "close", ioFailure, false, ioStreamFailed},
  };
  for (const auto& row : rows)
    for (const char* const chain : {"", "c", "s", "cs"}) {
      qvTest::PlatformScript script;
      script.failCall(0, qvPlatform::errorNumber(row.error), row.call);
      ioBufferedStreamInput input;
      ioBufferedStreamOutput output;
      ioBufferedStream& stream = row.forReading ? static_cast<ioBufferedStream&>(input) : output;
      stream.openFile(file);
      push(output, row.forReading ? "" : chain);
      if (!row.forReading) output.writeString("data");
      if (row.forReading) (void)input.readChar();
      stream.close();
      EXPECT_EQ(stream.getStatus(), row.status) << row.line << chain;
      EXPECT_EQ(script.failures(), 1) << row.line << chain;
    }
}

TEST(ioBufferedStream, SharesItsChainWithCopies) {
  const qvTest::Directory directory;
  ioBufferedStreamOutput first;
  first.openFile(wide(directory.path("f")));
  {
    ioBufferedStreamOutput copy(first);
    copy.writeString("ab");
    copy.checksum(true); // on top of this copy's chain only
    ioBufferedStreamOutput other;
    other = first;
    std::swap(other, copy);
    other = copy;
    other.writeString("cd");
  }
  first.writeString("ef");
  first.close();
  EXPECT_EQ(directory.read("f"), "abcdef");
}

TEST(ioBufferedStream, ReadsNumbers) {
  const struct {
    std::string text;
    int value;
    std::string rest;
  } rows[] = {{"12x", 12, ""},
              {" \n\t-7 8", -7, "8"},
              {"x5", 0, "5"},
              {"-", 0, ""},
              {"", 0, ""},
              {"+1", 0, "1"},
              {"--1", 0, "1"},
              {"2147483647 ", INT_MAX, ""},
              {"2147483648 ", INT_MAX, ""},
              {"-2147483648 ", INT_MIN, ""},
              {"-99999999999999999999 ", INT_MIN, ""},
              // 39 characters count, and the next one is lost.
              {"00000000000000000000000000000000000000123", 1, "3"},
              {"-0000000000000000000000000000000000000123", -1, "3"}};
  for (const auto& row : rows) {
    TextInput input(row.text);
    EXPECT_EQ(input.readInt(), row.value) << row.text;
    EXPECT_EQ(readAll(input), row.rest) << row.text;
  }
}

TEST(ioBufferedStream, ReadsLines) {
  TextInput input("one\ntwenty\nlast");
  char line[8];
  const auto next = [&](int size) {
    std::fill_n(line, 8, '#');
    input.readLine(line, size);
    return std::string(line, 8);
  };
  input.readLine(nullptr, 8);
  for (const int none : {INT_MIN, 0, 1}) EXPECT_EQ(next(none), "\0#######"s);
  EXPECT_EQ(next(8), "one\n\0###"s);
  EXPECT_EQ(next(5), "twen\0###"s);
  EXPECT_EQ(next(8), "ty\n\0####"s);
  EXPECT_TRUE(input.good());
  EXPECT_EQ(next(8), "last\0\0##"s); // the end is stored as a 0 byte
  EXPECT_EQ(input.getStatus(), ioStreamAtEnd);
  EXPECT_EQ(next(8), "\0#######"s);
}

TEST(ioBufferedStream, WritesCharactersAndTexts) {
  qvOS::MemoryIOStream memory;
  ioBufferedStreamOutput output;
  output.openIOStream(&memory);
  output.writeString("ab");
  EXPECT_EQ(memory.size(), 0U);
  output.writeChar('c');
  EXPECT_EQ(memory.size(), 2U); // everything before goes out first
  output.writeChar('d');
  EXPECT_EQ(memory.size(), 3U);
  output.printf("%d %s %S", -5, "narrow", QV_W("wide"));
  output.printf("%s", std::string(2000, 'x').c_str());
  output.printf("%s", "");
  output.close();
  EXPECT_EQ(bytesOf(memory), "abcd-5 narrow wide" + std::string(1023, 'x'));

  qvOS::MemoryIOStream checked;
  output.openIOStream(&checked);
  output.checksum(true);
  for (const char c : "xyz"s) output.writeChar(c);
  output.close();
  EXPECT_EQ(checked.size(), 33U); // a block of its own for each
}

TEST(ioBufferedStream, TellsProgressOfTheLinkOnTop) {
  static std::vector<int> told;
  told.clear();
  const qvTest::Directory directory;
  ioBufferedStreamInput input;
  input.associateProgressFunction([](int) { told.push_back(-1); });
  input.openFile(wide(directory.write("f", std::string(300000, 'x'))));
  input.associateProgressFunction([](int total) { told.push_back(total); });
  (void)readAll(input, 5000);
  input.close();
  EXPECT_EQ(told, (std::vector<int>{262144, 300000, 300000}));
}

TEST(ioBufferedStream, EmptiesAFileUnlessToldOtherwiseAndTellsItsSize) {
  const qvTest::Directory directory;
  const qvString::IString file = wide(directory.write("f", "0123"));
  for (const bool truncates : {false, true}) {
    ioBufferedStreamOutput output;
    if (!truncates) output.truncateOnOpen(false);
    output.openFile(file);
    output.writeString("X");
    output.close();
    EXPECT_EQ(directory.read("f"), truncates ? "X" : "X123");
    EXPECT_EQ(ioBufferedStream::fileSize(file), truncates ? 1 : 4);
  }
  for (const auto& none : {wide(directory.path("none")), qvString::IString()})
    EXPECT_EQ(ioBufferedStream::fileSize(none), -1);
  std::filesystem::resize_file(directory.path("f"), 5000000000);
  EXPECT_EQ(ioBufferedStream::fileSize(file), 5000000000);
}

// ---- The header ----------------------------------------------------------------------------------------

TEST(ioHeader, WritesTheseBytes) {
  const std::string order = ioHeader::systemIsLittleEndian() ? "1 " : "0 ";
  for (const std::string method : {"0", "1", "2", "3"}) {
    qvOS::MemoryIOStream memory;
    ioBufferedStreamOutput output;
    output.openIOStream(&memory);
    ioHeader(static_cast<ioWriteMethod>(method[0] - '0')).writeHeader(output);
    output.close();
    EXPECT_EQ(bytesOf(memory), "^@\n1\n" + order + method + " 1\n1 2 4 8 4 8 8\n@\n");
  }
  EXPECT_TRUE(ioHeader(ioWriteAscii).valid);
  EXPECT_FALSE(ioHeader().valid);
}

TEST(ioHeader, ReadsWhatItKnows) {
  using Pair = std::pair<ioReadMethod, ioReadMethod>; // in the same byte order, and in the other one
  const Pair readers[] = {{ioReadAscii, ioReadAscii},
                          {ioReadBinarySameEndian, ioReadBinarySwapped},
                          {ioReadAsciiDebug, ioReadAsciiDebug},
                          {ioReadBinarySameEndianDebug, ioReadBinarySwappedDebug}};
  const struct {
    std::string text;
    bool valid, littleEndian;
    int method;
  } rows[] = {
      {"1\n1 1 1\n1 2 4 8 4 8 8\n@\n", true, true, 1},   {"1\n0 1 1\n1 2 4 8 4 8 8\n@\n", true, false, 1},
      {"1\n1 3 1\n1 2 4 8 4 8 8\n@\n", true, true, 3},   {"9\n7 3 1\n1 2 4 8 4 8 0\nmore@\n", true, true, 3},
      {"1\n0 0 1\n9 9 9 9 9 9 9\n@\n", true, false, 0},  {"1\n0 2 0\n1 2 4 8 4 8 8\n@\n", true, false, 2},
      {"1\n1 1 0\n1 2 4 8 4 8 8\n@\n", false, true, 1},  {"1\n1 1 1\n1 2 8 8 4 8 8\n@\n", false, true, 1},
      {"1\n0 3 1\n1 2 4 8 4 4 8\n@\n", false, false, 3}, {"1\n1 4 1\n1 2 4 8 4 8 8\n@\n", true, true, -1},
      {"1\n1 -2 1\n1 2 4 8 4 8 8\n@\n", true, true, -1}};
  for (const auto& row : rows) {
    TextInput input("^@\n" + row.text + "body");
    SCOPED_TRACE(row.text);
    ioHeader header;
    EXPECT_EQ(header.readHeader(input), row.valid);
    EXPECT_EQ(header.valid, row.valid);
    EXPECT_EQ(header.littleEndian, row.littleEndian);
    EXPECT_EQ(static_cast<int>(header.method), row.method);
    const Pair invalid = {ioReadInvalid, ioReadInvalid},
               reader = row.method < 0 ? invalid : readers[row.method];
    const bool isSame = row.littleEndian == ioHeader::systemIsLittleEndian();
    EXPECT_EQ(header.determineReadMethod(), isSame ? reader.first : reader.second);
    EXPECT_EQ(readAll(input), "body");
  }
  for (const char* const text : {"", "^", "^@", "^@\r", "^ \n", "@@\n1\n1 1 1\n1 2 4 8 4 8 8\n@\n"}) {
    TextInput input(text);
    EXPECT_FALSE(ioHeader().readHeader(input)) << text;
  }
}

} // namespace
