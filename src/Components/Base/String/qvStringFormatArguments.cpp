#include "Base/String/qvStringFormatArguments.h"

#include "Base/String/qvStringFormatDirective.h"

#include <string>

namespace qvString {

namespace {

using Parsed = Directive<qv::WChar>;

/// How a size is told; those of the same argument alike.
const char* sizeText(Size size) {
  switch (size) {
  case Size::Char:
    return "hh";
  case Size::Short:
    return "h";
  case Size::Long:
    return "l";
  case Size::LongLong:
  case Size::LongDouble: // of an integer
  case Size::Int64:
    return "I64";
  case Size::Max:
    return "j";
  case Size::Pointer:
    return "z";
  default:
    return "";
  }
}

std::string letterText(Kind kind, const Parsed& directive, const qv::WChar* afterPercent) {
  switch (kind) {
  case Kind::Signed:
    return std::string(sizeText(directive.size)) + 'd';
  case Kind::Unsigned:
    return std::string(sizeText(directive.size)) + directive.letter;
  case Kind::Floating:
    return std::string(directive.size == Size::LongDouble ? "L" : "") + directive.letter;
  case Kind::String:
    return takesWide(directive, afterPercent) ? "S" : "s";
  case Kind::Character:
    return takesWide(directive, afterPercent) ? "C" : "c";
  default:
    return "p";
  }
}

} // namespace

qv::vector<CString> formatArguments(const qv::WChar* format) {
  qv::vector<CString> arguments;
  while (format && *format) {
    if (*format++ != '%') continue;
    if (*format == '%') {
      ++format;
      continue;
    }
    const Parsed directive = scanDirective(format);
    const Kind kind = kindOf(directive);
    if (kind != Kind::Unknown) {
      const std::string stars =
          std::string(directive.starWidth ? "*" : "") + (directive.starPrecision ? ".*" : "");
      arguments.append(CString('%' + stars + letterText(kind, directive, format)));
    }
    format = directive.end;
  }
  return arguments;
}

} // namespace qvString
