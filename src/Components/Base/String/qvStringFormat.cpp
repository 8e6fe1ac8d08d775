#include "Base/String/qvStringFormat.h"

#include "Base/String/qvStringFormatEngine.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

template <class C>
int formatWithin(C* buffer, std::size_t size, const C* format, va_list args) noexcept {
  if (!buffer || size == 0) return -1;
  const std::size_t length = qvString::formatText(buffer, size, format, args);
  return length >= size - 1 || length > INT_MAX ? -1 : static_cast<int>(length);
}

} // namespace

int QL_vsnprintf(char* buffer, std::size_t size, const char* format, va_list args) noexcept {
  return formatWithin(buffer, size, format, args);
}

int QL_snprintf(char* buffer, std::size_t size, const char* format, ...) noexcept {
  va_list args;
  va_start(args, format);
  const int length = formatWithin(buffer, size, format, args);
  va_end(args);
  return length;
}

int QL_vswprintf(qv::WChar* buffer, std::size_t size, const qv::WChar* format, va_list args) noexcept {
  return formatWithin(buffer, size, format, args);
}

int QL_swprintf(qv::WChar* buffer, std::size_t size, const qv::WChar* format, ...) noexcept {
  va_list args;
  va_start(args, format);
  const int length = formatWithin(buffer, size, format, args);
  va_end(args);
  return length;
}

qv::WChar* QL_convert_string_format(const qv::WChar* format) noexcept {
  if (!format) return nullptr;
  const std::size_t bytes = (std::char_traits<qv::WChar>::length(format) + 1) * sizeof(qv::WChar);
  qv::WChar* const copy = static_cast<qv::WChar*>(std::malloc(bytes));
  if (!copy) return nullptr;
  std::memcpy(copy, format, bytes);
  for (qv::WChar* p = copy; *p;) {
    if (*p++ != '%') continue;
    if (*p == '%') {
      ++p;
      continue;
    }
    p += qvString::plainLetter(p) - p;
    if (*p == 's' || *p == 'S' || *p == 'c' || *p == 'C')
      *p = static_cast<qv::WChar>(*p ^ 0x20); // the other case
    if (*p) ++p;
  }
  return copy;
}
