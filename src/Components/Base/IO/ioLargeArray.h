// Large arrays in parcels: one packet for each run of up to 1024 elements, so that neither side needs a
// packet as large as the array.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

class ioReadContext;
class ioWriteContext;

/// Writes `count` elements as packets of the type `packetName`, each with a reference to `owner`, the run's
/// first index, its length and its elements. A count below 1 writes nothing.
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const bool* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const char* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const unsigned char* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const short* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const unsigned short* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const int* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const unsigned int* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const std::int64_t* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const std::uint64_t* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const float* elements);
QV_BASE_API void ioWriteLargeArray(ioWriteContext& context, const char* packetName, const void* owner,
                                   int count, const double* elements);

/// Reads the run of one parcel into its place in `array`; the packet's type has read the owner's reference
/// before. The file tells where the run lies. This form trusts it within what a parcel can hold: a negative
/// index, or a length that no writer uses, reads nothing and abandons the packet.
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, bool* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, char* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, unsigned char* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, short* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, unsigned short* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, int* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, unsigned int* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, std::int64_t* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, std::uint64_t* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, float* array);
QV_BASE_API void ioReadArrayParcel(ioReadContext& context, double* array);

/// The same for files that may be damaged: a run that does not lie inside the array's `size` elements reads
/// nothing and abandons the packet. @return whether the run was read.
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, bool* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, char* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, unsigned char* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, short* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, unsigned short* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, int* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, unsigned int* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, std::int64_t* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, std::uint64_t* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, float* array, int size);
QV_BASE_API bool ioReadArrayParcel(ioReadContext& context, double* array, int size);
