#include "Base/OS/qvOSFilesystem.h"

#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformPath.h"

#include <string>

namespace qvOS {

using qvString::CString;
using qvString::IString;
using qvUtil::Error;

namespace {

/// The name itself where it exists, since it may be where another file system is mounted, else its directory.
CString nameOnVolume(const std::string& absolute) {
  const CString whole(absolute.c_str());
  qvPlatform::FileInfo info;
  return qvPlatform::queryFile(whole.asChar(), &info)
             ? toNativePath(Filename(fromNativePath(whole)).dirname())
             : whole;
}

} // namespace

Error Filesystem::stat() {
  const CString native = filename_.isEmpty() ? CString(".") : toNativePath(filename_);
  std::string absolute;
  if (native.isEmpty() || qvPlatform::absolutePath(native.asChar(), &absolute))
    return Error(1, "Filesystem::stat(): invalid path %ls\n", filename_.asWChar());

  const CString place = nameOnVolume(absolute);
  qvPlatform::VolumeSpace space;
  Error error;
  if (const int failed = qvPlatform::queryVolumeSpace(place.asChar(), &space)) {
    error = Error(1, "Filesystem::stat(): GetDiskFreeSpaceEx(%ls) failed: %s",
                  fromNativePath(place).asWChar(), qvPlatform::systemErrorText(failed).c_str());
  } else {
    blockSize_ = 1024;
    size_ = space.total / blockSize_;
    avail_ = space.available / blockSize_;
  }
  isRemote_ = false;
  static_cast<void>(qvPlatform::queryRemote(place.asChar(), &isRemote_));
  return error;
}

} // namespace qvOS
