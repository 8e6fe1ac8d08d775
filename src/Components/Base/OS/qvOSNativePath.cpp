#include "Base/OS/qvOSNativePath.h"

#include "Base/Platform/qvPlatformPath.h"

#include <string>

namespace qvOS {

qvString::CString toNativePath(const qvString::IString& path) {
  return qvString::CString(qvPlatform::nativePath(path.asWChar(), path.length()));
}

qvString::IString fromNativePath(const qvString::CString& path) {
  return qvString::IString(qvPlatform::widePath(path.asChar(), path.length()));
}

} // namespace qvOS
