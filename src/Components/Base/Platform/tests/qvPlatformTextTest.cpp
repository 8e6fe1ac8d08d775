#include "Base/Platform/qvPlatformText.h"

#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <string_view>

namespace {

using Wide = std::basic_string<qv::WChar>;

/// The definition of UTF-8, one code point at a time.
std::string encoded(char32_t c) {
  const auto trail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
  if (c < 0x80) return {static_cast<char>(c)};
  if (c < 0x800) return {static_cast<char>(0xC0 | c >> 6), trail(0)};
  if (c < 0x10000) return {static_cast<char>(0xE0 | c >> 12), trail(6), trail(0)};
  return {static_cast<char>(0xF0 | c >> 18), trail(12), trail(6), trail(0)};
}

bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

void addUnits(Wide& text, char32_t c) {
  if (c > 0xFFFF) {
    text += static_cast<qv::WChar>(0xD800 + ((c - 0x10000) >> 10));
    c = 0xDC00 + ((c - 0x10000) & 0x3FF);
  }
  text += static_cast<qv::WChar>(c);
}

template <class Text>
struct Expected {
  Text text;
  bool valid = true;
};

char32_t codeOf(std::string_view bytes) {
  char32_t c = static_cast<unsigned char>(bytes[0]);
  if (bytes.size() > 1) c &= 0xFFu >> (bytes.size() + 1);
  for (const char trail : bytes.substr(1)) c = c << 6 | (static_cast<unsigned char>(trail) & 0x3F);
  return c;
}

/// Whether the bytes are one whole character, told by encoding it.
bool isWhole(std::string_view bytes) {
  const char32_t c = codeOf(bytes);
  return c <= 0x10FFFF && !isSurrogate(c) && encoded(c) == bytes;
}

/// Whether bytes begin a character. After the second byte any trail will do.
bool isStart(std::string_view bytes) {
  return isWhole(std::string(bytes) + '\x80') || isWhole(std::string(bytes) + "\x80\x80");
}

Expected<Wide> decodeByModel(std::string_view bytes, bool escape) {
  Expected<Wide> result;
  while (!bytes.empty()) {
    std::size_t length = 1, bad = 1;
    while (length <= 4 && length <= bytes.size() && !isWhole(bytes.substr(0, length))) ++length;
    if (length <= 4 && length <= bytes.size()) {
      addUnits(result.text, codeOf(bytes.substr(0, length)));
      bytes.remove_prefix(length);
      continue;
    }
    for (std::size_t n = 2; n <= 3 && n <= bytes.size(); ++n)
      if (isStart(bytes.substr(0, n))) bad = n;
    for (std::size_t i = 0; escape && i < bad; ++i)
      result.text += static_cast<qv::WChar>(0xDC00 + static_cast<unsigned char>(bytes[i]));
    if (!escape) result.text += qv::WChar(0xFFFD), result.valid = false;
    bytes.remove_prefix(bad);
  }
  return result;
}

Expected<std::string> encodeByModel(const Wide& text, bool escape) {
  Expected<std::string> result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char32_t c = text[i];
    const bool lone = isSurrogate(c);
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
      result.text += encoded(0x10000 + (c - 0xD800) * 0x400 + (text[++i] - 0xDC00u));
    } else if (lone && escape && (c == 0xDC3A || c == 0xDC5C || (c >= 0xDC80 && c <= 0xDCFF))) {
      result.text += static_cast<char>(c - 0xDC00);
    } else {
      result.text += encoded(lone ? 0xFFFD : c);
      result.valid = result.valid && !lone;
    }
  }
  return result;
}

/// Compares all ways of converting with the model: counting, with the room of the worst case, with exactly
/// the room needed, and with one unit more.
template <class From, class To, class Convert>
void expectConverted(const From& from, const Expected<To>& expected, Convert convert) {
  const std::size_t size = expected.text.size();
  for (const std::size_t room : {3 * from.size() + 1, size + 1, size, std::size_t(0)}) {
    To to(room + 1, '#');
    const qvPlatform::Converted made = convert(from.data(), from.size(), room ? to.data() : nullptr, room);
    ASSERT_EQ(made.count, size) << testing::PrintToString(from);
    ASSERT_EQ(to[room], '#');
    if (room == 0) continue;
    ASSERT_EQ(made.valid, expected.valid) << testing::PrintToString(from);
    ASSERT_EQ(to.substr(0, size), expected.text) << testing::PrintToString(from);
  }
}

void expectDecoded(const std::string& bytes) {
  using Decode = qvPlatform::Converted (*)(const char*, std::size_t, qv::WChar*, std::size_t);
  expectConverted(bytes, decodeByModel(bytes, false), Decode(qvPlatform::decodeUtf8));
  expectConverted(bytes, decodeByModel(bytes, true), Decode(qvPlatform::decodeNative));
}

