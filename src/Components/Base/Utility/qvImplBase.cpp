#include "Base/Utility/qvImplBase.h"

namespace qv {

ImplBase::~ImplBase() = default;

} // namespace qv
