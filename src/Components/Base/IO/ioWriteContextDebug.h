// The tagged form of any encoding's writer: each value comes after its one-byte code, so that a reader
// notices when it asks for something else than what was written.
#pragma once

#include "Base/IO/ioTypeTag.h"
#include "Base/IO/ioWriteContext.h"

/// Tags what `Base` writes. An encoding that writes an array by its single-value operations tags the elements
/// too. A reference is the code of a reference, the code of an unsigned int, and the number.
template <class Base>
class ioWriteContextDebug final : public Base {
public:
  using Base::Base;
  using Base::writeReference;

  void writeReference(int reference, bool define) override {
    this->writeTypeTag(ioTypeTag::Reference);
    Base::writeReference(reference, define);
  }

  void writeBool(bool value) override {
    this->writeTypeTag(ioTypeTag::Bool);
    Base::writeBool(value);
  }
  void writeChar(char value) override {
    this->writeTypeTag(ioTypeTag::Char);
    Base::writeChar(value);
  }
  void writeUChar(unsigned char value) override {
    this->writeTypeTag(ioTypeTag::UChar);
    Base::writeUChar(value);
  }
  void writeShort(short value) override {
    this->writeTypeTag(ioTypeTag::Short);
    Base::writeShort(value);
  }
  void writeUShort(unsigned short value) override {
    this->writeTypeTag(ioTypeTag::UShort);
    Base::writeUShort(value);
  }
  void writeInt(int value) override {
    this->writeTypeTag(ioTypeTag::Int);
    Base::writeInt(value);
  }
  void writeUInt(unsigned int value) override {
    this->writeTypeTag(ioTypeTag::UInt);
    Base::writeUInt(value);
  }
  void writeInt64(std::int64_t value) override {
    this->writeTypeTag(ioTypeTag::Int64);
    Base::writeInt64(value);
  }
  void writeUInt64(std::uint64_t value) override {
    this->writeTypeTag(ioTypeTag::UInt64);
    Base::writeUInt64(value);
  }
  void writeFloat(float value) override {
    this->writeTypeTag(ioTypeTag::Float);
    Base::writeFloat(value);
  }
  void writeDouble(double value) override {
    this->writeTypeTag(ioTypeTag::Double);
    Base::writeDouble(value);
  }
  void writeCString(const char* text) override {
    this->writeTypeTag(ioTypeTag::CString);
    Base::writeCString(text);
  }

  void writeBoolArray(const bool* values, int count) override {
    this->writeTypeTag(ioTypeTag::BoolArray);
    Base::writeBoolArray(values, count);
  }
  void writeCharArray(const char* values, int count) override {
    this->writeTypeTag(ioTypeTag::CharArray);
    Base::writeCharArray(values, count);
  }
  void writeUCharArray(const unsigned char* values, int count) override {
    this->writeTypeTag(ioTypeTag::UCharArray);
    Base::writeUCharArray(values, count);
  }
  void writeShortArray(const short* values, int count) override {
    this->writeTypeTag(ioTypeTag::ShortArray);
    Base::writeShortArray(values, count);
  }
  void writeUShortArray(const unsigned short* values, int count) override {
    this->writeTypeTag(ioTypeTag::UShortArray);
    Base::writeUShortArray(values, count);
  }
  void writeIntArray(const int* values, int count) override {
    this->writeTypeTag(ioTypeTag::IntArray);
    Base::writeIntArray(values, count);
  }
  void writeUIntArray(const unsigned int* values, int count) override {
    this->writeTypeTag(ioTypeTag::UIntArray);
    Base::writeUIntArray(values, count);
  }
  void writeInt64Array(const std::int64_t* values, int count) override {
    this->writeTypeTag(ioTypeTag::Int64Array);
    Base::writeInt64Array(values, count);
  }
  void writeUInt64Array(const std::uint64_t* values, int count) override {
    this->writeTypeTag(ioTypeTag::UInt64Array);
    Base::writeUInt64Array(values, count);
  }
  void writeFloatArray(const float* values, int count) override {
    this->writeTypeTag(ioTypeTag::FloatArray);
    Base::writeFloatArray(values, count);
  }
  void writeDoubleArray(const double* values, int count) override {
    this->writeTypeTag(ioTypeTag::DoubleArray);
    Base::writeDoubleArray(values, count);
  }

  [[nodiscard]] ioHeader makeHeader() const override {
    return ioHeader(Base::makeHeader().method == ioWriteAscii ? ioWriteAsciiDebug : ioWriteBinaryDebug);
  }
};
