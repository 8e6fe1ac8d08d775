// What a format asks of its caller, for those who compare formats, such as translations of one text.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringCString.h"
#include "Base/qvBase.h"

namespace qvString {

/// The directives of a wide format that take arguments, in order and as the formatter reads them (see
/// qvStringFormat.h). Each is told by `%`, a `*` for a width and a `.*` for a precision among the arguments,
/// and its size and letter, of which those that mean the same are told alike: "%d" for `%5i`, "%I64x" for
/// `%llx`,
/// "%S" for any wide string. Two formats can be given the same arguments where the results are equal.
[[nodiscard]] QV_BASE_API qv::vector<CString> formatArguments(const qv::WChar* format);

} // namespace qvString
