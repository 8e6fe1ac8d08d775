#include "Base/Utility/qvUtilText.h"

#include "Base/String/qvStringCharacter.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace qvUtil {

namespace {

using qv::WChar;
using qvString::CString;
using qvString::IString;

template <class String, class C>
void addTo(qv::vector<String>& parts, const C* chars, std::size_t count) {
  parts.emplace_back().append(chars, count);
}

/// What a copy of a text holds: all bytes, but wide characters up to the first NUL only.
std::string_view viewOfCopy(const CString& text) { return text.view(); }
std::basic_string_view<WChar> viewOfCopy(const IString& text) { return text.asWChar(); }

template <class String, class IsSeparator>
qv::vector<String> splitAt(const String& text, IsSeparator isSeparator, bool skipEmpty, bool keepSeparators) {
  qv::vector<String> parts;
  const auto copy = viewOfCopy(text);
  const auto* const chars = copy.data();
  const std::size_t length = copy.size();
  std::size_t start = 0;
  for (std::size_t i = 0; i < length; ++i) {
    if (!isSeparator(chars[i])) continue;
    if (i > start || (!skipEmpty && !keepSeparators)) addTo(parts, chars + start, i - start);
    if (keepSeparators) addTo(parts, chars + i, 1);
    start = i + 1;
  }
  if (start < length) addTo(parts, chars + start, length - start);
  return parts;
}

template <class C>
auto equals(C separator) {
  return [separator](C c) { return c == separator; };
}

template <class String>
String joined(const qv::vector<String>& parts) {
  std::size_t length = 0;
  for (const String& part : parts) length += part.length();
  String all;
  all.reserve(static_cast<unsigned int>(std::min<std::size_t>(length, all.maxSize())));
  for (const String& part : parts) all.append(part);
  return all;
}

template <class IsSpecial>
IString withBackslashes(const IString& text, IsSpecial isSpecial) {
  const WChar* const chars = text.asWChar();
  const std::size_t length = text.length();
  IString result;
  std::size_t start = 0;
  for (std::size_t i = 0; i < length; ++i) {
    if (!isSpecial(chars[i])) continue;
    result.append(chars + start, i - start);
    result.append(QV_W('\\'));
    start = i;
  }
  return result.append(chars + start, length - start);
}

/// Cuts a text into tokens at spaces, from its start to its end or to a failure.
class Tokenizer {
public:
  Tokenizer(const CString& text, qv::vector<CString>& tokens)
      : chars_(text.asChar()), length_(text.length()), tokens_(tokens) {
    tokens_.clear();
  }

  Error splitWithQuotes() { return splitEach(&Tokenizer::readQuoted); }
  Error splitWithQuotesAndBackslash() { return splitEach(&Tokenizer::readEscaped); }

private:
  Error splitEach(Error (Tokenizer::*read)(CString& token)) {
    for (;;) {
      while (at_ < length_ && isSpace()) ++at_;
      if (at_ == length_) return Error();
      CString token;
      quoted_ = false;
      if (Error error = (this->*read)(token)) return error;
      if (quoted_) return Error(position(opening_ + 1), "Unmatched double quote");
      tokens_.append(std::move(token));
    }
  }

  /// A token whose quotes, if any, stand around the whole.
  Error readQuoted(CString& token) {
    if (chars_[at_] == '"') openQuote();
    for (; at_ < length_ && (quoted_ || !isSpace()); ++at_) {
      if (chars_[at_] != '"') {
        token.append(chars_[at_]);
      } else if (!quoted_) {
        return Error(position(at_), "Unexpected character before a double quote: '%c'", chars_[at_ - 1]);
      } else {
        quoted_ = false;
        if (at_ + 1 < length_ && !qvString::isSpace(chars_[at_ + 1]))
          return Error(position(at_ + 2), "Unexpected character after double quote: '%c'", chars_[at_ + 1]);
      }
    }
    return Error();
  }

