#include "decoder.h"

#include "binaryDecoder.h"
#include "textDecoder.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

using Form = Kind::Form;

constexpr Kind kinds[] = {
    {'b', "Bool", Form::boolean, 1},        {'c', "Char", Form::integer, 1},
    {'C', "UChar", Form::natural, 1},       {'h', "Short", Form::integer, 2},
    {'H', "UShort", Form::natural, 2},      {'i', "Int", Form::integer, 4},
    {'I', "UInt", Form::natural, 4},        {'l', "Int64", Form::integer, 8},
    {'L', "UInt64", Form::natural, 8},      {'f', "Float", Form::real, 4},
    {'d', "Double", Form::real, 8},         {'s', "CString", Form::text, 0},
    {'r', "Reference", Form::reference, 4}, {'B', "BoolArray", Form::array, 0},
    {'1', "CharArray", Form::array, 0},     {'2', "UCharArray", Form::array, 0},
    {'3', "ShortArray", Form::array, 0},    {'4', "UShortArray", Form::array, 0},
    {'5', "IntArray", Form::array, 0},      {'6', "UIntArray", Form::array, 0},
    {'7', "Int64Array", Form::array, 0},    {'8', "UInt64Array", Form::array, 0},
    {'9', "FloatArray", Form::array, 0},    {'0', "DoubleArray", Form::array, 0},
};

} // namespace

const Kind* kindOf(char tag) {
  const auto kind =
      std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind& k) { return k.tag == tag; });
  return kind == std::end(kinds) ? nullptr : kind;
}

std::string byteText(char byte) {
  char text[8];
  std::snprintf(text, sizeof text, "0x%02x", static_cast<unsigned char>(byte));
  return text;
}

std::optional<Damage> Decoder::decode() {
  const std::optional<Damage> damage = damageIn([&] {
    try {
      while (step()) {
      }
    } catch (const Cut&) {
    }
  });
  while (!levels_.empty()) close();
  return damage;
}

void Decoder::open(Container container, std::size_t end) {
  // Readers of the output, too, may handle what is nested by recursion.
  constexpr std::size_t deepest = 256;
  if (levels_.size() == deepest) damaged(at_, "chunks and sub-packets are nested too deep");
  levels_.push_back({container, end});
  visitor_.open(container);
}

void Decoder::close() {
  levels_.pop_back();
  visitor_.close();
}

std::optional<Damage> decodeBody(const FileHeader& header, const Packet& packet, Visitor& visitor) {
  if (packet.body.empty()) return std::nullopt;
  if (!header.isTagged() || (packet.mode != 0 && packet.mode != 1)) {
    visitor.bytes(packet.body, packet.bodyOffset,
                  header.isTagged() ? "readers pass over this reference mode" : nullptr);
    return std::nullopt;
  }
  if (header.isText()) return TextDecoder(packet, visitor).decode();
  return BinaryDecoder(header.littleEndian, packet, visitor).decode();
}
