// Plain functions on file names: they ask or change the local disk directly, and open nothing that stays
// open.
#pragma once

#include "Base/Utility/qvUtilError.h"
#include "Base/qvBase.h"

namespace qvOS {

class Filename;

/// True if there is a file or directory of that name, and it could be asked.
QV_BASE_API bool doesFileExist(const Filename& name);
QV_BASE_API bool doesFileExist(const char* name);
QV_BASE_API bool doesFileExist(const qv::WChar* name);

/// True if the file exists and may be written to.
QV_BASE_API bool isFileWritable(const Filename& name);
QV_BASE_API bool isFileWritable(const char* name);
QV_BASE_API bool isFileWritable(const qv::WChar* name);

/// Deletes a file; a symbolic link is deleted itself. Code 1 with the system's text on failure.
QV_BASE_API qvUtil::Error fileDelete(const Filename& name);
QV_BASE_API qvUtil::Error fileDelete(const char* name);
QV_BASE_API qvUtil::Error fileDelete(const qv::WChar* name);

/// Copies a file with its permission bits and its modification time. Without `overwrite` an existing target
/// is never opened. Unlike a copy through `File`, every failure is reported.
/// @return code 2 if the source, or the directory of the target, does not exist; 3 if the target exists and
/// must not be overwritten; 1 for every other failure. These are codes of this function's own.
QV_BASE_API qvUtil::Error fileCopy(const Filename& from, const Filename& to, bool overwrite);
QV_BASE_API qvUtil::Error fileCopy(const char* from, const char* to, bool overwrite);
QV_BASE_API qvUtil::Error fileCopy(const qv::WChar* from, const qv::WChar* to, bool overwrite);

/// `fileCopy`, and if that succeeded the source is deleted; whether that worked is not reported.
QV_BASE_API qvUtil::Error fileMove(const Filename& from, const Filename& to, bool overwrite);
QV_BASE_API qvUtil::Error fileMove(const char* from, const char* to, bool overwrite);
QV_BASE_API qvUtil::Error fileMove(const qv::WChar* from, const qv::WChar* to, bool overwrite);

/// Renames within one directory, where an existing target is never replaced and every failure has code 6.
/// Between names whose directories are spelled differently it is `fileMove` with overwriting, and has its
/// codes.
QV_BASE_API qvUtil::Error fileRename(const Filename& from, const Filename& to);
QV_BASE_API qvUtil::Error fileRename(const char* from, const char* to);
QV_BASE_API qvUtil::Error fileRename(const qv::WChar* from, const qv::WChar* to);

} // namespace qvOS

/// The same for callers without classes. Narrow names are in the default encoding; a null name is an empty
/// one.

extern "C" {

/// As `doesFileExist`.
QV_BASE_API bool qvOS_DoesFileExistW(const qv::WChar* name);
QV_BASE_API bool qvOS_DoesFileExist(const char* name);
/// As `isFileWritable`.
QV_BASE_API bool qvOS_IsFileWriteableW(const qv::WChar* name);
QV_BASE_API bool qvOS_IsFileWriteable(const char* name);
/// As `doesFileExist`: a plain file of that name also gives true.
QV_BASE_API bool qvOS_DoesDirectoryExist(const char* name);
/// Copies through `File::copyTo`. The sense is the reverse of what the name leads one to expect: true is a
/// copy that failed, false is a copy that succeeded or never ran.
QV_BASE_API bool qvOS_CopyFileToW(const qv::WChar* from, const qv::WChar* to);
QV_BASE_API bool qvOS_CopyFileTo(const char* from, const char* to);
/// Reads the first `count` bytes of a file into `buffer`, which must have room for them.
/// @return `count`; 0 if `count` is 0; -1 on any failure. A file shorter than `count` is a failure.
QV_BASE_API int qvOS_ReadHeaderFromFileW(const qv::WChar* name, void* buffer, int count);
QV_BASE_API int qvOS_ReadHeaderFromFile(const char* name, void* buffer, int count);

} // extern "C"
