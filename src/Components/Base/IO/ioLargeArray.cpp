// Parcels of large arrays: byte for byte, a packet holds reference, first index, length, elements.
#include "Base/IO/ioLargeArray.h"

#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioWriteContext.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int parcelSize = 1024;

/// Which operations move an array of `T`.
template <class T>
struct ArrayOf;

template <class T, void (ioWriteContext::*Write)(const T*, int), void (ioReadContext::*Read)(T*, int)>
struct Operations {
  static constexpr auto write = Write;
  static constexpr auto read = Read;
};

template <>
struct ArrayOf<bool> : Operations<bool, &ioWriteContext::writeBoolArray, &ioReadContext::fetchBoolArray> {};
template <>
struct ArrayOf<char> : Operations<char, &ioWriteContext::writeCharArray, &ioReadContext::fetchCharArray> {};
template <>
struct ArrayOf<unsigned char>
    : Operations<unsigned char, &ioWriteContext::writeUCharArray, &ioReadContext::fetchUCharArray> {};
template <>
struct ArrayOf<short> : Operations<short, &ioWriteContext::writeShortArray, &ioReadContext::fetchShortArray> {
};
template <>
struct ArrayOf<unsigned short>
    : Operations<unsigned short, &ioWriteContext::writeUShortArray, &ioReadContext::fetchUShortArray> {};
template <>
struct ArrayOf<int> : Operations<int, &ioWriteContext::writeIntArray, &ioReadContext::fetchIntArray> {};
template <>
struct ArrayOf<unsigned int>
    : Operations<unsigned int, &ioWriteContext::writeUIntArray, &ioReadContext::fetchUIntArray> {};
template <>
struct ArrayOf<std::int64_t>
    : Operations<std::int64_t, &ioWriteContext::writeInt64Array, &ioReadContext::fetchInt64Array> {};
template <>
struct ArrayOf<std::uint64_t>
    : Operations<std::uint64_t, &ioWriteContext::writeUInt64Array, &ioReadContext::fetchUInt64Array> {};
template <>
struct ArrayOf<float> : Operations<float, &ioWriteContext::writeFloatArray, &ioReadContext::fetchFloatArray> {
};
template <>
struct ArrayOf<double>
    : Operations<double, &ioWriteContext::writeDoubleArray, &ioReadContext::fetchDoubleArray> {};

} // namespace

template <ioArrayElement T>
void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner, int count,
                       const T* elements) {
  for (int first = 0, length; first < count; first += length) {
    length = std::min(count - first, parcelSize);
    context.startPacket(packetName, nullptr);
    context.writeReference(owner, false);
    context.writeInt(first);
    context.writeInt(length);
    (context.*ArrayOf<T>::write)(elements + first, length);
    context.endPacket();
  }
}

template <ioArrayElement T>
bool ioReadArrayParcel(ioReadContext& context, T* array, int size) {
  const int first = context.fetchInt();
  const int length = context.fetchInt();
  if (first < 0 || length < 0 || length > parcelSize || length > size - first) {
    context.invalidPacket();
    return false;
  }
  (context.*ArrayOf<T>::read)(array + first, length);
  return true;
}

template <ioArrayElement T>
void ioReadArrayParcel(ioReadContext& context, T* array) {
  ioReadArrayParcel(context, array, std::numeric_limits<int>::max());
}

template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int, const bool*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int, const char*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int,
                                            const unsigned char*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int, const short*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int,
                                            const unsigned short*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int, const int*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int,
                                            const unsigned int*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int,
                                            const std::int64_t*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int,
                                            const std::uint64_t*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int, const float*);
template QV_BASE_API void ioWriteLargeArray(ioWriteContext&, const char*, const void*, int, const double*);

template QV_BASE_API void ioReadArrayParcel(ioReadContext&, bool*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, char*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, unsigned char*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, short*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, unsigned short*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, int*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, unsigned int*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, std::int64_t*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, std::uint64_t*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, float*);
template QV_BASE_API void ioReadArrayParcel(ioReadContext&, double*);

template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, bool*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, char*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, unsigned char*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, short*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, unsigned short*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, int*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, unsigned int*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, std::int64_t*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, std::uint64_t*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, float*, int);
template QV_BASE_API bool ioReadArrayParcel(ioReadContext&, double*, int);
