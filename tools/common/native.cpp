#include "native.h"

#include "Base/OS/qvOSNativePath.h"

qvString::IString fromNative(const std::string& path) {
  return qvOS::fromNativePath(qvString::CString(path.c_str()));
}

std::string toNative(const qvString::IString& path) { return qvOS::toNativePath(path).asChar(); }

std::filesystem::path filePath(const std::string& native) {
  return std::filesystem::path(reinterpret_cast<const char8_t*>(native.c_str()));
}
