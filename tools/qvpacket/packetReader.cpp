#include "packetReader.h"

#include "input.h"
#include "number.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

/// A body beyond this is passed over. It holds any packet that a program would want to keep in memory, and
/// keeps a few bytes that expand without end from taking all of it.
constexpr std::int64_t largestBody = std::int64_t{1} << 28;

constexpr std::size_t mostTypes = 100000;

// ---- the stream header ----

[[noreturn]] void stopHere(const Input& input, const std::string& what) {
  throw Damage{input.offset(), input.endReason() + what};
}

/// A decimal number, as the library reads it: blanks are passed over, and so is the byte behind the number.
/// One that is far too large stays so.
std::int64_t headerNumber(Input& input) {
  int byte = input.take();
  while (byte == ' ' || byte == '\n' || byte == '\t') byte = input.take();
  const bool isNegative = byte == '-';
  if (isNegative) byte = input.take();
  std::int64_t number = 0;
  for (; byte >= '0' && byte <= '9'; byte = input.take())
    if (number < std::numeric_limits<int>::max()) number = number * 10 + (byte - '0');
  if (byte < 0) stopHere(input, " inside the header");
  return isNegative ? -number : number;
}

void readMarker(Input& input) {
  const std::int64_t begin = input.offset();
  const int first = input.peek();
  const std::string marker = input.take(3);
  if (marker == "^@\n") return;
  if (marker.size() < 3 && (!input.endedWell() || marker.empty())) stopHere(input, " before a packet file");
  if (first == 0x8F) throw Damage{begin, "this is a package: -entry names a packet file in it"};
  throw Damage{begin, first == 0x1F ? "no packet file begins here; it may be compressed: -compress"
                                    : "no packet file begins here"};
}

// ---- the type table ----

/// A line with its newline, as long as a type's line may be.
std::string tableLine(Input& input) {
  constexpr std::size_t longest = 89;
  const std::int64_t begin = input.offset();
  std::string line;
  while (line.empty() || line.back() != '\n') {
    const int byte = input.take();
    if (byte < 0) stopHere(input, " inside the type table");
    line += static_cast<char>(byte);
    if (line.size() > longest) throw Damage{begin, "a line of the type table is too long"};
  }
  return line;
}

/// Takes the next word off `text`, without the blanks in front of it.
std::string_view takeWord(std::string_view& text) {
  constexpr const char* blanks = " \t\r\n\v\f";
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(blanks));
  text.remove_prefix(word.size());
  return word;
}

// ---- packets ----

void checkType(const Packet& packet, const FileHeader& header) {
  if (!header.hasType(packet.id))
    throw Damage{packet.offset,
                 "a packet has the type " + std::to_string(packet.id) + ", which the table lacks"};
}

Packet readBinaryPacket(Input& input, const FileHeader& header) {
  constexpr std::size_t frame = 12;
  Packet packet;
  packet.offset = input.offset();
  const std::string head = input.take(frame);
  if (head.size() < frame) stopHere(input, head.empty() ? " before the end packet" : " inside a packet");
  const auto number = [&](std::size_t at) {
    return static_cast<int>(signedNumber(std::string_view(head).substr(at, 4), header.littleEndian));
  };
  packet.id = number(0);
  packet.mode = number(4);
  packet.size = number(8);
  packet.bodyOffset = input.offset();
  checkType(packet, header);
  if (packet.size < 0) throw Damage{packet.offset, "a packet has a negative size"};
  packet.body = input.take(std::min(packet.size, largestBody));
  const std::int64_t missing = packet.size - static_cast<std::int64_t>(packet.body.size());
  packet.tooLarge = missing > 0 && input.peek() >= 0;
  packet.isCut = !input.skip(missing);
  if (packet.tooLarge) packet.body = std::string();
  return packet;
}

/// Reads up to the closing mark, which is taken too and not kept.
void readTextBody(Input& input, Packet& packet) {
  bool isEscaped = false;
  for (;;) {
    const int byte = input.take();
    packet.isCut = byte < 0;
    if (packet.isCut || (byte == '}' && !isEscaped)) break;
    isEscaped = byte == '\\' && !isEscaped;
    ++packet.size;
    if (packet.size <= largestBody) packet.body += static_cast<char>(byte);
  }
  packet.tooLarge = packet.size > largestBody;
}

