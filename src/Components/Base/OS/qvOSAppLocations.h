// Where an application's parts lie, as names made from other names. Private: AppMain asks the platform and
// keeps the results.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/String/qvStringIString.h"

namespace qvOS {

/// The executable's file name, with ".exe" where its suffix is another than "exe".
[[nodiscard]] qvString::IString appNameOf(const Filename& executable);

/// Appends the directories that plug-ins are looked for in, those that exist and are not yet in the vector.
/// A location that is not known (empty) leads to none.
void appendPluginDirectories(const qvString::IString& baseLocation, const qvString::IString& appLocation,
                             const qvString::IString& runtimeDirectory,
                             qv::vector<qvString::IString>& directories);

} // namespace qvOS
