// The text encoding: what each operation writes, character by character, and what a reader makes of that, of
// text by other hands, and of damage.
#include "Base/IO/tests/ioContextObjects.h"
#include "testing/qvTestDecimalComma.h"

namespace {

using namespace ioContextObjects;
using qvTest::readPackets;
using qvTest::writePackets;

/// The header and the type table with one type "t", which gets the number 2, and then `packets`.
std::string withFront(const std::string& packets, char method = '0') {
  return std::string("^@\n1\n") + (ioHeader::systemIsLittleEndian() ? '1' : '0') + ' ' + method +
         " 1\n1 2 4 8 4 8 8\n@\n   0 packetFile_string\n   1 packetFile_EOF\n   2 t\n@\n" + packets;
}
/// A file with one packet of that body.
std::string file(const std::string& body) { return withFront("{ 2 0 " + body + "}\n{ 1 0 }\n"); }

constexpr char valuesText[] =
    "{ 2 0 1 1 0 1 -128 97 0 -128 255 0 127 255 -2 -32768 4660 -1 4660 0 4660 65535 -3 -2147483648 305419896 "
    "-1 "
    "305419896 0 305419896 4294967295 -4 -9223372036854775808 1311768467463790320 -1 1311768467463790320 0 "
    "1311768467463790320 18446744073709551615 0.1 1.5 -inf 1.401298e-45 0.1 -0.3333333333333333 "
    "8.98846567431158e+307 -0 \"\" \"t\xC3\xBC\" 7 }\n{ 1 0 }\n";
constexpr char taggedValuesText[] =
    "{ 2 0 b1 Bb1 b0 b1 c-128 1c97 c0 c-128 C255 2C0 C127 C255 h-2 3h-32768 h4660 h-1 H4660 4H0 H4660 H65535 "
    "i-3 "
    "5i-2147483648 i305419896 i-1 I305419896 6I0 I305419896 I4294967295 l-4 7l-9223372036854775808 "
    "l1311768467463790320 l-1 L1311768467463790320 8L0 L1311768467463790320 L18446744073709551615 f0.1 9f1.5 "
    "f-inf "
    "f1.401298e-45 d0.1 0d-0.3333333333333333 d8.98846567431158e+307 d-0 s\"\" s\"t\xC3\xBC\" rI7 }\n{ 1 0 "
    "}\n";

TEST(ioContextAscii, everyValueAndStructureHasItsTextInAnyLocale) {
  const qvTest::DecimalComma comma; // or none, where there is no such locale
  EXPECT_EQ(writePackets(ioWriteAscii, {"t"}, writeValues), withFront(valuesText));
  EXPECT_EQ(writePackets(ioWriteAsciiDebug, {"t"}, writeValues), withFront(taggedValuesText, '2'));
  EXPECT_EQ(readPackets(withFront(valuesText), {{"t", readValues}}), ioOK);
  EXPECT_EQ(readPackets(withFront(taggedValuesText, '2'), {{"t", readValues}}), ioOK);
  EXPECT_EQ(writePackets(ioWriteAscii, {"t"}, writeStructure),
            withFront("{ 2 1 1 1 \n  [ 2 ] \n  [ ] \n  [ \n  < 3 \n  [ 52 ] > 53 ] }\n{ 1 0 }\n"));
  EXPECT_EQ(
      writePackets(ioWriteAsciiDebug, {"t"}, writeStructure),
      withFront("{ 2 1 rI1 i1 \n  [ h2 ] \n  [ ] \n  [ \n  < i3 \n  [ c52 ] > c53 ] }\n{ 1 0 }\n", '2'));
}

TEST(ioContextAscii, textsOfAnyCharactersComeBack) {
  std::string all;
  for (int c = 1; c < 256; ++c) all += char(c);
  const struct {
    std::string text, written;
  } rows[] = {
      {"a<b", R"("a\<b" )"}, {"\"<>[\\]{}", R"("\"\<\>\[\\\]\{\}" )"}, {" \n \t\\n", "\" \n \t\\\\n\" "},
      {"\\", R"("\\" )"},    {std::string(100'000, '}'), ""},          {all, ""}};
  for (const bool tagged : {false, true}) {
    const std::string written =
        writePackets(tagged ? ioWriteAsciiDebug : ioWriteAscii, {"t"}, [&](ioWriteContext& c) {
          c.startPacket("t", nullptr);
          for (const auto& row : rows) c.writeCString(row.text.c_str()), c.writeInt(5);
          c.endPacket();
        });
    int packets = 0;
    const auto client = [&](ioReadContext& c) {
      for (const auto& row : rows) {
        EXPECT_EQ(c.fetchCString(), row.text);
        EXPECT_EQ(c.fetchInt(), 5);
      }
      ++packets;
    };
    EXPECT_EQ(readPackets(written, {{"t", client}}), ioOK);
    EXPECT_EQ(packets, 1);
    for (const auto& row : rows) EXPECT_NE(written.find(row.written), written.npos);
  }
}

TEST(ioContextAscii, allContextsShareOneText) {
  const char *first = nullptr, *second = nullptr;
  const auto inner = [&](ioReadContext& c) { second = c.fetchCString(); };
  const auto outer = [&](ioReadContext& c) {
    first = c.fetchCString();
    EXPECT_EQ(readPackets(file("\"two\" "), {{"t", inner}}), ioOK);
    EXPECT_EQ(first, second);
    EXPECT_STREQ(first, "two");
  };
  EXPECT_EQ(readPackets(file("\"one\" "), {{"t", outer}}), ioOK);
}

/// Does one thing for each letter of `script`, and tells what came of it.
std::string played(ioReadContext& c, const std::string& script) {
  std::string log;
  const auto tell = [&](auto value) { log += std::to_string(value) + ' '; };
  for (const char step : script) {
    if (step == 'b') tell(int(c.fetchBool()));
    if (step == 'c') tell(int(static_cast<signed char>(c.fetchChar())));
    if (step == 'C') tell(int(c.fetchUChar()));
    if (step == 'h') tell(c.fetchShort());
    if (step == 'H') tell(c.fetchUShort());
    if (step == 'i') tell(c.fetchInt());
    if (step == 'I') tell(c.fetchUInt());
    if (step == 'd') tell(int(c.fetchDouble()));
    if (step == 't') tell(int(c.readTypeTag()));
    if (step == 's') {
      const char* const text = c.fetchCString();
      log += text ? '"' + std::string(text) + "\" " : "null ";
    }
    if (step == '[') c.nextChunk(), log += c.moreInChunk() ? "more " : "none ";
    if (step == '<') c.startSubPacket();
    if (step == '>') c.endSubPacket();
  }
  return log;
}

TEST(ioContextAscii, bodiesByOtherHandsReadAsFarAsTheyGo) {
  const struct {
    int line;
    std::string body;
    const char *script, *result;
  } rows[] = {
      {__LINE__, "256 257 -1 abc -5 ", "bbbbb", "0 1 1 0 1 "},
      {__LINE__, "128 300 -1 70000 -40000 99999999999 -1 ", "cCCHhIi",
       "-128 44 255 4464 25536 4294967295 -1 "},
      {__LINE__, "5\n6 7 ", "iii", "5 7 0 "},   // only a blank ends a token
      {__LINE__, "  7 8 ", "iiii", "7 7 7 8 "}, // and each blank ends one
      {__LINE__, "", "bcChHiIdts[", "0 0 0 0 0 0 0 0 0 null none "},
      {__LINE__, "7", "iiid", "7 0 0 0 "},
      {__LINE__, std::string("5\0 6 ", 5), "iii", "5 6 0 "},
      {__LINE__, R"(x "a" 5 )", "si", "\"a\" 5 "},
      {__LINE__, R"("a\"b\c" "" )", "sss", "\"a\"bc\" \"\" null "},
      {__LINE__, R"("a")", "si", "null 0 "}, // no blank behind it
      {__LINE__, R"("a )", "si", "null 0 "},
      {__LINE__, R"("a\")", "si", "null 0 "},
      {__LINE__, R"(")", "si", "null 0 "},
      {__LINE__, R"(\\\[i)", "ttttt", "92 91 105 0 0 "},
      {__LINE__, "\n  [ ] \n  [ 1 ] 2 ", "[[i[i", "none more 1 none 2 "},
      {__LINE__, "\n  [ 1 2 ] \n  [ 3 ] ", "i[i[i",
       "0 none 0 more 3 "},                             // the first takes the newline and a blank
      {__LINE__, "\n [ 1 ] 2 ", "[iii", "none 0 0 1 "}, // not as a writer writes it
      {__LINE__, "\n  [1 ] 2 ", "[", "none "},
      {__LINE__, "\n  [ ", "[[", "more none "},
      {__LINE__, "\n  [ \n  < 1 ] \n  < > 2 > ] 3 ", "[[i", "more none 3 "},
      {__LINE__, "\n  [ \"\\] \\\\\" ] 3 ", "[[i", "more none 3 "},
      {__LINE__, "\n  < \n  [ 1 > 2 ", "<[[", "more none "}, // a skipped chunk ends before the mark
      {__LINE__, "\n  < 1 2 > 3 ", "<i>i", "1 3 "},
      {__LINE__, "\n  < \n  < \n  [ 1 ] > \"\\> \\\\\" \n  [ 2 ] > 3 ", "<>i", "3 "},
      {__LINE__, "\n  < ] ] > 3 ", "<>i", "3 "},
      {__LINE__, "\n  < 1 \\\\", "<>i<>", "0 "},
      {__LINE__, "\n  < < 1 > ", "<>i", "0 "},
      {__LINE__, "1 ", "<>i<<>>i", "0 0 "},
  };
  for (const auto& row : rows) {
    std::string result = "not read";
    EXPECT_EQ(readPackets(file(row.body), {{"t", [&](ioReadContext& c) { result = played(c, row.script); }}}),
              ioOK);
    EXPECT_EQ(result, row.result) << row.line;
  }
}

TEST(ioContextAscii, headsThatMakeNoSenseAndPacketsThatDoNotEndAreBadData) {
  for (const char* packet : {"{ -1 0 }", "{ 3 0 }", "{ 99999999999 0 }", "{2"})
    EXPECT_EQ(readPackets(withFront(packet), {}), ioBadData) << packet;
  // What stands between packets, or before the numbers, is passed over; so is a mode of a later version.
  int value = 0;
  const qvTest::PacketReaders readers = {{"t", [&](ioReadContext& c) { value += c.fetchInt(); }}};
  const std::string whole = withFront("anything\n{ 2 2 8 }\n{\n 2 0 \\} 7 }{ 2 0 5 }\n{ 1 0 }");
  EXPECT_EQ(readPackets(whole, readers), ioOK);
  EXPECT_EQ(value, 5);
  for (std::size_t open = whole.find("{"); open != whole.npos; open = whole.find('{', open + 1))
    for (std::size_t size = open + 1; size < whole.size() && whole[size - 1] != '}'; ++size)
      EXPECT_EQ(readPackets(whole.substr(0, size), readers), ioBadData) << size;
}

TEST(ioContextAscii, escapesLieAcrossTheBordersOfBuffers) {
  const std::string text = std::string(3000, 'x') + std::string(20, '\\') + "}" + std::string(5000, '\\');
  const std::string written = writePackets(ioWriteAscii, {"t"}, [&](ioWriteContext& c) {
    for (int i = 0; i < 100; ++i) {
      c.startPacket("t", nullptr);
      c.writeCString(text.c_str() + i);
      c.endPacket();
    }
  });
  std::size_t packets = 0;
  const auto client = [&](ioReadContext& c) { EXPECT_EQ(c.fetchCString(), text.substr(packets++)); };
  EXPECT_EQ(readPackets(written, {{"t", client}}), ioOK);
  EXPECT_EQ(packets, 100u);
}

} // namespace
