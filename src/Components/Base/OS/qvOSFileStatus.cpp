#include "Base/OS/qvOSFileStatus.h"

namespace qvOS {

void FileStatus::reset() { *this = FileStatus(); }

} // namespace qvOS
