// A walk over the entries of one directory.
#pragma once

#include "Base/OS/qvOSFilename.h"
#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/qvBase.h"

namespace qvOS {

/// The entries of one directory, "." and ".." left out, in the order in which the system lists them:
///
///     for (qvOS::DirectoryIterator it(directory); it.next();) use(it.name());
///
/// An entry that comes or goes during the walk may be listed or not. Not thread-safe.
class DirectoryIterator {
public:
  /// Opens the directory. A failure shows in `error`, and the walk then has no entries.
  QV_BASE_API explicit DirectoryIterator(const Filename& directory);
  QV_BASE_API ~DirectoryIterator();
  DirectoryIterator(const DirectoryIterator&) = delete;
  DirectoryIterator& operator=(const DirectoryIterator&) = delete;

  /// Goes to the next entry, at first to the first; false after the last one and after a failure.
  QV_BASE_API bool next();

  /// The entry's name without its directory. The four that follow hold after a `next` that gave true.
  [[nodiscard]] QV_BASE_API const qvString::IString& name() const;
  /// The directory and the name, joined.
  [[nodiscard]] QV_BASE_API Filename path() const;
  /// True for a directory, and for a link that leads to one.
  [[nodiscard]] QV_BASE_API bool isDirectory() const;
  /// True for a symbolic link, wherever it leads. Who walks into directories passes over those.
  [[nodiscard]] QV_BASE_API bool isLink() const;

  /// No error; code 18 where there is no such directory, 10 where it is something else, 4 for any other
  /// failure.
  [[nodiscard]] QV_BASE_API qvUtil::Error error() const;

private:
  class Walk;
  Walk* walk_;
};

} // namespace qvOS
