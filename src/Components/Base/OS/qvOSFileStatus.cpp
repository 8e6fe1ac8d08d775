#include "Base/OS/qvOSFileStatus.h"

namespace qvOS {

static_assert(sizeof(void*) != 8 || sizeof(FileStatus) == 64);

void FileStatus::reset() { *this = FileStatus(); }

} // namespace qvOS
