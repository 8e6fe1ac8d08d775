// Whole paths, and the form of them that interfaces for long paths take. Private to the library.
#pragma once

#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"

namespace qvOS {

/// Stores `name` in canonical form and absolute.
/// @return no error; or code 14 with the system's text where no absolute path can be told, and then `out` is
/// the canonical path as it is.
[[nodiscard]] qvUtil::Error makeAbsolutePath(const qvString::IString& name, qvString::IString& out);

/// Stores `name`, made absolute, behind "\\?\", or "\\?\UNC\" for a network name.
/// @return as `makeAbsolutePath`, whose path has no prefix on failure.
[[nodiscard]] qvUtil::Error makeExtendedPath(const qvString::IString& name, qvString::IString& out);

} // namespace qvOS