/// Takes a number and the blank behind it off the front of a text packet.
int takeFrameNumber(const Input& input, Packet& packet, std::size_t& at) {
  const std::size_t begin = std::min(packet.body.find_first_not_of(" \n", at), packet.body.size());
  const std::size_t end = std::min(packet.body.find(' ', begin), packet.body.size());
  if (end == packet.body.size() && packet.isCut) stopHere(input, " inside a packet");
  const std::optional<std::int64_t> number =
      parseSigned(std::string_view(packet.body).substr(begin, end - begin), 4);
  if (!number) throw Damage{packet.offset, "a packet does not begin with two numbers"};
  at = std::min(end + 1, packet.body.size());
  return static_cast<int>(*number);
}

Packet readTextPacket(Input& input, const FileHeader& header) {
  // As in the library, what stands between packets is passed over.
  while (input.peek() != '{')
    if (input.take() < 0) stopHere(input, " before the end packet");
  Packet packet;
  packet.offset = input.offset();
  input.take();
  readTextBody(input, packet);
  std::size_t at = 0;
  packet.id = takeFrameNumber(input, packet, at);
  packet.mode = takeFrameNumber(input, packet, at);
  packet.body.erase(0, at);
  packet.size -= static_cast<std::int64_t>(at);
  packet.bodyOffset = packet.offset + 1 + static_cast<std::int64_t>(at);
  if (packet.tooLarge) packet.body = std::string();
  checkType(packet, header);
  return packet;
}

} // namespace

FileHeader readStreamHeader(Input& input) {
  readMarker(input);
  const std::int64_t begin = input.offset();
  headerNumber(input); // the version
  FileHeader header;
  header.littleEndian = headerNumber(input) != 0;
  const std::int64_t method = headerNumber(input);
  const bool isPortable = headerNumber(input) != 0;
  std::int64_t sizes[7];
  for (std::int64_t& size : sizes) size = headerNumber(input);
  while (input.peek() != '@')
    if (input.take() < 0) stopHere(input, " inside the header");
  if (!input.skip(2)) stopHere(input, " inside the header");
  if (method < 0 || method > 3) throw Damage{begin, "the header names a method that is not known"};
  header.method = static_cast<int>(method);
  constexpr std::int64_t expected[] = {1, 2, 4, 8, 4, 8};
  const bool hasSizes = std::memcmp(sizes, expected, sizeof expected) == 0;
  if (!header.isText() && (!isPortable || !hasSizes))
    throw Damage{begin, "the header tells of numbers of other sizes"};
  return header;
}

void readTypeTable(Input& input, FileHeader& header) {
  std::optional<std::int64_t> last;
  for (;;) {
    const std::int64_t begin = input.offset();
    const std::string line = tableLine(input);
    if (line[0] == '@') return;
    std::string_view rest = line.c_str(); // as the library does, up to a 0 byte
    const std::optional<std::int64_t> number = parseSigned(takeWord(rest), 4);
    const std::string_view name = takeWord(rest);
    if (!number || name.empty()) throw Damage{begin, "a line of the type table is no number and name"};
    if (last && *number != *last + 1) throw Damage{begin, "a number of the type table is out of order"};
    if (header.types.size() == mostTypes) throw Damage{begin, "the type table has too many lines"};
    last = number;
    header.types.emplace_back(name);
  }
}

Packet readPacket(Input& input, const FileHeader& header) {
  return header.isText() ? readTextPacket(input, header) : readBinaryPacket(input, header);
}

bool anotherFileFollows(Input& input, const FileHeader& header) {
  if (header.isText() && input.peek() == '\n') input.take();
  if (input.peek() == '^') return true;
  if (input.peek() >= 0) throw Damage{input.offset(), "bytes follow that belong to no packet file"};
  if (!input.endedWell()) stopHere(input, " behind the end packet");
  return false;
}
