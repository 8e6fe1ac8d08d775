// The codes with which operations on files fail.
#pragma once

namespace qvOS {

/// Code and text of a failed file operation; `File::getError` makes the failure value.
struct FileError {
  enum Code : int {
    none = 0,                  ///< ""
    notImplemented = 1,        ///< "Not Implemented"
    exists = 2,                ///< "File Exists"
    endOfFile = 3,             ///< "End Of File"
    ioProblem = 4,             ///< "An I/O problem has occurred"
    noWritePermission = 5,     ///< "No write permission"
    noReadPermission = 6,      ///< "No read permission"
    noOverwrite = 7,           ///< "No Overwrite permission"
    notOpen = 8,               ///< "File is not open"
    isOpen = 9,                ///< "File is open"
    notDirectory = 10,         ///< "Resource is not a directory"
    notFile = 11,              ///< "Resource is not a file"
    pathTooLong = 12,          ///< "The path is too long"
    notEmpty = 13,             ///< "The directory is not empty"
    systemCall = 14,           ///< "ErrSyscall"
    invalidUrl = 15,           ///< "The URL is invalid"
    permissionDenied = 16,     ///< "Permission Denied"
    authenticationFailed = 17, ///< "Authentication Failed"
    notFound = 18,             ///< "File does not exist"
    parentOfRoot = 19          ///< "Cannot become the parent of a root directory"
  };
};

} // namespace qvOS
