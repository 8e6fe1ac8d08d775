#include "Base/Utility/qvReferenceCount.h"

namespace qv {

ReferenceCount::~ReferenceCount() = default;

} // namespace qv
