#include "Base/OS/qvOSExtendedPath.h"

#include "Base/OS/qvOSFileError.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformPath.h"

#include <string>

namespace qvOS {

qvUtil::Error makeAbsolutePath(const qvString::IString& name, qvString::IString& out) {
  const Filename file(name);
  out = file.name();
  if (file.isAbsolute()) return {};
  std::string full;
  if (const int error = qvPlatform::absolutePath(toNativePath(file).asChar(), &full))
    return {FileError::systemCall, "%s", qvPlatform::systemErrorText(error).c_str()};
  out = fromNativePath(qvString::CString(full));
  return {};
}

qvUtil::Error makeExtendedPath(const qvString::IString& name, qvString::IString& out) {
  if (const qvUtil::Error error = makeAbsolutePath(name, out)) return error;
  const qv::WChar sep = Filename::separator();
  if (out.length() > 1 && out[0] == sep && out[1] == sep)
    out.erase(0, 2).prepend(QV_W("\\\\?\\UNC\\"));
  else
    out.prepend(QV_W("\\\\?\\"));
  return {};
}

} // namespace qvOS
