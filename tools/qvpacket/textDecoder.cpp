#include "textDecoder.h"

#include "number.h"

#include <algorithm>

void TextDecoder::ended(const char* where) const {
  if (packet_.isCut) throw Cut();
  damaged(at_, std::string("a packet ends inside ") + where);
}

void TextDecoder::passBlanks() { at_ = std::min(body_.find_first_not_of(" \n\r\t", at_), body_.size()); }

bool TextDecoder::step() {
  passBlanks();
  if (at_ == body_.size()) {
    if (!levels_.empty()) ended("a chunk or sub-packet");
    return false;
  }
  const std::size_t at = at_;
  const char tag = takeTag();
  if (tag == '[') return open(Container::chunk, 0), true;
  if (tag == '<') return open(Container::subPacket, 0), true;
  if (tag == ']') return closeAs(Container::chunk), true;
  if (tag == '>') return closeAs(Container::subPacket), true;
  const Kind* const kind = kindOf(tag);
  if (!kind && !isUnknown(tag)) damaged(at, byteText(tag) + " is no type tag");
  showValue(kind ? *kind : Kind{tag, unknownKind, Kind::Form::text, 0});
  return true;
}

void TextDecoder::closeAs(Container container) {
  if (levels_.empty() || levels_.back().container != container)
    damaged(at_ - 1, "a chunk or sub-packet ends that did not begin");
  close();
}

char TextDecoder::takeTag() {
  if (at_ < body_.size() && body_[at_] == '\\') ++at_;
  if (at_ == body_.size()) ended("a value");
  return body_[at_++];
}

std::string_view TextDecoder::takeWord() {
  const std::size_t begin = at_;
  at_ = std::min(body_.find_first_of(" \n\r\t[]<>", at_), body_.size());
  if (at_ == begin && at_ == body_.size()) ended("a value");
  if (at_ == begin) damaged(at_, "a value is missing behind its type tag");
  return body_.substr(begin, at_ - begin);
}

std::string TextDecoder::takeText() {
  std::string text;
  for (++at_; at_ < body_.size() && body_[at_] != '"'; ++at_) {
    if (body_[at_] == '\\') ++at_;
    if (at_ < body_.size()) text += body_[at_];
  }
  if (at_ >= body_.size()) at_ = body_.size(), ended("a text");
  ++at_;
  return text;
}

void TextDecoder::showValue(const Kind& kind) {
  if (kind.form == Kind::Form::array) return visitor_.array(kind.name);
  const bool isText = at_ < body_.size() && body_[at_] == '"';
  if (kind.form == Kind::Form::text && isText) return visitor_.value(kind.name, takeText());
  if (kind.tag == 's') damaged(at_, "a text does not begin with a quote");
  const std::size_t at = at_;
  if (kind.form == Kind::Form::reference) {
    const char tag = takeTag();
    if (tag != 'I' && !isUnknown(tag)) damaged(at, byteText(tag) + " stands where the type tag 'I' should");
  }
  showNumber(kind, takeWord());
}

/// A word that is no number of its kind is shown as it is: readers take it for some number nevertheless.
void TextDecoder::showNumber(const Kind& kind, std::string_view word) {
  Scalar shown = word;
  switch (kind.form) {
  case Kind::Form::boolean:
    if (word == "0" || word == "1") shown = word == "1";
    break;
  case Kind::Form::integer:
    if (const auto number = parseSigned(word, kind.width)) shown = *number;
    break;
  case Kind::Form::natural:
  case Kind::Form::reference:
    if (const auto number = parseUnsigned(word, kind.width)) shown = *number;
    break;
  case Kind::Form::real:
    if (const auto number = parseDouble(word)) shown = *number;
    break;
  default:
    break;
  }
  visitor_.value(kind.name, shown);
}