void expectEncoded(const Wide& units) {
  using Encode = qvPlatform::Converted (*)(const qv::WChar*, std::size_t, char*, std::size_t);
  expectConverted(units, encodeByModel(units, false), Encode(qvPlatform::encodeUtf8));
  expectConverted(units, encodeByModel(units, true), Encode(qvPlatform::encodeNative));
}

TEST(PlatformText, EveryCodePointInBothDirections) {
  std::string narrow;
  Wide wide;
  for (char32_t c = 0; c <= 0x10FFFF; ++c) {
    if (isSurrogate(c)) continue;
    narrow += encoded(c);
    addUnits(wide, c);
  }
  bool valid = false;
  EXPECT_TRUE(qvPlatform::decodeUtf8(narrow, &valid) == wide);
  EXPECT_TRUE(valid);
  EXPECT_TRUE(qvPlatform::encodeUtf8(wide, &valid) == narrow);
  EXPECT_TRUE(valid);
  EXPECT_TRUE(qvPlatform::decodeNative(narrow) == wide);
  EXPECT_TRUE(qvPlatform::encodeNative(wide, &valid) == narrow);
}

TEST(PlatformText, EverySequenceOfUpToThreeBytes) {
  long differences = 0;
  for (unsigned int value = 0; value < 0x1000000; ++value) {
    const char bytes[] = {static_cast<char>(value), static_cast<char>(value >> 8),
                          static_cast<char>(value >> 16)};
    // Sequences that begin with ASCII are those of one byte less.
    const std::size_t length = value < 0x100 ? 1 : value < 0x10000 ? 2 : 3;
    if (length == 3 && (value & 0x80) == 0) continue;
    const std::string_view text(bytes, length);
    qv::WChar units[3];
    const qvPlatform::Converted made = qvPlatform::decodeUtf8(text.data(), length, units, 3);
    const Expected<Wide> expected = decodeByModel(text, false);
    differences +=
        std::basic_string_view<qv::WChar>(units, made.count) != expected.text || made.valid != expected.valid;
    qvPlatform::Converted native = qvPlatform::decodeNative(text.data(), length, units, 3);
    char back[9];
    native = qvPlatform::encodeNative(units, native.count, back, sizeof back);
    differences += std::string_view(back, native.count) != text || !native.valid;
  }
  EXPECT_EQ(differences, 0);
}

TEST(PlatformText, EveryUnitAndEveryKindOfNeighbours) {
  for (unsigned int unit = 0; unit <= 0xFFFF; ++unit) expectEncoded(Wide(1, static_cast<qv::WChar>(unit)));
  const Wide kinds = {0,      'a',    0x7F,   0x80,   0x7FF,  0x800,  0xD7FF, 0xD800, 0xDBFF, 0xDC00,
                      0xDC3A, 0xDC5C, 0xDC7F, 0xDC80, 0xDCFF, 0xDD00, 0xDFFF, 0xE000, 0xFFFF};
  for (const qv::WChar a : kinds)
    for (const qv::WChar b : kinds)
      for (const qv::WChar c : kinds) expectEncoded({a, b, c});
}

/// Runs of every kind and length, so that every block, its remainder and its end are met, with some damage.
TEST(PlatformText, RandomRunsAgainstTheModel) {
  qvTest::Random random(20);
  const char32_t lowest[] = {0, 0x80, 0x800, 0xE000, 0x10000};
  const char32_t highest[] = {0x7F, 0x7FF, 0xD7FF, 0xFFFF, 0x10FFFF};
  const char* const illFormed[] = {"\xED\xA0\x80", "\xED\xBF\xBF", "\xE0\x80\x80",     "\xE0\x9F\xBF",
                                   "\xC1\xBF",     "\xE3\x81",     "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",
                                   "\x80",         "\xFF"};
  for (int round = 0; round < 4000; ++round) {
    std::string narrow;
    Wide wide;
    for (int run = static_cast<int>(random.below(8)); run >= 0; --run) {
      const auto kind = random.below(5);
      for (auto count = random.below(40); count > 0; --count) {
        const auto c = static_cast<char32_t>(lowest[kind] + random.below(highest[kind] - lowest[kind] + 1));
        narrow += encoded(c);
        addUnits(wide, c);
        if (random.oneIn(80)) narrow += illFormed[random.below(std::size(illFormed))];
      }
    }
    for (auto damage = random.below(4); damage > 0 && !narrow.empty(); --damage) {
      narrow[random.below(narrow.size())] = static_cast<char>(random.below(256));
      wide[random.below(wide.size())] = static_cast<qv::WChar>(0xD800 + random.below(0x800));
    }
    expectDecoded(narrow);
    expectEncoded(wide);
    if (HasFatalFailure()) return;
    bool valid = false;
    ASSERT_EQ(qvPlatform::encodeNative(qvPlatform::decodeNative(narrow), &valid), narrow);
    ASSERT_TRUE(valid);
  }
}

} // namespace
