#include "Base/OS/qvOSProtectedWrite.h"

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/OS/qvOSTemporary.h"
#include "Base/Platform/qvPlatformFile.h"

#include <cstdlib>

namespace qvOS {

namespace {

bool environmentAsksForCopies() {
  static const bool asks = std::getenv("VELUM_PROTECTED_WRITE_USE_COPY") != nullptr;
  return asks;
}

/// True if nothing of that name is left.
bool deleteIfPresent(const Filename& name) { return !doesFileExist(name) || !fileDelete(name); }

bool reachesDisk(const Filename& name) { return !qvPlatform::syncFileAt(toNativePath(name).asChar()); }

Filename beside(const Filename& main, const Filename& temporary) {
  return Filename(main.dirname(), temporary.basename());
}

} // namespace

static_assert(sizeof(ProtectedWrite) == 3 * sizeof(Filename) + 8);

ProtectedWrite::ProtectedWrite(const Filename& mainFile)
    : mainFilename_(mainFile.name()) {} // from the name, so that its separator is the platform's

ProtectedWrite::ProtectedWrite(const ProtectedWrite& other) = default;

ProtectedWrite& ProtectedWrite::operator=(const ProtectedWrite& other) = default;

ProtectedWrite::~ProtectedWrite() { deleteIfPresent(tempFilename_); }

void ProtectedWrite::useCopyStrategy() { copyStrategy_ = true; }

bool ProtectedWrite::init() {
  if (initialized_) return statusValue_ == statusOk;
  initialized_ = true;
  if (!copyStrategy_) copyStrategy_ = environmentAsksForCopies();
  FileStatus main;
  static_cast<void>(File::query(mainFilename_, main));
  if (main.exists() && !main.isWritable()) statusValue_ = statusMainNotWritable;
  if (statusValue_ == statusOk && copyStrategy_) checkTempDirectory();
  if (statusValue_ != statusOk) return false;
  chooseNames();
  const bool tempFree = deleteIfPresent(tempFilename_);
  const bool backupFree = deleteIfPresent(backupFilename_);
  if (!tempFree || !backupFree) statusValue_ = statusStaleTempNotRemoved;
  return statusValue_ == statusOk;
}

/// A temporary directory that had to be made stops the save; one that could not be made deliberately does
/// not.
void ProtectedWrite::checkTempDirectory() {
  const Filename directory = getTempDirectory();
  FileStatus state;
  static_cast<void>(File::query(directory, state));
  if (!state.exists()) {
    if (directory.makeDir()) statusValue_ = statusTempDirCreated;
  } else if (!state.isDirectory()) {
    statusValue_ = statusTempDirNotDirectory;
  }
}

void ProtectedWrite::chooseNames() {
  const qv::WChar* prefix = mainFilename_.basename().asWChar();
  tempFilename_ = createTmpFilename(QV_W("0.tmp"), prefix);
  backupFilename_ = createTmpFilename(QV_W("1.tmp"), prefix);
  if (copyStrategy_) return;
  tempFilename_ = beside(mainFilename_, tempFilename_);
  backupFilename_ = beside(mainFilename_, backupFilename_);
}

const Filename& ProtectedWrite::getMainFilename() const { return mainFilename_; }

const Filename& ProtectedWrite::getTempFilename() const { return tempFilename_; }

void ProtectedWrite::invalidate() { valid_ = false; }

bool ProtectedWrite::finalize() {
  if (!initialized_) return true;
  if (statusValue_ == statusOk && !valid_) statusValue_ = statusInvalidated;
  if (statusValue_ == statusOk && !(doesFileExist(tempFilename_) && reachesDisk(tempFilename_)))
    statusValue_ = statusTempMissing;
  bool oldFileAside = false;
  if (statusValue_ == statusOk) oldFileAside = setOldFileAside();
  if (statusValue_ == statusOk) moveIntoPlace(oldFileAside);
  deleteIfPresent(tempFilename_);
  // Without a main file the backup is the only copy, as after a rename that was done and yet reported to
  // fail.
  if (doesFileExist(mainFilename_)) deleteIfPresent(backupFilename_);
  return statusValue_ == statusOk;
}

/// True if there was an old file and it now has the backup name. Where it cannot be told whether there is
/// one, nothing is touched and the save fails.
bool ProtectedWrite::setOldFileAside() {
  FileStatus old;
  const bool unknown = static_cast<bool>(File::query(mainFilename_, old));
  if (!unknown && !old.exists()) return false;
  if (!unknown) {
    static_cast<void>(qvPlatform::copyAttributes(toNativePath(mainFilename_).asChar(),
                                                 toNativePath(tempFilename_).asChar()));
    if (!fileRename(mainFilename_, backupFilename_)) return true;
  }
  statusValue_ = statusBackupFailed;
  return false;
}

void ProtectedWrite::moveIntoPlace(bool oldFileAside) {
  const bool moved = !fileRename(tempFilename_, mainFilename_);
  if (moved && (!copyStrategy_ || reachesDisk(mainFilename_))) return keepNames();
  statusValue_ = statusMainNotWritable;
  if (moved || oldFileAside) static_cast<void>(fileDelete(mainFilename_));
  // An old file that does not come back is its only copy, and stays under the name that it has.
  if (oldFileAside && fileRename(backupFilename_, mainFilename_)) backupFilename_ = Filename();
}

/// Asks that the swapped names outlive a loss of power, before the old file goes. Not every file system can
/// be asked.
void ProtectedWrite::keepNames() const {
  const qvString::IString& directory = mainFilename_.dirname();
  const qvString::CString native = directory.isEmpty() ? qvString::CString(".") : toNativePath(directory);
  static_cast<void>(qvPlatform::syncDirectory(native.asChar()));
}

ProtectedWrite::status ProtectedWrite::getStatus() const { return statusValue_; }

} // namespace qvOS
