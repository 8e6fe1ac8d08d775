#include "Base/OS/qvOSURL.h"

#include "Base/OS/qvOSPathText.h"
#include "Base/String/qvStringIString.h"

#include <cstdlib>
#include <string>
#include <string_view>

namespace qvOS {

using qvString::CString;
using qvString::IString;

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view protocolMark = "://";
constexpr std::string_view fileProtocol = "file";

/// What may not stand in a part of a locator, beyond what may stand nowhere.
struct Reject {
  bool backslash = false;
  bool colon = false;
  bool slash = false;
  bool brackets = false;
};

bool isAsciiAlnum(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isAsciiControl(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code < 32 || code == 127;
}

bool isIllegal(char c, const Reject& reject) {
  if (isAsciiAlnum(c)) return false;
  if (isAsciiControl(c)) return true;
  switch (c) {
  case '\\':
    return reject.backslash;
  case ':':
    return reject.colon;
  case '/':
    return reject.slash;
  case '[':
  case ']':
    return reject.brackets;
  default:
    return std::string_view(" \"#$&+,;<=>?@^`{|}").find(c) != npos;
  }
}

bool checkIllegalCharacters(const CString& text, const Reject& reject) {
  for (const char c : text.view())
    if (isIllegal(c, reject)) return true;
  return false;
}

int defaultPort(const CString& protocol) {
  constexpr struct {
    std::string_view protocol;
    int port;
  } ports[] = {{"https", 443}, {"telnet", 23}, {"ftp", 21}};
  for (const auto& row : ports)
    if (protocol.view() == row.protocol) return row.port;
  return 80;
}

/// "/C:/x" as "C:/x".
std::string_view withoutSlashBeforeDrive(std::string_view path) {
  return path.size() > 2 && path[0] == '/' && path[2] == ':' ? path.substr(1) : path;
}

CString asUtf8(const IString& text) { return CString(text.asUTF8()); }

} // namespace

static_assert(sizeof(URL) == 9 * sizeof(CString) + 2 * sizeof(int) + 2 * sizeof(Filename));

URL::URL(const CString& text) {
  plainInfo_.path = "/";
  const std::size_t mark = text.view().find(protocolMark);
  // One letter is a drive, as in "C://x".
  if (mark == npos || mark == 1) {
    parsePlainPath(text);
    return;
  }
  const std::size_t start = mark + protocolMark.size();
  protocol_ = CString(text.view().substr(0, mark));
  protocol_.toLowerCase();
  if (isLocalFile())
    parseFile(text, start);
  else
    parseRemote(text, start);
}

URL::URL(const URL& other) = default;

URL& URL::operator=(const URL& other) = default;

URL::~URL() = default;

void URL::parsePlainPath(const CString& text) {
  const std::string_view path = text.view();
  protocol_ = CString(fileProtocol);
  endsWithSeparator_ = path.empty() || path.back() == getSeparator();
  setFilePath(path);
}

void URL::parseFile(const CString& text, std::size_t start) {
  const std::string_view path = text.view().substr(start);
  setFilePath(path.empty() ? "/" : path);
}

void URL::setFilePath(std::string_view path) {
  const char sep = getSeparator();
  plainInfo_.path = removeTrailingSeparators(canonicalize(CString(withoutSlashBeforeDrive(path)), sep), sep);
  encodeAllInfo();
  plainFile_ = IString(plainInfo_.path);
  encodedFile_ = IString(encodedInfo_.path);
}

void URL::parseRemote(const CString& locator, std::size_t start) {
  const std::string_view text = locator.view();
  port_ = defaultPort(protocol_);
  std::size_t pathStart = start - 1; // The mark's own last slash, if nothing follows.
  if (text.size() > start) {
    pathStart = text.find('/', start);
    const bool marked = text[start] == '#' || text[start] == '?';
    if (pathStart == npos && marked)
      pathStart = start;
    else
      authority_ = CString(text.substr(start, pathStart - start));
  }
  parseAuthority();
  if (pathStart == npos) {
    encodeAllInfo();
    return;
  }
  // A '#' before a '?' is part of the path.
  std::size_t mark = text.find('?', pathStart);
  if (mark == npos) mark = text.find('#', pathStart);
  setRemotePath(text.substr(pathStart, mark - pathStart));
  if (mark == npos) return;
  parseQueryAndRef(text, mark);
  encodeAllInfo();
}

void URL::parseAuthority() {
  authority_.toLowerCase();
  const std::string_view authority = authority_.view();
  const std::size_t colon = authority.find(':');
  host_ = CString(authority.substr(0, colon));
  if (colon == npos || colon + 1 == authority.size()) return;
  port_ = static_cast<int>(std::strtoll(authority_.asChar() + colon + 1, nullptr, 10));
}

void URL::setRemotePath(std::string_view path) {
  plainInfo_.path = canonicalize(CString(path), '/');
  encodeAllInfo();
  encodedFile_ = Filename(removeTrailingSeparators(encodedInfo_.path, '/'), '/');
  plainFile_ = Filename(removeTrailingSeparators(plainInfo_.path, '/'), '/');
}

/// `mark` is the place of the '?' or, where there is no query, of the '#'.
void URL::parseQueryAndRef(std::string_view text, std::size_t mark) {
  if (text[mark] == '?') {
    const std::size_t query = mark + 1;
    mark = text.find('#', query);
    if (mark == npos) {
      // A query of one character at the very end is dropped, on purpose.
      if (query + 1 != text.size()) plainInfo_.query = CString(text.substr(query));
      return;
    }
    plainInfo_.query = CString(text.substr(query, mark - query));
  }
  plainInfo_.ref = CString(text.substr(mark + 1));
}

void URL::encodeAllInfo() {
  encodedInfo_.path = encode(plainInfo_.path);
  encodedInfo_.query = encode(plainInfo_.query);
  encodedInfo_.ref = encode(plainInfo_.ref);
}

CString URL::getProtocol() const { return protocol_; }

CString URL::getAuthority() const { return authority_; }

CString URL::getHost() const { return host_; }

int URL::getPort() const { return port_; }

CString URL::getPath(bool encoded) const { return info(encoded).path; }

CString URL::getQuery(bool encoded) const { return info(encoded).query; }

CString URL::getRef(bool encoded) const { return info(encoded).ref; }

char URL::getSeparator() const { return isLocalFile() ? static_cast<char>(Filename::separator()) : '/'; }

CString URL::origin() const { return protocol_ + CString(protocolMark) + authority_; }

CString URL::getFullURL(bool encoded) const {
  const _info& parts = info(encoded);
  CString result = origin();
  result.append(parts.path);
  if (!parts.query.isEmpty()) result.append('?').append(parts.query);
  if (!parts.ref.isEmpty()) result.append('#').append(parts.ref);
  return result;
}

CString URL::getName(bool encoded) const {
  const CString& path = info(encoded).path;
  if (!isLocalFile()) return origin() + path;
  if (endsWithSeparator_) return removeDuplicateSeparators(path + CString(getSeparator()), getSeparator());
  // With a '/' here, unlike above, on purpose.
  return removeDuplicateSeparators(path, '/');
}

CString URL::getCanonicalPath(bool encoded) const { return canonicalize(info(encoded).path, getSeparator()); }

CString URL::getDirname(bool encoded) const {
  const CString directory = dirname(encoded);
  const CString sep(getSeparator());
  if (isLocalFile()) return removeDuplicateSeparators(directory + sep, getSeparator());
  CString result = origin() + directory;
  if (!directory.isEmpty() && directory.at(directory.last()) != '/') result.append('/');
  return result;
}

CString URL::dirname(bool encoded) const { return asUtf8(file(encoded).dirname()); }

CString URL::basename(bool encoded) const { return asUtf8(file(encoded).basename()); }

CString URL::baseTrunk(bool encoded) const { return asUtf8(file(encoded).baseTrunk()); }

CString URL::baseSuffix(bool encoded) const { return asUtf8(file(encoded).baseSuffix()); }

bool URL::comparePath(const URL& other) const {
  const CString mine = getName(false);
  const CString others = other.getName(false);
  return (isLocalFile() ? mine.compareNoCase(others) : mine.compare(others)) == 0;
}

bool URL::isLocalFile() const { return protocol_.view() == fileProtocol; }

bool URL::IsIMan() const { return protocol_.view() == "iman"; }

bool URL::isAbsolute() const { return plainFile_.isAbsolute(); }

bool URL::isAbsolutePath() const { return !isLocalFile() || isAbsolute(); }

bool URL::hasIllegalCharacters() const {
  return checkIllegalCharacters(encodedInfo_.path, {.brackets = true}) ||
         checkIllegalCharacters(host_, {.backslash = true, .colon = true, .slash = true}) ||
         checkIllegalCharacters(protocol_, {true, true, true, true});
}

bool URL::hasIllegalCharacters(const CString& text) { return checkIllegalCharacters(text, {}); }

CString URL::encode(const CString& text) {
  std::string result;
  result.reserve(text.length());
  for (const char c : text.view()) {
    if (std::string_view(" <>%").find(c) == npos) {
      result += c;
      continue;
    }
    result += '%';
    result += decimalHexit2asciiHexit(static_cast<char>(c / 16));
    result += decimalHexit2asciiHexit(static_cast<char>(c % 16));
  }
  return CString(result);
}

CString URL::decode(const CString& text) {
  const std::string_view in = text.view();
  std::string result;
  result.reserve(in.size());
  for (std::size_t i = 0; i < in.size(); ++i) {
    if (in[i] != '%') {
      result += in[i];
      continue;
    }
    if (i + 2 >= in.size()) break;
    result += static_cast<char>(asciiHexit2decimalHexit(in[i + 1]) * 16 + asciiHexit2decimalHexit(in[i + 2]));
    i += 2;
  }
  return CString(result);
}

CString URL::decode(const char* text) { return decode(CString(text)); }

CString URL::decode(const IString& text) { return decode(asUtf8(text)); }

CString URL::removeDuplicateSeparators(const CString& text, char sep) {
  return CString(collapseSeparators(text.view(), sep));
}

CString URL::removeTrailingSeparators(const CString& text, char sep) {
  return CString(text.view().substr(0, lengthWithoutTrailing(text.view(), sep)));
}

CString URL::canonicalize(const CString& text, char sep) {
  return removeDuplicateSeparators(CString(unifySeparators(text.view(), sep)), sep);
}

char URL::asciiHexit2decimalHexit(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<char>(digit - '0');
  if (digit >= 'A' && digit <= 'F') return static_cast<char>(digit - 'A' + 10);
  if (digit >= 'a' && digit <= 'f') return static_cast<char>(digit - 'a' + 10);
  return 0;
}

char URL::decimalHexit2asciiHexit(char value) {
  const auto digit = static_cast<unsigned char>(value);
  return digit < 16 ? "0123456789ABCDEF"[digit] : '\0';
}

} // namespace qvOS

bool isAbsolutePath(const char* text) { return qvOS::URL(qvString::CString(text)).isAbsolutePath(); }

bool isLocalFile(const char* text) { return qvOS::URL(qvString::CString(text)).isLocalFile(); }
