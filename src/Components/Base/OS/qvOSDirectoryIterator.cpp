#include "Base/OS/qvOSDirectoryIterator.h"

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"

#include <string_view>

namespace qvOS {

/// The open directory and the entry that the walk has come to.
class DirectoryIterator::Walk {
public:
  explicit Walk(const Filename& walked) : directory(walked) {
    systemError = entries.open(toNativePath(directory).asChar());
  }

  bool next() {
    const char* entry = nullptr;
    do {
      if (!systemError) systemError = entries.next(&entry);
      if (systemError || !entry) return false;
    } while (std::string_view(entry) == "." || std::string_view(entry) == "..");
    name = fromNativePath(entry);
    return true;
  }

  const Filename directory;
  qvPlatform::Directory entries;
  qvString::IString name;
  int systemError = 0;
};

DirectoryIterator::DirectoryIterator(const Filename& directory) : walk_(new Walk(directory)) {}

DirectoryIterator::~DirectoryIterator() { delete walk_; }

bool DirectoryIterator::next() { return walk_->next(); }

const qvString::IString& DirectoryIterator::name() const { return walk_->name; }

Filename DirectoryIterator::path() const { return Filename(walk_->directory.name(), walk_->name); }

bool DirectoryIterator::isDirectory() const { return walk_->entries.leadsToDirectory(); }

bool DirectoryIterator::isLink() const { return walk_->entries.kind() == qvPlatform::FileKind::link; }

qvUtil::Error DirectoryIterator::error() const {
  switch (qvPlatform::errorKind(walk_->systemError)) {
  case qvPlatform::ErrorKind::none:
    return {};
  case qvPlatform::ErrorKind::notFound:
    return File::getError(FileError::notFound);
  case qvPlatform::ErrorKind::notDirectory:
    return File::getError(FileError::notDirectory);
  default:
    return File::getError(FileError::ioProblem);
  }
}

} // namespace qvOS
