#include "Base/OS/qvOSSearchPath.h"

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformPath.h"
#include "Base/Utility/qvUtilText.h"

namespace qvOS {

using qvString::CString;
using qvString::IString;

namespace {

bool isFile(const Filename& name) {
  FileStatus status;
  return !File::query(name, status) && status.exists() && !status.isDirectory();
}

} // namespace

void SearchPath::set(const CString& list) {
  directories_.clear();
  set_ = true;
  for (const CString& native : qvUtil::split(list, qvPlatform::pathListSeparator, true, false))
    addDirectory(fromNativePath(native));
}

bool SearchPath::addDirectory(const IString& directory) {
  set_ = true;
  const Filename name(directory);
  if (name.name().isEmpty() || directories_.contains(name.name())) return false;
  directories_.append(name.name());
  return true;
}

bool SearchPath::removeDirectory(const IString& directory) {
  const Filename name(directory);
  const auto found = directories_.find(name.name());
  if (found == directories_.end()) return false;
  directories_.erase(found);
  return true;
}

bool SearchPath::searchFor(const IString& name, Filename& found) const {
  const Filename wanted(name);
  if (wanted.name().isEmpty()) return false;
  if (wanted.isAbsolute()) {
    if (!isFile(wanted)) return false;
    found = wanted;
    return true;
  }
  for (const IString& directory : directories_) {
    const Filename candidate(directory, wanted.name());
    if (!isFile(candidate)) continue;
    found = candidate;
    return true;
  }
  return false;
}

} // namespace qvOS
