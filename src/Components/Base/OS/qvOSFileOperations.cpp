#include "Base/OS/qvOSFileOperations.h"

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileFactory.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"

#include <memory>

namespace qvOS {

using qvPlatform::ErrorKind;
using qvString::IString;
using qvUtil::Error;

namespace {

template <class C>
Filename filenameOf(const C* name) {
  return Filename(IString(name));
}

/// By the two numbers themselves, not by others that tell of something like it.
int copyErrorCode(int failed) {
  if (failed == qvPlatform::errorNumber(ErrorKind::notFound)) return 2;
  return failed == qvPlatform::errorNumber(ErrorKind::exists) ? 3 : 1;
}

/// The failure of a rename call that returned `result`. A runtime whose call returns -1 for every failure, as
/// all known ones do, gives the last text.
Error renameError(int result, const Filename& to) {
  constexpr int code = 6;
  switch (result) {
  case 0:
    return Error();
  case 2:
    return Error(code, "File or path specified by %S name not found.", to.name().asWChar());
  case 13:
    return Error(code, "A component of either path prefix deniessearch permission");
  case 22:
    return Error(code,
                 "source is a parent directory of target, or an attempt is made to rename the .  or ..  "
                 "directory.");
  default:
    return Error(code, "Unkown system error.");
  }
}

} // namespace

bool doesFileExist(const Filename& name) {
  FileStatus status;
  return !File::query(name, status) && status.exists();
}

bool isFileWritable(const Filename& name) {
  FileStatus status;
  return !File::query(name, status) && status.isWritable();
}

Error fileDelete(const Filename& name) {
  const int failed = qvPlatform::deleteFile(toNativePath(name).asChar());
  return failed ? Error(1, "%s", qvPlatform::systemErrorText(failed).c_str()) : Error();
}

Error fileCopy(const Filename& from, const Filename& to, bool overwrite) {
  const int failed = qvPlatform::copyFile(toNativePath(from).asChar(), toNativePath(to).asChar(), overwrite);
  if (!failed) return Error();
  return Error(copyErrorCode(failed), "Error copying %S to %S: %s", from.name().asWChar(),
               to.name().asWChar(), qvPlatform::systemErrorText(failed).c_str());
}

Error fileMove(const Filename& from, const Filename& to, bool overwrite) {
  Error error = fileCopy(from, to, overwrite);
  if (error) return error;
  // A file that moves keeps its owner and group where the system allows.
  static_cast<void>(qvPlatform::copyAttributes(toNativePath(from).asChar(), toNativePath(to).asChar()));
  static_cast<void>(fileDelete(from));
  return error;
}

Error fileRename(const Filename& from, const Filename& to) {
  if (from.dirname() != to.dirname()) return fileMove(from, to, true);
  const int failed = qvPlatform::renameFile(toNativePath(from).asChar(), toNativePath(to).asChar());
  return renameError(failed ? -1 : 0, to);
}

bool doesFileExist(const char* name) { return doesFileExist(filenameOf(name)); }
bool doesFileExist(const qv::WChar* name) { return doesFileExist(filenameOf(name)); }
bool isFileWritable(const char* name) { return isFileWritable(filenameOf(name)); }
bool isFileWritable(const qv::WChar* name) { return isFileWritable(filenameOf(name)); }
Error fileDelete(const char* name) { return fileDelete(filenameOf(name)); }
Error fileDelete(const qv::WChar* name) { return fileDelete(filenameOf(name)); }
Error fileCopy(const char* from, const char* to, bool overwrite) {
  return fileCopy(filenameOf(from), filenameOf(to), overwrite);
}
Error fileCopy(const qv::WChar* from, const qv::WChar* to, bool overwrite) {
  return fileCopy(filenameOf(from), filenameOf(to), overwrite);
}
Error fileMove(const char* from, const char* to, bool overwrite) {
  return fileMove(filenameOf(from), filenameOf(to), overwrite);
}
Error fileMove(const qv::WChar* from, const qv::WChar* to, bool overwrite) {
  return fileMove(filenameOf(from), filenameOf(to), overwrite);
}
Error fileRename(const char* from, const char* to) { return fileRename(filenameOf(from), filenameOf(to)); }
Error fileRename(const qv::WChar* from, const qv::WChar* to) {
  return fileRename(filenameOf(from), filenameOf(to));
}

namespace {

bool copyFails(const IString& from, const IString& to) {
  FileFactory* factory = FileFactory::getFileFactory();
  const std::unique_ptr<File> source(factory->createFile(from));
  const std::unique_ptr<File> target(factory->createFile(to));
  return source && target && source->copyTo(*target);
}

int readHeader(const IString& name, void* buffer, int count) {
  if (!buffer || count < 0) return -1;
  if (count == 0) return 0;
  File file(name);
  std::uint64_t got = 0;
  if (file.open(FileTransport::openRead)) return -1;
  if (file.read(buffer, static_cast<std::uint64_t>(count), &got)) return -1;
  return static_cast<int>(got);
}

} // namespace

} // namespace qvOS

bool qvOS_DoesFileExistW(const qv::WChar* name) { return qvOS::doesFileExist(name); }

bool qvOS_DoesFileExist(const char* name) { return qvOS::doesFileExist(name); }

bool qvOS_IsFileWriteableW(const qv::WChar* name) { return qvOS::isFileWritable(name); }

bool qvOS_IsFileWriteable(const char* name) { return qvOS::isFileWritable(name); }

bool qvOS_DoesDirectoryExist(const char* name) { return qvOS::doesFileExist(name); }

bool qvOS_CopyFileToW(const qv::WChar* from, const qv::WChar* to) { return qvOS::copyFails(from, to); }

bool qvOS_CopyFileTo(const char* from, const char* to) { return qvOS::copyFails(from, to); }

int qvOS_ReadHeaderFromFileW(const qv::WChar* name, void* buffer, int count) {
  return qvOS::readHeader(name, buffer, count);
}

int qvOS_ReadHeaderFromFile(const char* name, void* buffer, int count) {
  return qvOS::readHeader(name, buffer, count);
}
