#include "Base/IO/ioBufferEncrypt.h"

#include "Base/IO/ioChaCha20Poly1305.h"
#include "Base/IO/tests/ioLinkTest.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <cerrno>

using namespace ioLinkTest;
namespace cipher = ioChaCha20Poly1305;

namespace {

using Decrypted = Reading<ioBufferEncrypt>;

std::string fromHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2)
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  return bytes;
}

std::string zeros(std::size_t count) { return std::string(count, '\0'); }

/// The bytes of a number of 16 bytes, least significant byte first.
std::string number(const char* hex) {
  return fromHex(hex) + zeros(16 - std::char_traits<char>::length(hex) / 2);
}

unsigned char* data(std::string& bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }
const unsigned char* data(const std::string& bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

TEST(ioChaCha20Poly1305, AuthenticatesLikeTheStandard) {
  const std::string ones(16, '\xFF');
  const struct {
    int line;
    std::string key, message, tag;
  } rows[] = {
      {__LINE__, fromHex("85d6be7857556d337f4452fe42d506a80103808afb0db2fd4abff6af4149f51b"),
       "Cryptographic Forum Research Group", fromHex("a8061dc1305136c6c22b8baf0c0127a9")}, // RFC 8439, 2.5.2
      // The sums that reach or pass 2^130 - 5 (A.3, 7 to 11).
      {__LINE__, number("02") + zeros(16), ones, number("03")},
      {__LINE__, number("02") + ones, number("02"), number("03")},
      {__LINE__, number("01") + zeros(16), ones + "\xF0" + ones.substr(1) + number("11"), number("05")},
      {__LINE__, number("01") + zeros(16), ones + "\xFB" + std::string(15, '\xFE') + std::string(16, '\1'),
       zeros(16)},
      {__LINE__, number("02") + zeros(16), "\xFD" + ones.substr(1), "\xFA" + ones.substr(1)},
      {__LINE__, number("010000000000000004") + zeros(16),
       number("e33594d7505e43b9") + number("3394d7505e4379cd01") + zeros(16) + number("01"),
       number("140000000000000055")},
  };
  for (const auto& row : rows) {
    std::string tag(16, '\0');
    cipher::poly1305(data(tag), data(row.message), row.message.size(), data(row.key));
    EXPECT_EQ(tag, row.tag) << row.line;
  }
}

TEST(ioChaCha20Poly1305, SealsAndOpensLikeTheStandard) { // RFC 8439, 2.8.2
  std::string key;
  for (int i = 0; i < 32; ++i) key += static_cast<char>(0x80 + i);
  const std::string nonce = fromHex("070000004041424344454647"), extra = fromHex("50515253c0c1c2c3c4c5c6c7");
  const std::string sunscreen =
      "Ladies and Gentlemen of the class of '99: If I could offer you only one tip for the "
      "future, sunscreen would be it.";
  const std::string sealed = fromHex("d31a8d34648e60db7b86afbc53ef7ec2a4aded51296e08fea9e2b5a736ee62d63dbea45"
                                     "e8ca9671282fafb69da92728b1a71de0a"
                                     "9e060b2905d6a5b67ecd3b3692ddbd7f2d778b8c9803aee328091b58fab324e4fad6759"
                                     "45585808b4831d7bc3ff4def08e4b7a9d"
                                     "e576d26586cec64b6116");
  std::string text = sunscreen, tag = zeros(16);
  const auto opens = [&] {
    return cipher::open(data(text), text.size(), data(extra), extra.size(), data(key), data(nonce),
                        data(tag));
  };
  cipher::seal(data(text), text.size(), data(extra), extra.size(), data(key), data(nonce), data(tag));
  EXPECT_EQ(text, sealed);
  EXPECT_EQ(tag, fromHex("1ae10b594f09e26a7e902ecbd0600691"));
  tag[3] = static_cast<char>(tag[3] ^ 1);
  EXPECT_FALSE(opens());
  EXPECT_EQ(text, sealed);
  tag[3] = static_cast<char>(tag[3] ^ 1);
  EXPECT_TRUE(opens());
  EXPECT_EQ(text, sunscreen);
}

using ioBufferEncryptTest = WithKey;

TEST_F(ioBufferEncryptTest, ReadsBackWhatItWrote) {
  qvTest::Random random(6);
  for (const std::size_t size : {0, 1, 4095, 4096, 4097, 300000}) {
    const std::string text = mixed(random, size, 256);
    const std::string stream = written<ioBufferEncrypt>(text, 777);
    EXPECT_EQ(stream.size(), 16 + size + ((size + 4095) / 4096 + 1) * 24);
    EXPECT_NE(stream, written<ioBufferEncrypt>(text, 777)); // another nonce
    Decrypted reading(stream + "after");
    EXPECT_TRUE(reading.all(1001) == text);
    EXPECT_EQ(reading.link.getStatus(), ioBufferAtEnd);
    char rest[6] = {};
    EXPECT_EQ(reading.link.nextLink()->readBytes(rest, 5), 5);
    EXPECT_STREQ(rest, "after");
  }
}

TEST_F(ioBufferEncryptTest, HasTheToldLayout) {
  const std::string stream = written<ioBufferEncrypt>("abc");
  EXPECT_EQ(stream.substr(0, 8), "ioEn" + zeros(3) + "\1");
  std::size_t at = 16;
  for (const std::string expected : {"abc", ""}) { // the second block ends the stream
    const std::string sequence = zeros(3) + (at == 16 ? '\0' : '\1');
    const std::string header = zeros(3) + static_cast<char>(expected.size()) + sequence;
    ASSERT_EQ(stream.substr(at, 8), header);
    std::string text = stream.substr(at + 8, expected.size());
    const std::string extra = (at == 16 ? stream.substr(0, 16) : "") + header;
    EXPECT_TRUE(cipher::open(data(text), text.size(), data(extra), extra.size(), data(std::string(32, '\1')),
                             data(stream.substr(8, 8) + sequence), data(stream) + at + 8 + text.size()));
    EXPECT_EQ(text, expected);
    at += 24 + text.size();
  }
  EXPECT_EQ(stream.size(), at);
}

TEST_F(ioBufferEncryptTest, TakesNoChangedReorderedOrCutStream) {
  const std::string text = std::string(4096, 'a') + std::string(4096, 'b') + "c";
  const std::string stream = written<ioBufferEncrypt>(text), header = stream.substr(0, 16);
  const std::size_t length = 4096 + 24;
  const std::string first = stream.substr(16, length), second = stream.substr(16 + length, length);
  std::vector<std::string> broken = {header + second + first + stream.substr(16 + 2 * length),
                                     header + stream.substr(16 + length), header + first + stream.substr(16),
                                     header + written<ioBufferEncrypt>(text).substr(16)};
  const std::string small = written<ioBufferEncrypt>("abc");
  for (std::size_t i = 0; i < small.size(); ++i) {
    broken.push_back(small.substr(0, i));
    broken.push_back(small);
    broken.back()[i] = static_cast<char>(broken.back()[i] ^ 0x10);
  }
  for (const std::string& bad : broken) {
    Decrypted reading(bad);
    const std::string got = reading.all();
    EXPECT_EQ(got, (bad.size() > 1000 ? text : "abc").substr(0, got.size()));
    EXPECT_EQ(reading.link.getStatus(), ioBufferFailed);
  }
  byte = 2;
  Decrypted reading(stream);
  EXPECT_EQ(reading.all(), "");
  EXPECT_EQ(reading.link.getStatus(), ioBufferFailed);
}

TEST_F(ioBufferEncryptTest, FailsWithoutAKeyAndWithoutRandomBytes) {
  const auto statusOfWriting = [] {
    qvOS::MemoryIOStream memory;
    ioBufferEncrypt link(false);
    attach(link, memory);
    link.writeBytes("abc", 3);
    link.finish();
    link.closeLink(); // the end is written once
    EXPECT_EQ(memory.size(), link.good() ? 67U : 0U);
    return link.getStatus();
  };
  EXPECT_EQ(statusOfWriting(), ioBufferOK);
  {
    qvTest::PlatformScript script;
    script.failCall(0, EIO, "random");
    EXPECT_EQ(statusOfWriting(), ioBufferFailed);
  }
  const std::string stream = written<ioBufferEncrypt>("abc");
  ioEncryptKeyInit(nullptr);
  EXPECT_EQ(statusOfWriting(), ioBufferFailed);
  Decrypted reading(stream);
  EXPECT_EQ(reading.all(), "");
  EXPECT_EQ(reading.link.getStatus(), ioBufferFailed);
}

} // namespace
