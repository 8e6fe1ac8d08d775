#include "Base/Callback/qvRTBAsyncSignal.h"

namespace qvRTB {

AsyncSignal::~AsyncSignal() = default;

} // namespace qvRTB