  /// A token with quotes anywhere, and backslashes before quotes and backslashes.
  Error readEscaped(CString& token) {
    while (at_ < length_ && (quoted_ || !isSpace())) {
      if (chars_[at_] == '"') {
        if (quoted_)
          quoted_ = false, ++at_;
        else
          openQuote();
        continue;
      }
      if (chars_[at_] == '\\') {
        if (++at_ == length_) return Error(position(length_), "Single backslash character");
        if (chars_[at_] != '\\' && chars_[at_] != '"')
          return Error(position(at_ + 1), "Illegal escape of character '%c'", chars_[at_]);
      }
      token.append(chars_[at_++]);
    }
    return Error();
  }

  void openQuote() {
    opening_ = at_++;
    quoted_ = true;
  }

  [[nodiscard]] bool isSpace() const { return qvString::isSpace(chars_[at_]); }
  static int position(std::size_t at) { return static_cast<int>(at); }

  const char* chars_;
  std::size_t length_;
  qv::vector<CString>& tokens_;
  std::size_t at_ = 0;
  std::size_t opening_ = 0;
  bool quoted_ = false;
};

} // namespace

qv::vector<CString> split(const CString& text, bool (*isSeparator)(char), bool skipEmpty,
                          bool keepSeparators) {
  return splitAt(text, isSeparator, skipEmpty, keepSeparators);
}

qv::vector<CString> split(const CString& text, char separator, bool skipEmpty, bool keepSeparators) {
  return splitAt(text, equals(separator), skipEmpty, keepSeparators);
}

qv::vector<IString> split(const IString& text, bool (*isSeparator)(WChar), bool skipEmpty,
                          bool keepSeparators) {
  return splitAt(text, isSeparator, skipEmpty, keepSeparators);
}

qv::vector<IString> split(const IString& text, WChar separator, bool skipEmpty, bool keepSeparators) {
  return splitAt(text, equals(separator), skipEmpty, keepSeparators);
}

CString join(const qv::vector<CString>& parts) { return joined(parts); }
IString join(const qv::vector<IString>& parts) { return joined(parts); }

int numMultiLines(const CString& text) {
  const char* const chars = text.asChar();
  return 1 + static_cast<int>(
                 std::count_if(chars, chars + text.length(), [](char c) { return qvString::isNewLine(c); }));
}

qv::vector<CString> splitMultiLines(const CString& text) {
  const char* const chars = text.asChar();
  const char* const end = chars + text.length();
  qv::vector<CString> lines;
  for (const char* start = chars;;) {
    const char* const stop = std::find_if(start, end, [](char c) { return qvString::isNewLine(c); });
    addTo(lines, start, static_cast<std::size_t>(stop - start));
    if (stop == end) return lines;
    start = stop + 1;
  }
}

Error splitWithQuotes(const CString& text, qv::vector<CString>& tokens) {
  return Tokenizer(text, tokens).splitWithQuotes();
}

Error splitWithQuotesAndBackslash(const CString& text, qv::vector<CString>& tokens) {
  return Tokenizer(text, tokens).splitWithQuotesAndBackslash();
}

IString rebackslash(const IString& text) {
  return withBackslashes(text, [](WChar c) { return c == '\\'; });
}

IString escapeMarkupText(const IString& text) {
  return withBackslashes(text, [](WChar c) { return c == '{' || c == '}' || c == '\\'; });
}

qv::vector<CString> removeDuplicated(const qv::vector<CString>& texts) {
  qv::vector<const CString*> sorted;
  sorted.reserve(texts.size());
  for (const CString& text : texts) sorted.append(&text);
  std::sort(sorted.begin(), sorted.end(),
            [](const CString* a, const CString* b) { return a->compare(*b) < 0; });
  qv::vector<CString> result;
  for (const CString* text : sorted)
    if (result.empty() || !(result.back() == *text)) result.append(*text);
  return result;
}

} // namespace qvUtil
