// Writes packets in the binary encoding, always in this machine's byte order: only readers swap.
#pragma once

#include "Base/IO/ioPacketFileBinaryBuffer.h"
#include "Base/IO/ioWriteContext.h"

class ioWriteContextBinary : public ioWriteContext {
public:
  explicit ioWriteContextBinary(ioBufferedStreamOutput& stream) : ioWriteContext(stream) {}
  ~ioWriteContextBinary() override;

  void writeBool(bool value) override { put(static_cast<unsigned char>(value)); }
  void writeChar(char value) override { put(value); }
  void writeUChar(unsigned char value) override { put(value); }
  void writeShort(short value) override { put(value); }
  void writeUShort(unsigned short value) override { put(value); }
  void writeInt(int value) override { put(value); }
  void writeUInt(unsigned int value) override { put(value); }
  void writeInt64(std::int64_t value) override { put(value); }
  void writeUInt64(std::uint64_t value) override { put(value); }
  void writeFloat(float value) override { put(value); }
  void writeDouble(double value) override { put(value); }
  void writeCString(const char* text) override { putBytes(text, std::strlen(text) + 1); }

  /// One `writeBool` for each element, so that the tagged form tags each.
  void writeBoolArray(const bool* values, int count) override;
  void writeCharArray(const char* values, int count) override { putArray(values, count); }
  void writeUCharArray(const unsigned char* values, int count) override { putArray(values, count); }
  void writeShortArray(const short* values, int count) override { putArray(values, count); }
  void writeUShortArray(const unsigned short* values, int count) override { putArray(values, count); }
  void writeIntArray(const int* values, int count) override { putArray(values, count); }
  void writeUIntArray(const unsigned int* values, int count) override { putArray(values, count); }
  void writeInt64Array(const std::int64_t* values, int count) override { putArray(values, count); }
  void writeUInt64Array(const std::uint64_t* values, int count) override { putArray(values, count); }
  void writeFloatArray(const float* values, int count) override { putArray(values, count); }
  void writeDoubleArray(const double* values, int count) override { putArray(values, count); }

  void writeTypeTag(char tag) override { put(tag); }
  [[nodiscard]] ioHeader makeHeader() const override { return ioHeader(ioWriteBinary); }

protected:
  [[nodiscard]] std::unique_ptr<ioPacketFileBuffer> newBuffer() const override;
  void setBuffer(ioPacketFileBuffer* buffer) override {
    buffer_ = static_cast<ioPacketFileBinaryBuffer*>(buffer);
  }

private:
  template <class T>
  void put(T value) {
    if (!buffer_) [[unlikely]]
      return misused();
    buffer_->put(value);
  }
  void putBytes(const void* bytes, std::size_t size) {
    if (!buffer_) return misused();
    buffer_->putBytes(bytes, size);
  }
  template <class T>
  void putArray(const T* values, int count) {
    putBytes(values, count > 0 ? sizeof(T) * static_cast<std::size_t>(count) : 0);
  }

  ioPacketFileBinaryBuffer* buffer_ = nullptr;
};
