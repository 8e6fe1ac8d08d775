#include "Base/Utility/qvUtilProgress.h"

namespace qvUtil {

Progress::~Progress() = default;

} // namespace qvUtil
