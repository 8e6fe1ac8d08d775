// The files that go into a package, the names that they get, and where entries may be written.
#pragma once

#include "native.h"

#include <optional>
#include <string>
#include <vector>

/// A file to be stored.
struct Source {
  std::string path;
  qvString::IString name;
};

/// Every file under each of `paths`, in the order of the paths and by name within a directory, with the names
/// that the entries get: relative to `from` where that is given. What cannot be stored is reported and left
/// out: a path outside `from`, what is no file, a name that a package cannot hold exactly, a name that is
/// taken, and `package` itself.
[[nodiscard]] std::vector<Source> collect(const std::vector<std::string>& paths,
                                          const std::optional<std::string>& from, const std::string& package);

/// True where an entry of this name may be written below a target directory: no drive letter, no leading
/// separator and no "..".
[[nodiscard]] bool staysInside(const qvString::IString& name);

/// Whether there is anything of that name, a link that leads nowhere included.
[[nodiscard]] bool exists(const std::string& path);

/// Makes an empty file with the permissions that the user's mask gives, or empties the one that is there.
[[nodiscard]] bool makeEmptyFile(const std::string& path);
