// The ground that every header stands on: the export marks, the 16-bit character and the tag of argument
// lists.
#pragma once

#include <cstdarg>

#if defined(_WIN32)
#if defined(QV_BASE_STATIC)
#define QV_BASE_API
#elif defined(QV_BASE_BUILD)
#define QV_BASE_API __declspec(dllexport)
#else
#define QV_BASE_API __declspec(dllimport)
#endif
#define QV_PLUGIN_EXPORT extern "C" __declspec(dllexport)
#define QV_W(text) L##text
#else
#define QV_BASE_API __attribute__((visibility("default")))
#define QV_PLUGIN_EXPORT extern "C" __attribute__((visibility("default"))) // the functions of a plug-in
#define QV_W(text) u##text
#endif

namespace qv {

#if defined(_WIN32)
using WChar = wchar_t;
#else
using WChar = char16_t;
#endif

/// A wide character: one 16-bit unit of UTF-16 text. Surrogates need not pair up.
static_assert(sizeof(WChar) == 2);

/// Marks an overload that takes a started argument list. Some compilers make `va_list` a plain `char*`, so
/// without it a call such as `f("%s", buffer)` would read the buffer as a list.
struct VaListTag {
  explicit VaListTag() = default;
};

} // namespace qv
