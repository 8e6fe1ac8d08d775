#include "Base/OS/qvOSLocalFileTransport.h"

#include "Base/OS/qvOSExtendedPath.h"
#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/OS/qvOSTemporary.h"
#include "Base/OS/qvOSUniqueFile.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformRandom.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace qvOS {

using qvPlatform::ErrorKind;
using qvPlatform::FileInfo;
using qvPlatform::FileKind;
using qvString::CString;
using qvString::IString;
using qvUtil::Error;

namespace {

constexpr unsigned longestListedName = 260;

bool isSeparator(qv::WChar c) { return c == QV_W('\\') || c == QV_W('/'); }

unsigned lastSeparator(const IString& path) { return path.rfindAny(QV_W("\\/")); }

bool isRoot(const IString& path) {
  return path.length() == 1 || (path.length() == 3 && path.at(1) == QV_W(':'));
}

/// A link's name with a separator behind it would mean what the link leads to.
IString withoutTrailingSeparators(IString path) {
  while (!path.isEmpty() && isSeparator(path.at(path.last())) && !isRoot(path)) path.erase(path.last());
  return path;
}

/// Answers whether `path` is or leads to a directory; fails where that cannot be told.
int queryDirectory(const IString& path, bool* directory) {
  FileInfo info;
  const int failed = qvPlatform::queryFile(toNativePath(withoutTrailingSeparators(path)).asChar(), &info);
  if (!failed) *directory = info.kind == FileKind::directory;
  return failed;
}

std::string modeOf(int flags) {
  std::string mode;
  if (flags & FileTransport::openRead) mode += 'r';
  if (flags & FileTransport::openWrite) mode += 'w';
  if (flags & FileTransport::openAppend) mode = "a+";
  return mode + (flags & FileTransport::openText ? 't' : 'b');
}

Error openError(int failed) {
  return qvPlatform::isNotFound(failed) ? File::getError(FileError::notFound)
                                        : LocalFileTransport::creationError(failed);
}

Error makeDirectoryAt(const IString& path) {
  return LocalFileTransport::creationError(qvPlatform::makeDirectory(toNativePath(path).asChar()));
}

/// The directory in which temporaries for `path` are made.
Filename temporaryDirectory(const IString& path) {
  const Filename name(path);
  return name.dirname().isEmpty() ? getTempDirectory() : Filename(name.dirname());
}

IString temporaryPrefix(const IString& path) {
  const Filename name(path);
  const IString prefix = name.basename() + name.baseSuffix();
  return prefix.isEmpty() || prefix == QV_W(".") ? IString(QV_W("QVT")) : prefix;
}

/// Letters from `a` to `y`.
IString randomLetters(int count) {
  IString letters;
  std::uint64_t bits = qvPlatform::randomName();
  for (int i = 0; i < count; ++i, bits /= 25) letters.append(static_cast<qv::WChar>(QV_W('a') + bits % 25));
  return letters;
}

CString accountText(const qvPlatform::AccountName& name) {
  return CString((name.domain + '\\' + name.account).c_str());
}

} // namespace

LocalFileTransport::LocalFileTransport(const IString& path) : path_(path) {}

LocalFileTransport::~LocalFileTransport() { static_cast<void>(close()); }

int LocalFileTransport::turn(Direction direction) {
  const bool turning = direction_ != Direction::none && direction_ != direction;
  const int failed = turning ? qvPlatform::seekStream(stream_, 0, qvPlatform::SeekFrom::current, nullptr) : 0;
  if (!failed) direction_ = direction;
  return failed;
}

Error LocalFileTransport::read(void* buffer, std::uint64_t size, std::uint64_t* count) {
  if (count) *count = 0;
  if (!stream_ || turn(Direction::reading)) return File::getError(FileError::ioProblem);
  const std::size_t wanted = std::min<std::uint64_t>(size, std::numeric_limits<std::size_t>::max());
  std::size_t got = 0;
  bool atEnd = false;
  const int failed = qvPlatform::readStream(stream_, buffer, wanted, &got, &atEnd);
  if (count) *count = got;
  if (failed) return File::getError(FileError::ioProblem);
  return atEnd ? File::getError(FileError::endOfFile) : Error();
}

