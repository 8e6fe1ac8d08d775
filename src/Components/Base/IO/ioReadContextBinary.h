// Reads packets in the binary encoding: what does not depend on the byte order, and one template for the two
// byte orders.
#pragma once

#include "Base/IO/ioByteOrder.h"
#include "Base/IO/ioPacketFileBinaryBuffer.h"
#include "Base/IO/ioReadContext.h"

class ioReadContextBinary : public ioReadContext {
public:
  ioReadContextBinary(ioBufferedStreamInput& stream, ioReadMethod method) : ioReadContext(stream, method) {}
  ~ioReadContextBinary() override;

  [[nodiscard]] bool moreInChunk() const override { return buffer_ && buffer_->moreInChunk(); }
  [[nodiscard]] bool fetchBool() override { return get<unsigned char>() != 0; }
  [[nodiscard]] char fetchChar() override { return get<char>(); }
  [[nodiscard]] unsigned char fetchUChar() override { return get<unsigned char>(); }
  /// The text lies in the packet's buffer and stays valid until the next packet.
  [[nodiscard]] const char* fetchCString() override { return buffer_ ? buffer_->getCString() : ""; }
  /// One `fetchBool` for each element, since the tagged form tags each.
  void fetchBoolArray(bool* values, int count) override;
  void fetchCharArray(char* values, int count) override { getArray(values, count); }
  void fetchUCharArray(unsigned char* values, int count) override { getArray(values, count); }
  [[nodiscard]] char readTypeTag() override { return get<char>(); }

  /// The number that a field of a packet's header holds, from its four bytes in the stream.
  [[nodiscard]] virtual int readHeaderInt(const char* field) const = 0;

protected:
  [[nodiscard]] std::unique_ptr<ioPacketFileBuffer> newBuffer() const override;
  void setBuffer(ioPacketFileBuffer* buffer) override {
    buffer_ = static_cast<ioPacketFileBinaryBuffer*>(buffer);
  }

  /// Outside a packet there are only zeros.
  template <class T>
  [[nodiscard]] T get() noexcept {
    return buffer_ ? buffer_->get<T>() : T();
  }
  template <class T>
  void getArray(T* values, int count) noexcept {
    if (buffer_ && count > 0) buffer_->getBytes(values, sizeof(T) * static_cast<std::size_t>(count));
  }

private:
  ioPacketFileBinaryBuffer* buffer_ = nullptr;
};

/// Reads values as they are stored, or with their bytes reversed.
template <bool swapped>
class ioReadContextBinaryOrder : public ioReadContextBinary {
public:
  using ioReadContextBinary::ioReadContextBinary;

  [[nodiscard]] short fetchShort() override { return ordered<short>(); }
  [[nodiscard]] unsigned short fetchUShort() override { return ordered<unsigned short>(); }
  [[nodiscard]] int fetchInt() override { return ordered<int>(); }
  [[nodiscard]] unsigned int fetchUInt() override { return ordered<unsigned int>(); }
  [[nodiscard]] std::int64_t fetchInt64() override { return ordered<std::int64_t>(); }
  [[nodiscard]] std::uint64_t fetchUInt64() override { return ordered<std::uint64_t>(); }
  [[nodiscard]] float fetchFloat() override { return ordered<float>(); }
  [[nodiscard]] double fetchDouble() override { return ordered<double>(); }

  void fetchShortArray(short* values, int count) override { orderedArray(values, count); }
  void fetchUShortArray(unsigned short* values, int count) override { orderedArray(values, count); }
  void fetchIntArray(int* values, int count) override { orderedArray(values, count); }
  void fetchUIntArray(unsigned int* values, int count) override { orderedArray(values, count); }
  void fetchInt64Array(std::int64_t* values, int count) override { orderedArray(values, count); }
  void fetchUInt64Array(std::uint64_t* values, int count) override { orderedArray(values, count); }
  void fetchFloatArray(float* values, int count) override { orderedArray(values, count); }
  void fetchDoubleArray(double* values, int count) override { orderedArray(values, count); }

  [[nodiscard]] int readHeaderInt(const char* field) const override {
    int value;
    std::memcpy(&value, field, sizeof value);
    return swapped ? ioByteOrder::reversed(value) : value;
  }

private:
  /// A float is reversed as bytes: in the wrong order it is no number yet.
  template <class T>
  [[nodiscard]] T ordered() noexcept {
    using Bits = ioByteOrder::Bits<sizeof(T)>;
    const Bits bits = this->template get<Bits>();
    return std::bit_cast<T>(swapped ? ioByteOrder::reversed(bits) : bits);
  }
  template <class T>
  void orderedArray(T* values, int count) noexcept {
    this->getArray(values, count);
    if constexpr (swapped) ioByteOrder::reverseEach(values, count);
  }
};

using ioReadContextBinarySameEndian = ioReadContextBinaryOrder<false>;
using ioReadContextBinarySwapped = ioReadContextBinaryOrder<true>;
