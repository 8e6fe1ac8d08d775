#include "Base/String/qvStringTableCatalog.h"

#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/String/qvStringTable.h"
#include "Base/String/qvStringTableLines.h"

#include <string>
#include <string_view>

namespace qvStringTable {

using qv::WChar;
using qvString::CString;
using qvString::IString;
using qvUtil::Error;

namespace {

void stripBothEnds(IString& text) { text.stripSpaces().rstripSpaces(); }

/// Cuts a comment off. The character before it goes too: it is taken to be a blank. What follows the first
/// double quote belongs to the value, and so it is no comment.
/// @return false where the whole line is one.
bool stripComment(IString& line) {
  const unsigned mark = line.find(QV_W("//"));
  if (mark == IString::npos) return true;
  if (mark < 2) return false;
  const unsigned quote = line.find(WChar('"'));
  if (quote != IString::npos && quote > mark) line.erase(mark - 1);
  return true;
}

/// Takes the text between the quotes out of `value`. False where they are not both there.
bool stripQuotes(IString& value) {
  const std::basic_string_view<WChar> text = value.view();
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return false;
  value = IString(text.substr(1, text.size() - 2));
  return true;
}

/// The steps follow each other: what one makes, the next one sees.
void unescape(IString& value) {
  static const struct {
    IString from, to;
  } steps[] = {{QV_W("\\r\\n"), QV_W("\r\n")},
               {QV_W("\\n"), QV_W("\n")},
               {QV_W("\\t"), QV_W("\t")},
               {QV_W("\"\""), QV_W("\"")},
               {QV_W("\\\""), QV_W("\"")}};
  for (const auto& step : steps) value.replace(step.from, step.to);
}

/// One run over a file.
class CatalogReader {
public:
  explicit CatalogReader(const qvOS::Filename& file) : file_(file.name()) {}

  Error read() {
    if (const int failed = lines_.open(qvOS::toNativePath(file_).asChar()))
      return Error(1, "Can't open catalog file %s for read: %s\n", file_.asMultibyte(),
                   qvPlatform::systemErrorText(failed).c_str());
    for (std::string line; lines_.next(line);) {
      ++lineNumber_;
      if (Error error = takeLine(line.c_str())) return error;
    }
    if (const int failed = lines_.error())
      return Error(2, "Error reading file %s: %s\n", file_.asMultibyte(),
                   qvPlatform::systemErrorText(failed).c_str());
    return {};
  }

private:
  Error takeLine(const char* bytes) {
    bool isUtf8 = false;
    IString line(bytes, qvString::UTF8Encoding, &isUtf8);
    if (!isUtf8)
      return Error(5, QV_W("String file conversion error encountered, line %d, file %S: \n%S: %S\n"),
                   lineNumber_, file_.asWChar(), QV_W("Error interpreting input as UTF-8"), line.asWChar());
    line.rstrip(WChar('\n'));
    if (!stripComment(line)) return {};
    stripBothEnds(line);
    if (line.isEmpty()) return {};
    const bool goesOn = line[line.last()] == '\\';
    if (goesOn) line.erase(line.last());
    pending_.append(line);
    if (goesOn) return {};
    Error error = takeEntry();
    pending_ = IString();
    return error;
  }

  Error takeEntry() const {
    const unsigned equals = pending_.find(WChar('='));
    if (equals == IString::npos || equals == 0 || equals == pending_.last())
      return syntaxError(QV_W("Expected idToken = \"quoted value string\" format"));
    IString key = pending_.substr(0, equals - 1); // the format has a blank there
    IString value = pending_.substr(equals + 1);
    stripBothEnds(key);
    stripBothEnds(value);
    if (!stripQuotes(value))
      return syntaxError(QV_W("Expected quotes surrounding value string. "
                              "Illegal character(s) encountered at start or end of string"));
    if (!key.isAscii()) return syntaxError(QV_W("Key string contains non-ascii characters"));
    const CString keyText = key.asUTF8();
    if (!Key::isValidKeyString(keyText)) return syntaxError(QV_W("Key string does not have valid format"));
    unescape(value);
    if (!appStringTable().assign(keyText, value))
      return Error(4, "Error assigning string table entry for key:%s, value%s\n", keyText.asChar(),
                   value.asMultibyte());
    return {};
  }

  Error syntaxError(const WChar* message) const {
    return Error(3, QV_W("String file parsing error encountered, line %d, file %S: \n%S: %S\n"), lineNumber_,
                 file_.asWChar(), message, pending_.asWChar());
  }

  const IString file_;
  Lines lines_;
  int lineNumber_ = 0;
  IString pending_; // the lines so far of an entry that goes on
};

} // namespace

Error FileUtil::readCatalogFile(const qvOS::Filename& file) { return CatalogReader(file).read(); }

} // namespace qvStringTable
