#include "Base/String/qvStringBase.h"

namespace qvString {

static_assert(sizeof(String) == sizeof(void*));

String::~String() = default;

bool String::isEmpty() const { return length() == 0; }
bool String::isNull() const { return isEmpty(); }
unsigned int String::length() const { return 0; }
unsigned int String::first() const { return 0; }
unsigned int String::last() const {
  const unsigned int size = length();
  return size == 0 ? 0 : size - 1;
}
unsigned int String::maxSize() const { return 0; }

bool String::doBoundsCheck(unsigned int pos) const { return pos < length(); }

bool String::doBoundsCheck(unsigned int pos, unsigned int count) const {
  return doBoundsCheck(pos) && (count == npos || count <= length());
}

} // namespace qvString
