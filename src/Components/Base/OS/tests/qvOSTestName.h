// Names and whole files for the tests of this component.
#pragma once

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestStrings.h"

#include <string>

namespace qvTest {

/// The library's name for the file that the system knows as `native`.
inline qvString::IString wide(const std::string& native) {
  return qvOS::fromNativePath(qvString::CString(native.c_str()));
}
inline qvOS::Filename filename(const std::string& native) { return qvOS::Filename(wide(native)); }
inline std::string native(const qvString::IString& name) { return qvOS::toNativePath(name).asChar(); }

/// A scratch directory whose files the library opens.
class Scratch : public Directory {
public:
  [[nodiscard]] qvString::IString name(std::string_view file) const { return wide(path(file)); }
  [[nodiscard]] qvOS::File file(std::string_view file) const { return qvOS::File(name(file)); }
};

} // namespace qvTest
