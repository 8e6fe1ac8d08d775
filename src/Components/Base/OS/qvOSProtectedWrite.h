// Replacing a file without risking the old one: the client writes a temporary file, and `finalize` swaps it
// in.
#pragma once

#include "Base/OS/qvOSFilename.h"

namespace qvOS {

/// One safe save:
///
///     qvOS::ProtectedWrite save(name);
///     if (!save.init()) return failed(save.getStatus());
///     if (!writeEverything(save.getTempFilename())) save.invalidate();
///     if (!save.finalize()) return failed(save.getStatus());
///
/// `finalize` sets the old file aside under a second temporary name, moves the new one into place, gives it
/// the old one's permission bits and, where the system allows, its owner and group, and puts the old one back
/// if the move fails. Leaving without `finalize` abandons the save and leaves the main file as it was.
///
/// By default both temporary names lie beside the main file, so that the swap is two renames. The copy
/// strategy puts them into the temporary directory, and the swap copies.
///
/// A process that is killed in the swap leaves either the old or the new file whole under the main name, or
/// nothing there and the old file whole under the backup name, which begins with the first three characters
/// of the main file's name and ends in the process number and ".1.tmp". With the copy strategy a killed
/// process can also leave a part of the new file under the main name while the old one is whole under the
/// backup name.
///
/// A main file that is a symbolic link is replaced itself; what it leads to keeps the old content.
///
/// Not promised: two writers that save the same file at the same time. An object belongs to one thread.
class ProtectedWrite {
public:
  enum status {
    statusOk = 0,                  ///< nothing has gone wrong
    statusMainNotWritable = 1,     ///< the main file is not writable, or the final move failed and was undone
    statusTempDirCreated = 2,      ///< there was no temporary directory, and it was created
    statusTempDirNotDirectory = 3, ///< the temporary directory's name is that of something else
    statusStaleTempNotRemoved = 4, ///< an old temporary of the chosen name could not be deleted
    statusTempMissing = 5,         ///< at `finalize` there is no temporary file, or it did not reach the disk
    statusBackupFailed = 6,        ///< the old file could not be set aside
    statusInvalidated = 7          ///< the client called `invalidate`
  };

  QV_BASE_API explicit ProtectedWrite(const Filename& mainFile);
  QV_BASE_API ProtectedWrite(const ProtectedWrite& other);
  QV_BASE_API ProtectedWrite& operator=(const ProtectedWrite& other);
  /// Deletes the temporary file if there is one, whatever happened before. Never touches the backup.
  QV_BASE_API ~ProtectedWrite();

  /// Chooses the copy strategy. To be called before `init`. It is also chosen, for the whole process, by the
  /// environment variable VELUM_PROTECTED_WRITE_USE_COPY being set, to any value.
  QV_BASE_API void useCopyStrategy();

  /// Chooses the temporary names and makes sure that nothing is in the way. Creates no file. True if the
  /// status is `statusOk`. A second call changes nothing.
  QV_BASE_API bool init();

  QV_BASE_API const Filename& getMainFilename() const;
  /// Where to write. Empty until `init` has succeeded in choosing a name.
  QV_BASE_API const Filename& getTempFilename() const;

  /// Tells that writing failed: `finalize` will refuse.
  QV_BASE_API void invalidate();

  /// Swaps the new file in and deletes both temporaries. True if the status is `statusOk`; true also without
  /// `init`, since no protection was begun.
  QV_BASE_API bool finalize();

  QV_BASE_API status getStatus() const;

private:
  void checkTempDirectory();
  void chooseNames();
  bool setOldFileAside();
  void moveIntoPlace(bool oldFileAside);
  void keepNames() const;

  Filename mainFilename_;
  Filename tempFilename_;
  Filename backupFilename_;
  status statusValue_ = statusOk;
  bool initialized_ = false;
  bool valid_ = true;
  bool copyStrategy_ = false;
};

} // namespace qvOS
