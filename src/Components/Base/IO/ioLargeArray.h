// Large arrays in parcels: one packet for each run of up to 1024 elements, so that neither side needs a
// packet as large as the array.
#pragma once

#include "Base/qvBase.h"

#include <concepts>
#include <cstdint>

class ioReadContext;
class ioWriteContext;

/// The eleven types whose arrays a context reads and writes.
template <class T>
concept ioArrayElement = std::same_as<T, bool> || std::same_as<T, char> || std::same_as<T, unsigned char> ||
    std::same_as<T, short> || std::same_as<T, unsigned short> || std::same_as<T, int> ||
    std::same_as<T, unsigned int> || std::same_as<T, std::int64_t> || std::same_as<T, std::uint64_t> ||
    std::same_as<T, float> || std::same_as<T, double>;

/// Writes `count` elements as packets of the type `packetName`, each with a reference to `owner`, the run's
/// first index, its length and its elements. A count below 1 writes nothing.
template <ioArrayElement T>
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const T* elements);

/// Reads the run of one parcel into its place in `array`; the packet's type has read the owner's reference
/// before. The file tells where the run lies, and this form trusts it: use it for files of known origin. A
/// negative index, or a length that no writer uses, reads nothing and abandons the packet.
template <ioArrayElement T>
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, T* array);

/// The same for any file: a run that does not lie inside the array's `size` elements reads nothing and
/// abandons the packet. @return whether the run was read.
template <ioArrayElement T>
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, T* array, int size);
