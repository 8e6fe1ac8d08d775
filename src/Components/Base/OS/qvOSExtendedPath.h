// The form of a path that interfaces for long paths take.
#pragma once

#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"

namespace qvOS {

/// Stores `name`, made absolute, behind "\\?\", or "\\?\UNC\" for a network name.
/// @return no error; or code 14 with the system's text where no absolute path can be told, and then `out` is
/// the canonical path as it is.
qvUtil::Error makeExtendedPath(const qvString::IString& name, qvString::IString& out);

} // namespace qvOS
