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

std::string bytesOf(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2)
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  return bytes;
}

std::string range(int first, int count) {
  std::string bytes;
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(first + i);
  return bytes;
}

unsigned char* data(std::string& bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }
const unsigned char* data(const std::string& bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

const std::string sunscreen =
    "Ladies and Gentlemen of the class of '99: If I could offer you only one tip for the "
    "future, sunscreen would be it.";

TEST(ioChaCha20Poly1305, EncryptsLikeTheStandard) { // RFC 8439, 2.4.2
  std::string text = sunscreen;
  cipher::chacha20(data(text), text.size(), data(range(0, 32)), data(bytesOf("000000000000004a00000000")), 1);
  EXPECT_EQ(text, bytesOf("6e2e359a2568f98041ba0728dd0d6981e97e7aec1d4360c20a27afccfd9fae0bf91b65c5524733ab"
                          "8f593dabcd62b3571639d624e65152ab8f530c359f0861d807ca0dbf500d6a6156a38e088a22b65e"
                          "52bc514d16ccf806818ce91ab77937365af90bbf74a35be6b40b8eedf2785e42874d"));
}

TEST(ioChaCha20Poly1305, AuthenticatesLikeTheStandard) {
  const std::string ones(16, '\xFF');
  const std::string zeros(16, '\0');
  const std::string low = bytesOf("02000000000000000000000000000000");
  const struct {
    int line;
    std::string key, message, tag;
  } rows[] = {
      {__LINE__, bytesOf("85d6be7857556d337f4452fe42d506a80103808afb0db2fd4abff6af4149f51b"),
       "Cryptographic Forum Research Group", bytesOf("a8061dc1305136c6c22b8baf0c0127a9")}, // 2.5.2
      // The sums that reach or pass 2^130 - 5 (A.3, 7 to 11).
      {__LINE__, low + zeros, ones, bytesOf("03000000000000000000000000000000")},
      {__LINE__, low + ones, low, bytesOf("03000000000000000000000000000000")},
      {__LINE__, bytesOf("01000000000000000000000000000000") + zeros,
       ones + bytesOf("f0ffffffffffffffffffffffffffffff11000000000000000000000000000000"),
       bytesOf("05000000000000000000000000000000")},
      {__LINE__, bytesOf("01000000000000000000000000000000") + zeros,
       ones + bytesOf("fbfefefefefefefefefefefefefefefe01010101010101010101010101010101"), zeros},
      {__LINE__, low + zeros, bytesOf("fdffffffffffffffffffffffffffffff"),
       bytesOf("faffffffffffffffffffffffffffffff")},
      {__LINE__, bytesOf("01000000000000000400000000000000") + zeros,
       bytesOf(
           "e33594d7505e43b900000000000000003394d7505e4379cd010000000000000000000000000000000000000000000000"
           "01000000000000000000000000000000"),
       bytesOf("14000000000000005500000000000000")},
  };
  for (const auto& row : rows) {
    std::string tag(16, '\0');
    cipher::poly1305(data(tag), data(row.message), row.message.size(), data(row.key));
    EXPECT_EQ(tag, row.tag) << row.line;
  }
}

TEST(ioChaCha20Poly1305, SealsAndOpensLikeTheStandard) { // RFC 8439, 2.8.2
  const std::string key = range(0x80, 32), nonce = bytesOf("070000004041424344454647");
  const std::string extra = bytesOf("50515253c0c1c2c3c4c5c6c7");
  std::string text = sunscreen, tag(16, '\0');
  cipher::seal(data(text), text.size(), data(extra), extra.size(), data(key), data(nonce), data(tag));
  EXPECT_EQ(
      text,
      bytesOf("d31a8d34648e60db7b86afbc53ef7ec2a4aded51296e08fea9e2b5a736ee62d63dbea45e8ca9671282fafb69da"
              "92728b1a71de0a9e060b2905d6a5b67ecd3b3692ddbd7f2d778b8c9803aee328091b58fab324e4fad675945585"
              "808b4831d7bc3ff4def08e4b7a9de576d26586cec64b6116"));
  EXPECT_EQ(tag, bytesOf("1ae10b594f09e26a7e902ecbd0600691"));
  const std::string sealed = text;
  tag[3] = static_cast<char>(tag[3] ^ 1);
  EXPECT_FALSE(
      cipher::open(data(text), text.size(), data(extra), extra.size(), data(key), data(nonce), data(tag)));
  EXPECT_EQ(text, sealed);
  tag[3] = static_cast<char>(tag[3] ^ 1);
  EXPECT_TRUE(
      cipher::open(data(text), text.size(), data(extra), extra.size(), data(key), data(nonce), data(tag)));
  EXPECT_EQ(text, sunscreen);
}

/// A host with a key, which is the byte `byte` 32 times.
class ioBufferEncryptTest : public testing::Test {
protected:
  ioBufferEncryptTest() {
    byte = 1;
    ioEncryptKeyInit([](unsigned char* key) {
      std::fill_n(key, ioEncryptKeySize, byte);
      return true;
    });
  }
  ~ioBufferEncryptTest() override { ioEncryptKeyInit(nullptr); }

  static inline unsigned char byte;
};

TEST_F(ioBufferEncryptTest, ReadsBackWhatItWrote) {
  qvTest::Random random(6);
  for (const std::size_t size : {0, 1, 4095, 4096, 4097, 300000}) {
    const std::string text = mixed(random, size, 256);
    const std::string stream = written<ioBufferEncrypt>(text, 777);
    EXPECT_EQ(stream.size(), 16 + size + ((size + 4095) / 4096 + 1) * 24);
    EXPECT_EQ(stream.substr(0, 8), std::string("ioEn\0\0\0\1", 8));
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
  ASSERT_EQ(stream.size(), 16U + 27 + 24);
  const std::string key(32, '\1');
  const auto open = [&](std::size_t at, std::size_t size, unsigned sequence, const std::string& before) {
    std::string text = stream.substr(at + 8, size);
    const std::string extra = before + stream.substr(at, 8);
    const std::string nonce = stream.substr(8, 8) + std::string(3, '\0') + static_cast<char>(sequence);
    EXPECT_EQ(stream.substr(at, 8), std::string(3, '\0') + static_cast<char>(size) + std::string(3, '\0') +
                                        static_cast<char>(sequence));
    EXPECT_TRUE(cipher::open(data(text), size, data(extra), extra.size(), data(key), data(nonce),
                             data(stream) + at + 8 + size));
    return text;
  };
  EXPECT_EQ(open(16, 3, 0, stream.substr(0, 16)), "abc");
  EXPECT_EQ(open(43, 0, 1, ""), "");
}

TEST_F(ioBufferEncryptTest, TakesNoChangedReorderedOrCutStream) {
  const std::string text = std::string(4096, 'a') + std::string(4096, 'b') + "c";
  const std::string stream = written<ioBufferEncrypt>(text);
  const std::size_t length = 4096 + 24;
  std::vector<std::string> broken = {stream.substr(0, 16) + stream.substr(16 + length, length) +
                                         stream.substr(16, length) + stream.substr(16 + 2 * length),
                                     stream.substr(0, 16) + stream.substr(16 + length),
                                     stream.substr(0, 16 + length) + stream.substr(16),
                                     stream.substr(0, 16) + written<ioBufferEncrypt>(text).substr(16)};
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
    auto* const transport = new ioBufferIOStream(false);
    transport->attachStream(&memory);
    link.setNext(transport);
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
