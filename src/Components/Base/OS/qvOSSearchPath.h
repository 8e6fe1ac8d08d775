// A list of directories in which files are looked for, such as the one in the environment variable "PATH".
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "Base/qvBase.h"

namespace qvOS {

/// Directories in the order in which they are searched, each once. Two names of one directory count as two
/// directories. Not thread-safe, but for reading.
class SearchPath {
public:
  /// Unset: without directories, until they are set or one is added.
  SearchPath() = default;

  /// Replaces the directories by those of `list`: native paths with the platform's list separator between
  /// them (a colon on POSIX systems, a semicolon on Windows). Empty ones are passed over, so that the current
  /// directory is searched only where the list names it.
  QV_BASE_API void set(const qvString::CString& list);
  /// True after `set` and `addDirectory`, whatever was removed since.
  [[nodiscard]] bool isSet() const noexcept { return set_; }
  /// In canonical form.
  [[nodiscard]] const qv::vector<qvString::IString>& getDirectories() const noexcept { return directories_; }

  /// Adds a directory at the end; it need not exist. False where it is empty or there already.
  QV_BASE_API bool addDirectory(const qvString::IString& directory);
  /// False where it is not there.
  QV_BASE_API bool removeDirectory(const qvString::IString& directory);

  /// Looks for a file, which is no directory, of that name in each directory in turn, and stores the first
  /// one in `found`. The name may have directories of its own; an absolute one is looked for as it stands.
  /// False where there is none, and `found` then stays as it was.
  QV_BASE_API bool searchFor(const qvString::IString& name, Filename& found) const;

private:
  qv::vector<qvString::IString> directories_;
  bool set_ = false;
};

} // namespace qvOS
