#include "Base/OS/qvOSExtendedPath.h"

#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformPath.h"

#include <string>

namespace qvOS {

namespace {

constexpr int systemCallFailed = 14;

qvUtil::Error makeAbsolute(qvString::IString& path) {
  std::string full;
  if (const int error = qvPlatform::absolutePath(toNativePath(path).asChar(), &full))
    return {systemCallFailed, "%s", qvPlatform::systemErrorText(error).c_str()};
  path = fromNativePath(qvString::CString(full));
  return {};
}

} // namespace

qvUtil::Error makeExtendedPath(const qvString::IString& name, qvString::IString& out) {
  const Filename file(name);
  out = file.name();
  if (!file.isAbsolute())
    if (const qvUtil::Error error = makeAbsolute(out)) return error;
  const qv::WChar sep = Filename::separator();
  if (out.length() > 1 && out[0] == sep && out[1] == sep)
    out.erase(0, 2).prepend(QV_W("\\\\?\\UNC\\"));
  else
    out.prepend(QV_W("\\\\?\\"));
  return {};
}

} // namespace qvOS
