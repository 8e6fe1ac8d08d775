// The tagged form of any encoding's reader: each value must come after the code of what is asked for.
#pragma once

#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioTypeTag.h"

/// Checks the tags of what `Base` reads. A tag of another type stops in `fatalError`; a byte above 127, which
/// is no tag at all, passes without comment.
template <class Base>
class ioReadContextDebug final : public Base {
public:
  using Base::Base;

  int readReference() override {
    expect(ioTypeTag::Reference);
    return Base::readReference();
  }

  [[nodiscard]] bool fetchBool() override {
    expect(ioTypeTag::Bool);
    return Base::fetchBool();
  }
  [[nodiscard]] char fetchChar() override {
    expect(ioTypeTag::Char);
    return Base::fetchChar();
  }
  [[nodiscard]] unsigned char fetchUChar() override {
    expect(ioTypeTag::UChar);
    return Base::fetchUChar();
  }
  [[nodiscard]] short fetchShort() override {
    expect(ioTypeTag::Short);
    return Base::fetchShort();
  }
  [[nodiscard]] unsigned short fetchUShort() override {
    expect(ioTypeTag::UShort);
    return Base::fetchUShort();
  }
  [[nodiscard]] int fetchInt() override {
    expect(ioTypeTag::Int);
    return Base::fetchInt();
  }
  [[nodiscard]] unsigned int fetchUInt() override {
    expect(ioTypeTag::UInt);
    return Base::fetchUInt();
  }
  [[nodiscard]] std::int64_t fetchInt64() override {
    expect(ioTypeTag::Int64);
    return Base::fetchInt64();
  }
  [[nodiscard]] std::uint64_t fetchUInt64() override {
    expect(ioTypeTag::UInt64);
    return Base::fetchUInt64();
  }
  [[nodiscard]] float fetchFloat() override {
    expect(ioTypeTag::Float);
    return Base::fetchFloat();
  }
  [[nodiscard]] double fetchDouble() override {
    expect(ioTypeTag::Double);
    return Base::fetchDouble();
  }
  [[nodiscard]] const char* fetchCString() override {
    expect(ioTypeTag::CString);
    return Base::fetchCString();
  }

  void fetchBoolArray(bool* values, int count) override {
    expect(ioTypeTag::BoolArray);
    Base::fetchBoolArray(values, count);
  }
  void fetchCharArray(char* values, int count) override {
    expect(ioTypeTag::CharArray);
    Base::fetchCharArray(values, count);
  }
  void fetchUCharArray(unsigned char* values, int count) override {
    expect(ioTypeTag::UCharArray);
    Base::fetchUCharArray(values, count);
  }
  void fetchShortArray(short* values, int count) override {
    expect(ioTypeTag::ShortArray);
    Base::fetchShortArray(values, count);
  }
  void fetchUShortArray(unsigned short* values, int count) override {
    expect(ioTypeTag::UShortArray);
    Base::fetchUShortArray(values, count);
  }
  void fetchIntArray(int* values, int count) override {
    expect(ioTypeTag::IntArray);
    Base::fetchIntArray(values, count);
  }
  void fetchUIntArray(unsigned int* values, int count) override {
    expect(ioTypeTag::UIntArray);
    Base::fetchUIntArray(values, count);
  }
  void fetchInt64Array(std::int64_t* values, int count) override {
    expect(ioTypeTag::Int64Array);
    Base::fetchInt64Array(values, count);
  }
  void fetchUInt64Array(std::uint64_t* values, int count) override {
    expect(ioTypeTag::UInt64Array);
    Base::fetchUInt64Array(values, count);
  }
  void fetchFloatArray(float* values, int count) override {
    expect(ioTypeTag::FloatArray);
    Base::fetchFloatArray(values, count);
  }
  void fetchDoubleArray(double* values, int count) override {
    expect(ioTypeTag::DoubleArray);
    Base::fetchDoubleArray(values, count);
  }

private:
  void expect(char tag) {
    const char got = this->readTypeTag();
    if (static_cast<signed char>(got) >= 0 && got != tag) ioTypeTag::mismatch(*this, got, tag);
  }
};
