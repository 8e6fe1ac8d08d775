// The checks of file arguments against the disk.
#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSGetOpt.h"

namespace qvOS {

using qvString::IString;
using qvUtil::Error;

namespace {

Error failure(const char* format, const IString& text) { return Error(1, format, text.asWChar()); }

// A name that no file system answers to is one of a file that does not exist.
FileStatus statusOf(const IString& name) {
  FileStatus status;
  (void)File::query(name, status);
  return status;
}

// Whether a new file can be made there.
Error checkDirectoryOf(const IString& name) {
  const Filename path(name);
  const IString directory = path.dirname().isEmpty() ? IString(QV_W('.')) : path.dirname();
  const FileStatus status = statusOf(directory);
  if (!status.exists()) return failure("Directory for %S does not exist.", name);
  if (!status.isDirectory()) return failure("%S is not a valid path.", name);
  if (status.isWritable()) return Error();
  if (directory == IString(QV_W('.'))) return Error(1, "The current directory is not writable.");
  return failure("Directory is not writable: %S", directory);
}

} // namespace

Error GetOpt::validFileName(const IString& name) {
  const Filename path(name);
  if (!isWindowsReservedDeviceName(path)) return Error();
  return failure("%S is a reserved device name.  Please choose another name.", path.baseTrunk());
}

Error GetOpt::validInputFile(const IString& name) {
  if (Error error = validFileName(name)) return error;
  const FileStatus status = statusOf(name);
  if (!status.exists()) return failure("%S does not exist.", name);
  if (!status.isFile()) return failure("%S exists but is not a file.", name);
  if (!status.isReadable()) return failure("%S is not readable.", name);
  return Error();
}

Error GetOpt::validOutputFile(const IString& name) {
  if (Error error = validFileName(name)) return error;
  const FileStatus status = statusOf(name);
  if (!status.exists()) return checkDirectoryOf(name);
  if (!status.isFile()) return failure("%S exists but is not a file.", name);
  if (!status.isWritable()) return failure("%S is not writable.", name);
  return Error();
}

Error GetOpt::validInOutFile(const IString& name) {
  Error error = validInputFile(name);
  return error ? error : validOutputFile(name);
}

Error GetOpt::validDirectory(const IString& name) {
  if (Error error = validFileName(name)) return error;
  const FileStatus status = statusOf(name);
  if (!status.exists()) return failure("%S does not exist.", name);
  if (!status.isDirectory()) return failure("%S exists but is not a directory.", name);
  return Error();
}

} // namespace qvOS
