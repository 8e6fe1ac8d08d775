// Reads packets in the text encoding. What does not parse as a number reads as 0, and the status stays good.
#pragma once

#include "Base/IO/ioPacketFileAsciiBuffer.h"
#include "Base/IO/ioReadContext.h"

class ioReadContextAscii : public ioReadContext {
public:
  ioReadContextAscii(ioBufferedStreamInput& stream, ioReadMethod method) : ioReadContext(stream, method) {}
  ~ioReadContextAscii() override;

  [[nodiscard]] bool moreInChunk() const override { return buffer_ && buffer_->moreInChunk(); }
  /// Types of 8 and 16 bits take the low bits of an int: the text 256 is false.
  [[nodiscard]] bool fetchBool() override { return getByte() != 0; }
  [[nodiscard]] char fetchChar() override { return static_cast<char>(getByte()); }
  [[nodiscard]] unsigned char fetchUChar() override { return getByte(); }
  [[nodiscard]] short fetchShort() override { return static_cast<short>(get<int>()); }
  [[nodiscard]] unsigned short fetchUShort() override { return static_cast<unsigned short>(get<int>()); }
  [[nodiscard]] int fetchInt() override { return get<int>(); }
  [[nodiscard]] unsigned int fetchUInt() override { return get<unsigned int>(); }
  [[nodiscard]] std::int64_t fetchInt64() override { return get<std::int64_t>(); }
  [[nodiscard]] std::uint64_t fetchUInt64() override { return get<std::uint64_t>(); }
  [[nodiscard]] float fetchFloat() override { return get<float>(); }
  [[nodiscard]] double fetchDouble() override { return get<double>(); }
  /// Null where no text stands here. Every context of the process puts its texts into the same memory: the
  /// text is valid until any of them reads one, and text packet files are read by one thread at a time.
  [[nodiscard]] const char* fetchCString() override { return buffer_ ? buffer_->getCString() : nullptr; }

  /// One single-value operation for each element, since the tagged form tags each.
  void fetchBoolArray(bool* values, int count) override {
    fetchEach(&ioReadContext::fetchBool, values, count);
  }
  void fetchCharArray(char* values, int count) override {
    fetchEach(&ioReadContext::fetchChar, values, count);
  }
  void fetchUCharArray(unsigned char* values, int count) override {
    fetchEach(&ioReadContext::fetchUChar, values, count);
  }
  void fetchShortArray(short* values, int count) override {
    fetchEach(&ioReadContext::fetchShort, values, count);
  }
  void fetchUShortArray(unsigned short* values, int count) override {
    fetchEach(&ioReadContext::fetchUShort, values, count);
  }
  void fetchIntArray(int* values, int count) override { fetchEach(&ioReadContext::fetchInt, values, count); }
  void fetchUIntArray(unsigned int* values, int count) override {
    fetchEach(&ioReadContext::fetchUInt, values, count);
  }
  void fetchInt64Array(std::int64_t* values, int count) override {
    fetchEach(&ioReadContext::fetchInt64, values, count);
  }
  void fetchUInt64Array(std::uint64_t* values, int count) override {
    fetchEach(&ioReadContext::fetchUInt64, values, count);
  }
  void fetchFloatArray(float* values, int count) override {
    fetchEach(&ioReadContext::fetchFloat, values, count);
  }
  void fetchDoubleArray(double* values, int count) override {
    fetchEach(&ioReadContext::fetchDouble, values, count);
  }

  [[nodiscard]] char readTypeTag() override { return buffer_ ? buffer_->getCharacter() : '\0'; }

  /// The packet that is being read; null outside any packet.
  [[nodiscard]] const ioPacketFileAsciiBuffer* buffer() const noexcept { return buffer_; }

protected:
  [[nodiscard]] std::unique_ptr<ioPacketFileBuffer> newBuffer() const override;
  void setBuffer(ioPacketFileBuffer* buffer) override {
    buffer_ = static_cast<ioPacketFileAsciiBuffer*>(buffer);
  }

private:
  template <class T>
  [[nodiscard]] T get() noexcept {
    return buffer_ ? buffer_->getNumber<T>() : T();
  }
  [[nodiscard]] unsigned char getByte() noexcept { return static_cast<unsigned char>(get<int>()); }
  template <class T>
  void fetchEach(T (ioReadContext::*fetch)(), T* values, int count) {
    for (int i = 0; i < count; ++i) values[i] = (this->*fetch)();
  }

  ioPacketFileAsciiBuffer* buffer_ = nullptr;
};
