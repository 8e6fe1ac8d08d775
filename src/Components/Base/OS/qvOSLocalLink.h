// What only the local disk knows of its names: which are links, and which two lead to one file. Transports of
// any other kind are never links. Private to the library.
#pragma once

#include "Base/Utility/qvUtilError.h"

namespace qvOS {

class FileTransport;

/// False if a recursive delete must not look for entries behind this name: it is a symbolic link, or what it
/// is cannot be told.
[[nodiscard]] bool mayDescend(const FileTransport& transport);

/// How a copy of the directory that holds a name treats it.
enum class CopyKind {
  content, ///< by `copyTo`: files, links to files, directories, and all that is not on the local disk
  link,    ///< by `copyLink`: any other symbolic link
  nothing  ///< pipes, devices and the like, which have no content to copy
};
[[nodiscard]] CopyKind copyKind(const FileTransport& transport);

/// Makes `dest` a symbolic link that leads where the link `source` says; a link of that name is replaced.
/// Code 2 where something else has the name, 1 where `dest` is not on the local disk.
[[nodiscard]] qvUtil::Error copyLink(const FileTransport& source, const FileTransport& dest);

/// True if both have the same full name, or if both lead to one existing file on the local disk.
[[nodiscard]] bool isSameFile(const FileTransport& a, const FileTransport& b);

/// True if `dest` is a name inside the directory `source` on the local disk, at any depth.
[[nodiscard]] bool liesInside(const FileTransport& dest, const FileTransport& source);

} // namespace qvOS
