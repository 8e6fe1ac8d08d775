#include "Base/OS/qvOSFilesystem.h"

#include "Base/OS/qvOSExtendedPath.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"

namespace qvOS {

using qvString::CString;
using qvString::IString;
using qvUtil::Error;

namespace {

/// The name itself where it exists, since it may be where another file system is mounted, else its directory.
IString nameOnVolume(const IString& name) {
  qvPlatform::FileInfo info;
  return qvPlatform::queryFile(toNativePath(name).asChar(), &info) ? Filename(name).dirname() : name;
}

} // namespace

static_assert(sizeof(Filesystem) == sizeof(IString) + 4 * sizeof(std::uint64_t));

Error Filesystem::stat() {
  IString whole;
  if (makeAbsolutePath(filename_.isEmpty() ? IString(".") : filename_, whole))
    return Error(1, "Filesystem::stat(): invalid path %ls\n", filename_.asWChar());

  const IString place = nameOnVolume(whole);
  const CString native = toNativePath(place);
  qvPlatform::VolumeSpace space;
  Error error;
  if (const int failed = qvPlatform::queryVolumeSpace(native.asChar(), &space)) {
    error = Error(1, "Filesystem::stat(): GetDiskFreeSpaceEx(%ls) failed: %s", place.asWChar(),
                  qvPlatform::systemErrorText(failed).c_str());
  } else {
    blockSize_ = 1024;
    size_ = space.total / blockSize_;
    avail_ = space.available / blockSize_;
  }
  isRemote_ = whole.find(QV_W("\\\\")) == 0; // A network name, whatever the system knows of it.
  if (!isRemote_) static_cast<void>(qvPlatform::queryRemote(native.asChar(), &isRemote_));
  return error;
}

} // namespace qvOS
