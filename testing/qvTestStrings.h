// Lets a failing test show the library's strings and errors as text.
#pragma once

#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"

#include <ostream>

namespace qvString {

inline void PrintTo(const CString& text, std::ostream* out) { *out << '"' << text.view() << '"'; }

/// From a copy, so that the narrow form of the string itself stays as it is.
inline void PrintTo(const IString& text, std::ostream* out) { *out << '"' << IString(text).asUTF8() << '"'; }

} // namespace qvString

namespace qvUtil {

inline void PrintTo(const Error& error, std::ostream* out) {
  *out << "error " << error.num() << " \"" << Error(error).message() << '"';
}

} // namespace qvUtil
