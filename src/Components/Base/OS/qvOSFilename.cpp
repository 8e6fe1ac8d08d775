#include "Base/OS/qvOSFilename.h"

#include "Base/OS/qvOSNativePath.h"
#include "Base/OS/qvOSPathText.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformPath.h"
#include "Base/String/qvStringCharacter.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace qvOS {

using qv::WChar;
using qvString::IString;

namespace {

using WideView = std::basic_string_view<WChar>;
using WideText = std::basic_string<WChar>;

constexpr WChar backslash = '\\';

/// The character of the pairs that are looked for: only a backslash is told from '/'.
WChar searchedSeparator(WChar sep) { return sep == backslash ? backslash : WChar('/'); }

bool startsWithTwoBackslashes(WideView path) {
  return path.size() >= 2 && path[0] == backslash && path[1] == backslash;
}

bool startsWithDrive(WideView path) { return path.size() >= 2 && path[1] == ':'; }

/// Drops the last name before a "\..\" with which `text` ends, and the "\..\" itself.
/// @return false where the name is itself "..", which ends the work on the whole path.
bool dropNameBeforeDotDot(WideText& text, WChar sep) {
  constexpr std::size_t dotDotLength = 4;
  const WideView head = WideView(text).substr(0, text.size() - dotDotLength);
  const std::size_t last = head.rfind(sep);
  if (last != WideView::npos) {
    text.resize(last + 1);
  } else if (head == QV_W("..")) {
    return false;
  } else if (head == QV_W(".")) {
    text.assign({'.', '.', sep});
  } else {
    text.clear(); // Whatever the name was, a drive included.
  }
  return true;
}

bool endsWithDotDot(const WideText& text, WChar sep) {
  const std::size_t size = text.size();
  return size >= 4 && text[size - 1] == sep && text[size - 2] == '.' && text[size - 3] == '.' &&
         text[size - 4] == sep;
}

/// Resolves "\..\" from the left. The text is walked once: what was walked holds no unresolved one.
WideText resolveDotDot(WideView text, WChar sep) {
  const WChar searched = searchedSeparator(sep);
  WideText walked;
  walked.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    walked += text[at];
    if (endsWithDotDot(walked, searched) && !dropNameBeforeDotDot(walked, sep)) {
      walked.append(text.substr(at + 1));
      break;
    }
  }
  return walked;
}

/// The canonical form of a path that has one kind of separator.
WideText reduced(WideView path, WChar sep) {
  WideText text = collapseSeparators(path, searchedSeparator(sep));
  text.resize(lengthWithoutTrailing(WideView(text), sep));
  return resolveDotDot(text, sep);
}

} // namespace

/// The parts, taken apart at construction. They follow the owner's path no further.
class FilenameParts {
public:
  FilenameParts(const IString* path, WChar sep) : source(path), separator(sep) {
    WideView rest = source->view();
    if (rest.empty()) return;
    const bool onShare = splitPrefix(rest);
    splitRest(rest);
    completeDirname(onShare);
    splitBasename();
  }

  const IString* source;
  IString prefix;
  IString dirname;
  IString basename;
  IString baseTrunk;
  IString baseSuffix;
  WChar separator;

private:
  /// Cuts the prefix from `rest`. @return true where a name on a network share follows it.
  bool splitPrefix(WideView& rest) {
    const bool drive = startsWithDrive(rest);
    const bool network = !drive && startsWithTwoBackslashes(rest);
    const std::size_t length = drive ? 2 : network ? shareLength(rest) : 0;
    prefix = IString(rest.substr(0, length));
    const bool share = network && length + 1 < rest.size();
    rest.remove_prefix(share ? length + 1 : length);
    return share;
  }

  /// The length of "\\server\share"; all of a path that does not go on behind it.
  static std::size_t shareLength(WideView whole) {
    const std::size_t afterServer = whole.find(backslash, 2);
    if (afterServer == WideView::npos || afterServer + 1 == whole.size()) return whole.size();
    const std::size_t afterShare = whole.find(backslash, afterServer + 1);
    return afterShare == WideView::npos ? whole.size() : afterShare;
  }

  void splitRest(WideView rest) {
    const std::size_t last = rest.rfind(separator);
    if (last == WideView::npos) {
      basename = IString(rest);
      return;
    }
    dirname = IString(rest.substr(0, last == 0 ? 1 : last));
    basename = IString(rest.substr(last + 1));
  }

  void completeDirname(bool onShare) {
    // The backslash behind a share is the system's, whatever the separator is.
    if (onShare && !dirname.isEmpty()) dirname.prepend(backslash);
    dirname.prepend(prefix);
  }

  void splitBasename() {
    const WideView name = basename.view();
    if (name.empty() || name == QV_W(".")) return;
    const std::size_t dot = name.rfind('.');
    baseTrunk = IString(name.substr(0, dot));
    if (dot != WideView::npos) baseSuffix = IString(name.substr(dot + 1));
  }
};

Filename::Filename() : separator_(separator()) {}

Filename::Filename(const Filename& other) : separator_(separator()), path_(other.path_) {}

Filename::Filename(const IString& name) : separator_(separator()) { assign(name); }

Filename::Filename(const IString& name, WChar sep) : separator_(sep) { assign(name); }

Filename::Filename(const qvString::CString& name, char sep) : separator_(static_cast<unsigned char>(sep)) {
  assign(IString(name));
}

Filename::Filename(const char* name, char sep) : separator_(static_cast<unsigned char>(sep)) {
  assign(IString(name));
}

