#include "Base/Callback/qvRTBFunction.h"

namespace qvRTB {

FunctionBase::~FunctionBase() = default;

bool FunctionBase::isGlobalFunction(void*) { return false; }

bool FunctionBase::isInstance(void*) { return false; }

} // namespace qvRTB
