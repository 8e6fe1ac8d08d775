// Temporary names, the directory they lie in, and the sweep that removes what crashed runs left there.
#pragma once

#include "Base/OS/qvOSFilename.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"

namespace qvOS {

/// The system's directory for temporary files, with no separator at its end unless it is a root. It need not
/// exist.
QV_BASE_API Filename getTempDirectory();

/// A name in the temporary directory that no file has: the first three characters of `prefix` ("QVTMP" if it
/// is null), a unique hexadecimal part, the process number, and "." and `suffix` unless that is empty, as in
/// "QVT1A2B4711.0.tmp". The name is not reserved. Where the directory cannot be written to, the name is a
/// separator and the process number, with the suffix.
QV_BASE_API Filename createTmpFilename(qvString::IString suffix, const qv::WChar* prefix);

/// The same in `directory`, with "recover" for a null prefix.
QV_BASE_API Filename createNewFilenameVariant(Filename directory, const qv::WChar* prefix,
                                              qvString::IString suffix);

/// Deletes the scratch files of the application in `directory` that were last modified more than 7 days ago,
/// and returns how many it deleted. Which names are scratch files is a fixed list of forms; no other file is
/// touched.
QV_BASE_API int cleanupTempDirectory(const qvString::IString& directory);
/// The same in the temporary directory and, where that is another, in "/tmp".
QV_BASE_API int cleanupTempDirectory();

/// Stores in `result` the run-time type name `name` without a leading "class ".
QV_BASE_API void cleanupTypeIdName(const char* name, qvString::CString& result);
/// The same; the pointer is to a static string that the next call overwrites. Not thread-safe.
QV_BASE_API const char* cleanupTypeIdName(const char* name);

} // namespace qvOS

extern "C" {

/// `createTmpFilename(suffix, null)` as text that the caller frees with `free`; null if the name is empty.
QV_BASE_API char* qvOS_CreateTemporaryFileName(const char* suffix);
QV_BASE_API qv::WChar* qvOS_CreateTemporaryFileNameW(const qv::WChar* suffix);
/// The name of `getTempDirectory` as text that the caller frees with `free`.
QV_BASE_API char* qvOS_GetTemporaryDirectory();
QV_BASE_API qv::WChar* qvOS_GetTemporaryDirectoryW();

} // extern "C"
