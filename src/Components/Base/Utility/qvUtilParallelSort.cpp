#include "Base/Utility/qvUtilParallelSort.h"

namespace qvUtil {

template class SMPSortPiecewise<std::int32_t*, IndexedBinaryPredicate<IntRange2d>>;
template class SMPSortMerge<std::int32_t*, IndexedBinaryPredicate<IntRange2d>>;

} // namespace qvUtil