Error LocalFileTransport::write(const void* buffer, std::uint64_t size, std::uint64_t* count) {
  if (count) *count = 0;
  if (!stream_ || turn(Direction::writing)) return File::getError(FileError::ioProblem);
  const std::size_t wanted = std::min<std::uint64_t>(size, std::numeric_limits<std::size_t>::max());
  std::size_t put = 0;
  const int failed = qvPlatform::writeStream(stream_, buffer, wanted, &put);
  if (count) *count = put;
  return failed || put < size ? File::getError(FileError::ioProblem) : Error();
}

/// Opens the stream on `path`. The system's number, 0 for success.
int LocalFileTransport::openStream(const IString& path, int flags) {
  static_cast<void>(close());
  return qvPlatform::openStream(toNativePath(path).asChar(), modeOf(flags).c_str(), &stream_);
}

Error LocalFileTransport::open(int flags) { return openError(openStream(path_, flags)); }

void LocalFileTransport::rename(const IString& path) {
  path_ = path;
  typeKnown_ = directoryFlag_ = false;
}

Error LocalFileTransport::openTemp(int flags) {
  static_cast<void>(close());
  const Filename directory = temporaryDirectory(path_);
  IString prefix = temporaryPrefix(path_);
  int failed = 0;
  for (int attempt = 0; attempt < 10; ++attempt) {
    Filename made;
    failed = makeUniqueFile(directory, prefix, &made);
    if (!failed) {
      failed = openStream(made.name(), flags);
      if (!failed) rename(made.name());
      if (failed) static_cast<void>(qvPlatform::deleteFile(toNativePath(made).asChar()));
    }
    if (qvPlatform::errorKind(failed) != ErrorKind::exists) break;
    prefix = temporaryPrefix(randomLetters(5));
  }
  return openError(failed);
}

Error LocalFileTransport::close() {
  if (stream_) qvPlatform::closeStream(stream_);
  stream_ = nullptr;
  direction_ = Direction::none;
  return Error();
}

Error LocalFileTransport::makeDirectory() { return makeDirectoryAt(path_); }

Error LocalFileTransport::makeTempDirectory() {
  const Filename directory = temporaryDirectory(path_);
  Error error;
  for (int attempt = 0; attempt < 3; ++attempt) {
    rename(Filename::join(directory.name(), randomLetters(10)));
    error = makeDirectoryAt(path_);
    if (!error) break;
  }
  return error;
}

Error LocalFileTransport::makeDirectoryAll() {
  if (isDirectory()) return Error();
  std::vector<unsigned> missing; // the lengths of the names to make, the deepest first
  IString name = path_;
  for (bool directory = false; !directory;) {
    missing.push_back(name.length());
    const unsigned cut = lastSeparator(name);
    if (cut == IString::npos || cut == 0) break;
    name.erase(cut);
    static_cast<void>(queryDirectory(name, &directory));
  }
  for (auto length = missing.rbegin(); length != missing.rend(); ++length) {
    name = path_.substr(0, *length);
    Error error = makeDirectoryAt(name);
    // A separator at the end, or another process, can have made the same directory before.
    bool directory = false;
    if (error && (queryDirectory(name, &directory) || !directory)) return error;
  }
  return Error();
}

Error LocalFileTransport::readDir(qv::vector<IString>& names, bool fullPath) {
  names.clear();
  IString prefix = getFullName();
  if (!prefix.isEmpty() && !isSeparator(prefix.at(prefix.last()))) prefix.append(getSeparator());
  if (prefix.length() > longestListedName) return File::getError(FileError::pathTooLong);

  qvPlatform::Directory directory;
  int failed = directory.open(prefix.isEmpty() ? "." : toNativePath(prefix).asChar());
  if (failed == qvPlatform::errorNumber(ErrorKind::notFound)) return Error();
  const char* entry = nullptr;
  while (!failed && !(failed = directory.next(&entry)) && entry) {
    const IString name = fromNativePath(CString(entry));
    names.push_back(fullPath ? prefix + name : name);
  }
  if (!failed) return Error();
  names.clear();
  return File::getError(FileError::ioProblem);
}

