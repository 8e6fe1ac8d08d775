// Writes packets in the text encoding. The text is the same on every machine and in every locale.
#pragma once

#include "Base/IO/ioPacketFileAsciiBuffer.h"
#include "Base/IO/ioWriteContext.h"

class ioWriteContextAscii : public ioWriteContext {
public:
  explicit ioWriteContextAscii(ioBufferedStreamOutput& stream) : ioWriteContext(stream) {}
  ~ioWriteContextAscii() override;

  void writeBool(bool value) override { putNumber(static_cast<int>(value)); }
  /// As a signed number, also where `char` is unsigned.
  void writeChar(char value) override { putNumber(static_cast<int>(static_cast<signed char>(value))); }
  void writeUChar(unsigned char value) override { putNumber(static_cast<int>(value)); }
  void writeShort(short value) override { putNumber(static_cast<int>(value)); }
  void writeUShort(unsigned short value) override { putNumber(static_cast<unsigned int>(value)); }
  void writeInt(int value) override { putNumber(value); }
  void writeUInt(unsigned int value) override { putNumber(value); }
  void writeInt64(std::int64_t value) override { putNumber(value); }
  void writeUInt64(std::uint64_t value) override { putNumber(value); }
  void writeFloat(float value) override { putNumber(value); }
  void writeDouble(double value) override { putNumber(value); }
  void writeCString(const char* text) override;

  /// One single-value operation for each element, so that the tagged form tags each.
  void writeBoolArray(const bool* values, int count) override {
    writeEach(&ioWriteContext::writeBool, values, count);
  }
  void writeCharArray(const char* values, int count) override {
    writeEach(&ioWriteContext::writeChar, values, count);
  }
  void writeUCharArray(const unsigned char* values, int count) override {
    writeEach(&ioWriteContext::writeUChar, values, count);
  }
  void writeShortArray(const short* values, int count) override {
    writeEach(&ioWriteContext::writeShort, values, count);
  }
  void writeUShortArray(const unsigned short* values, int count) override {
    writeEach(&ioWriteContext::writeUShort, values, count);
  }
  void writeIntArray(const int* values, int count) override {
    writeEach(&ioWriteContext::writeInt, values, count);
  }
  void writeUIntArray(const unsigned int* values, int count) override {
    writeEach(&ioWriteContext::writeUInt, values, count);
  }
  void writeInt64Array(const std::int64_t* values, int count) override {
    writeEach(&ioWriteContext::writeInt64, values, count);
  }
  void writeUInt64Array(const std::uint64_t* values, int count) override {
    writeEach(&ioWriteContext::writeUInt64, values, count);
  }
  void writeFloatArray(const float* values, int count) override {
    writeEach(&ioWriteContext::writeFloat, values, count);
  }
  void writeDoubleArray(const double* values, int count) override {
    writeEach(&ioWriteContext::writeDouble, values, count);
  }

  /// Escapes what needs it, also in texts.
  void writeTypeTag(char tag) override;
  [[nodiscard]] ioHeader makeHeader() const override { return ioHeader(ioWriteAscii); }

protected:
  [[nodiscard]] std::unique_ptr<ioPacketFileBuffer> newBuffer() const override;
  void setBuffer(ioPacketFileBuffer* buffer) override {
    buffer_ = static_cast<ioPacketFileAsciiBuffer*>(buffer);
  }

private:
  template <class T>
  void putNumber(T value) {
    if (!buffer_) [[unlikely]]
      return misused();
    buffer_->putNumber(value);
  }
  template <class T>
  void writeEach(void (ioWriteContext::*write)(T), const T* values, int count) {
    for (int i = 0; i < count; ++i) (this->*write)(values[i]);
  }

  ioPacketFileAsciiBuffer* buffer_ = nullptr;
};
