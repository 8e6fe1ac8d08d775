// Names that nothing has yet. Private to the library.
#pragma once

#include "Base/OS/qvOSFilename.h"
#include "Base/String/qvStringIString.h"

namespace qvOS {

/// Makes an empty file in `directory` under a name that was free: the first three characters of `prefix`, a
/// hexadecimal number and ".tmp". @return 0 with the name in `*made`, else the system's number.
[[nodiscard]] int makeUniqueFile(const Filename& directory, const qvString::IString& prefix, Filename* made);

} // namespace qvOS