Error LocalFileTransport::moveTo(FileTransport& dest) {
  FileStatus mine;
  FileStatus theirs;
  if (Error error = query(mine)) return error;
  static_cast<void>(dest.query(theirs));
  // The code of a file that exists, though it is one that does not.
  if (!mine.exists()) return File::getError(FileError::exists);
  const bool alike = !theirs.exists() || mine.isDirectory() == theirs.isDirectory();
  const bool renamed =
      alike && transportId() == dest.transportId() &&
      !qvPlatform::renameFile(toNativePath(path_).asChar(), toNativePath(dest.getFullName()).asChar());
  return renamed ? Error() : FileTransport::moveTo(dest);
}

Error LocalFileTransport::deleteSelf() {
  const CString native = nativeName();
  FileInfo info;
  const bool link = !queryLink(&info) && info.kind == FileKind::link;
  if (link || !isDirectory())
    return qvPlatform::deleteFile(native.asChar()) ? File::getError(FileError::ioProblem) : Error();
  const int failed = qvPlatform::removeDirectory(native.asChar());
  if (!failed) return Error();
  const bool notEmpty = qvPlatform::errorKind(failed) == ErrorKind::notEmpty;
  return File::getError(notEmpty ? FileError::notEmpty : FileError::ioProblem);
}

bool LocalFileTransport::isDirectory() const {
  if (!typeKnown_) typeKnown_ = !queryDirectory(path_, &directoryFlag_);
  return directoryFlag_;
}

bool LocalFileTransport::isOpen() const { return stream_ != nullptr; }

IString LocalFileTransport::getFullName() const { return path_; }

IString LocalFileTransport::getNameTitle() const {
  const unsigned at = lastSeparator(path_);
  return at == IString::npos ? IString() : path_.substr(0, at + 1);
}

IString LocalFileTransport::getNameBase() const {
  const unsigned at = lastSeparator(path_);
  return at == IString::npos ? IString() : path_.substr(at + 1);
}

qv::WChar LocalFileTransport::getSeparator() const { return Filename::separator(); }

IString LocalFileTransport::transportId() const { return IString(QV_W("LocalFileTransport")); }

Error LocalFileTransport::query(FileStatus& status) {
  status.reset();
  const CString native = toNativePath(path_);
  FileInfo info;
  if (const int failed = qvPlatform::queryFile(native.asChar(), &info)) {
    if (qvPlatform::isNotFound(failed)) return Error();
    return Error(FileError::ioProblem, "%s", qvPlatform::systemErrorText(failed).c_str());
  }
  if (info.size > std::numeric_limits<long>::max()) return File::getError(FileError::ioProblem);
  status.setIsDirectory(info.kind == FileKind::directory);
  status.setIsFile(info.kind == FileKind::file);
  status.setExists(status.isDirectory() || status.isFile());
  status.setSize(static_cast<long>(info.size));
  status.setLastModification(info.modified);
  status.setCreationDate(info.changed);
  status.setIsReadable(status.exists() && !qvPlatform::checkAccess(native.asChar(), qvPlatform::accessRead));
  status.setIsWritable(status.exists() && !qvPlatform::checkAccess(native.asChar(), qvPlatform::accessWrite));
  return Error();
}

Error LocalFileTransport::queryOwnerGroup(FileStatus& status) {
  status.setOwner("Unknown");
  status.setGroup("Unknown");
  const Error unknown(-1, "Failed to query Owner/Group of %S", path_.asWChar());
  IString extended;
  Error error = makeExtendedPath(path_, extended);
  const CString native = toNativePath(extended);
  qvPlatform::AccountName name;
  if (qvPlatform::queryOwner(native.asChar(), &name)) return unknown;
  status.setOwner(accountText(name));
  if (qvPlatform::queryGroup(native.asChar(), &name)) return unknown;
  status.setGroup(accountText(name));
  return error;
}

Error LocalFileTransport::creationError(int failed) {
  if (!failed) return Error();
  const bool exists = qvPlatform::errorKind(failed) == ErrorKind::exists;
  return File::getError(exists ? FileError::exists : FileError::ioProblem);
}

CString LocalFileTransport::nativeName() const { return toNativePath(withoutTrailingSeparators(path_)); }

int LocalFileTransport::queryLink(FileInfo* info) const {
  return qvPlatform::queryLink(nativeName().asChar(), info);
}

int LocalFileTransport::queryFile(FileInfo* info) const {
  return qvPlatform::queryFile(toNativePath(path_).asChar(), info);
}

} // namespace qvOS
