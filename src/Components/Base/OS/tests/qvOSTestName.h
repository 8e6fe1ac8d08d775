// Names and whole files for the tests of this component.
#pragma once

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"
#include "testing/qvTestStrings.h"

#include <string>

namespace qvTest {

/// The library's name for the file that the system knows as `native`.
inline qvString::IString wide(const std::string& native) {
  return qvOS::fromNativePath(qvString::CString(native.c_str()));
}
inline qvOS::Filename filename(const std::string& native) { return qvOS::Filename(wide(native)); }
inline std::string native(const qvString::IString& name) { return qvOS::toNativePath(name).asChar(); }

/// Writes a file through `File`. @return the code of the first failure.
inline int writeFile(const std::string& path, const std::string& content) {
  qvOS::File file(wide(path));
  if (const qvUtil::Error error = file.open(qvOS::FileTransport::openWrite)) return error.num();
  const qvUtil::Error error = file.write(content.data(), content.size(), nullptr);
  return file.close() ? -1 : error.num();
}

} // namespace qvTest