Filename::Filename(const IString& a, const IString& b) : separator_(separator()) { assign(a, b); }

Filename::Filename(const Filename& a, const Filename& b) : separator_(separator()) {
  assign(a.path_, b.path_);
}

Filename::~Filename() { deleteImpl(); }

Filename& Filename::operator=(const Filename& other) {
  deleteImpl();
  separator_ = other.separator_;
  path_ = other.path_;
  return *this;
}

Filename& Filename::operator=(const IString& name) {
  assign(name);
  return *this;
}

const IString& Filename::prefix() const { return split().prefix; }

const IString& Filename::dirname() const { return split().dirname; }

const IString& Filename::basename() const { return split().basename; }

const IString& Filename::baseTrunk() const { return split().baseTrunk; }

const IString& Filename::baseSuffix() const { return split().baseSuffix; }

qv::vector<IString> Filename::components() const {
  const FilenameParts& parts = split();
  return {parts.prefix, parts.dirname, parts.basename, parts.baseTrunk, parts.baseSuffix};
}

bool Filename::isAbsolute() const {
  const WideView path = path_.view();
  return startsWithTwoBackslashes(path) ||
         (startsWithDrive(path) && path.size() >= 3 && path[2] == backslash);
}

WChar Filename::separator() { return backslash; }

WChar Filename::pathSeparator() { return ';'; }

int Filename::maxLength() { return 260; }

IString Filename::join(const IString& a, const IString& b) { return Filename(a, b).name(); }

IString Filename::join(const IString& a, const IString& b, const IString& c) {
  return Filename(join(a, b), c).name();
}

IString Filename::join(const IString& a, const IString& b, const IString& c, const IString& d) {
  return Filename(join(a, b), join(c, d)).name();
}

bool Filename::setCwd() const { return qvPlatform::setWorkingDirectory(toNativePath(*this).asChar()) == 0; }

bool Filename::makeDir() const { return qvPlatform::makeDirectory(toNativePath(*this).asChar()) == 0; }

Filename& Filename::getCwd() {
  std::string native;
  IString path;
  if (qvPlatform::workingDirectory(&native) == 0) path = fromNativePath(qvString::CString(native));
  // The limit counts a terminator.
  if (path.length() >= static_cast<unsigned>(maxLength())) path = IString();
  return *this = Filename(path);
}

void Filename::removeTrailingSeparators(IString& text, WChar sep) {
  text.erase(static_cast<unsigned>(lengthWithoutTrailing(text.view(), sep)));
}

void Filename::removeDuplicateSeparators(IString& text, WChar sep) {
  text = IString(collapseSeparators(text.view(), searchedSeparator(sep)));
}

void Filename::removeSlashDotDotSlash(IString& text, WChar sep) {
  text = IString(resolveDotDot(text.view(), sep));
}

void Filename::canonicalize(const IString& in, WChar sep, IString& out) {
  out = IString(reduced(unifySeparators(in.view(), sep), sep));
}

// The parts go last: the new path may be one of them.
void Filename::assign(const IString& name) {
  canonicalize(name, separator_, path_);
  deleteImpl();
}

void Filename::assign(const IString& a, const IString& b) {
  const WChar sep = separator();
  const WideView directory = a.view();
  const bool bareDrive = directory.size() == 2 && directory[1] == ':';
  WideText joined(directory);
  if (!b.isEmpty() && !directory.empty() && !bareDrive) joined += sep;
  path_ = IString(reduced(joined.append(b.view()), sep));
  deleteImpl();
}

const FilenameParts& Filename::split() const {
  if (!parts_) parts_ = new FilenameParts(&path_, separator_);
  return *parts_;
}

void Filename::deleteImpl() {
  delete parts_;
  parts_ = nullptr;
}

bool isWindowsReservedDeviceName(const Filename& name) {
  IString trunk = name.baseTrunk();
  trunk.toUpperCase();
  const WideView text = trunk.view();
  if (text.size() == 3)
    return text == QV_W("CON") || text == QV_W("PRN") || text == QV_W("AUX") || text == QV_W("NUL");
  if (text.size() != 4 || (text.substr(0, 3) != QV_W("COM") && text.substr(0, 3) != QV_W("LPT")))
    return false;
  return qvString::isDigit(text[3]) && text[3] != '0';
}

} // namespace qvOS

namespace {

void copyOut(const qvString::IString& text, char* out) {
  if (out) std::memcpy(out, text.asMultibyte(), text.asMultibyteStoreSize());
}

qvOS::Filename nameOf(const char* path) { return qvOS::Filename(qvString::IString(path)); }

} // namespace

void qvOS_FilenamePrefix(const char* path, char* out) { copyOut(nameOf(path).prefix(), out); }

void qvOS_FilenameDirname(const char* path, char* out) { copyOut(nameOf(path).dirname(), out); }

void qvOS_FilenameBasename(const char* path, char* out) { copyOut(nameOf(path).basename(), out); }

void qvOS_FilenameBaseTrunk(const char* path, char* out) { copyOut(nameOf(path).baseTrunk(), out); }

void qvOS_FilenameBaseSuffix(const char* path, char* out) { copyOut(nameOf(path).baseSuffix(), out); }

void qvOS_FilenameJoin(const char* a, const char* b, char* out) {
  copyOut(qvOS::Filename::join(qvString::IString(a), qvString::IString(b)), out);
}

bool qvOS_FilenameMakeDir(const char* path) { return nameOf(path).makeDir(); }
