#include "Base/Thread/qvThreadReferenceCount.h"

namespace qvThread {

ReferenceCount::~ReferenceCount() = default;

} // namespace qvThread
