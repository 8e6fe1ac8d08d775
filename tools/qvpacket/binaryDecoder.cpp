#include "binaryDecoder.h"

#include "number.h"

#include <algorithm>
#include <bit>

std::size_t BinaryDecoder::end() const {
  return levels_.empty() ? static_cast<std::size_t>(packet_.size) : levels_.back().end;
}

std::string_view BinaryDecoder::take(std::size_t count) {
  if (count > end() - at_) damaged(at_, "an item passes the end of what it stands in");
  if (count > body_.size() - at_) throw Cut();
  at_ += count;
  return body_.substr(at_ - count, count);
}

void BinaryDecoder::takeTag(char expected) {
  const std::size_t at = at_;
  const char tag = take(1)[0];
  if (tag != expected && !isUnknown(tag))
    damaged(at, byteText(tag) + " stands where the type tag '" + expected + "' should");
}

bool BinaryDecoder::step() {
  if (at_ == end()) {
    if (levels_.empty()) return false;
    close();
    return true;
  }
  const std::size_t at = at_;
  const char tag = take(1)[0];
  if (tag == ',') return showContainer(Container::chunk), true;
  if (tag == '.') return showContainer(Container::subPacket), true;
  if (isUnknown(tag)) {
    visitor_.array(unknownKind);
    showRest("their type tag stands for any");
    return true;
  }
  const Kind* const kind = kindOf(tag);
  if (!kind) damaged(at, byteText(tag) + " is no type tag");
  kind->form == Kind::Form::array ? showArray(*kind) : showValue(*kind);
  return true;
}

void BinaryDecoder::showContainer(Container container) {
  constexpr std::int64_t emptySize = 5; // the size itself, with its tag
  const std::size_t begin = at_;
  takeTag('i');
  const std::int64_t size = signedNumber(take(4), littleEndian_);
  if (size < emptySize || size > static_cast<std::int64_t>(end() - begin))
    damaged(begin - 1, std::string(container == Container::chunk ? "a chunk" : "a sub-packet") +
                           " has the impossible size " + std::to_string(size));
  open(container, begin + static_cast<std::size_t>(size));
}

void BinaryDecoder::showValue(const Kind& kind) {
  if (kind.form == Kind::Form::text) return showText(kind);
  if (kind.form == Kind::Form::reference) takeTag('I');
  const std::string_view bytes = take(static_cast<std::size_t>(kind.width));
  const std::uint64_t number = unsignedNumber(bytes, littleEndian_);
  switch (kind.form) {
  case Kind::Form::boolean:
    return visitor_.value(kind.name, number != 0);
  case Kind::Form::integer:
    return visitor_.value(kind.name, signedNumber(bytes, littleEndian_));
  case Kind::Form::real:
    if (kind.width == 8) return visitor_.value(kind.name, std::bit_cast<double>(number));
    return visitor_.value(kind.name, std::bit_cast<float>(static_cast<std::uint32_t>(number)));
  default:
    return visitor_.value(kind.name, number);
  }
}

void BinaryDecoder::showText(const Kind& kind) {
  const std::string_view rest = body_.substr(at_, std::min(end(), body_.size()) - at_);
  const std::size_t size = rest.find('\0');
  if (size == rest.npos && end() > body_.size()) throw Cut();
  if (size == rest.npos) damaged(at_, "a text passes the end of what it stands in");
  visitor_.value(kind.name, rest.substr(0, size));
  at_ += size + 1;
}

void BinaryDecoder::showArray(const Kind& kind) {
  visitor_.array(kind.name);
  // Only the elements of this kind have tags of their own.
  if (kind.tag != 'B') showRest("the length of an array is not stored");
}

void BinaryDecoder::showRest(const char* why) {
  const std::size_t held = std::min(end(), body_.size());
  if (held > at_) visitor_.bytes(body_.substr(at_, held - at_), offsetOf(at_), why);
  at_ = held;
  if (held < end()) throw Cut();
}
