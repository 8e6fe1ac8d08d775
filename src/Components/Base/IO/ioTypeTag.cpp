#include "Base/IO/ioTypeTag.h"

#include "Base/IO/ioContext.h"
#include "Base/IO/ioPacketFileError.h"

namespace {

struct Named {
  char tag;
  const char* name;
};

constexpr Named names[] = {
    {ioTypeTag::Bool, "Bool"},       {ioTypeTag::BoolArray, "BoolArray"},
    {ioTypeTag::Char, "Char"},       {ioTypeTag::CharArray, "CharArray"},
    {ioTypeTag::UChar, "UChar"},     {ioTypeTag::UCharArray, "UCharArray"},
    {ioTypeTag::Short, "Short"},     {ioTypeTag::ShortArray, "ShortArray"},
    {ioTypeTag::UShort, "UShort"},   {ioTypeTag::UShortArray, "UShortArray"},
    {ioTypeTag::Int, "Int"},         {ioTypeTag::IntArray, "IntArray"},
    {ioTypeTag::UInt, "UInt"},       {ioTypeTag::UIntArray, "UIntArray"},
    {ioTypeTag::Int64, "Int64"},     {ioTypeTag::Int64Array, "Int64Array"},
    {ioTypeTag::UInt64, "UInt64"},   {ioTypeTag::UInt64Array, "UInt64Array"},
    {ioTypeTag::Float, "Float"},     {ioTypeTag::FloatArray, "FloatArray"},
    {ioTypeTag::Double, "Double"},   {ioTypeTag::DoubleArray, "DoubleArray"},
    {ioTypeTag::CString, "CString"}, {ioTypeTag::Reference, "Reference"},
};

} // namespace

const char* ioTypeTag::name(char tag) noexcept {
  for (const Named& named : names)
    if (named.tag == tag) return named.name;
  return "(invalid type)";
}

void ioTypeTag::mismatch(const ioContext& context, char got, char expected) {
  ioPacketFileError("Packet file type mismatch:\n");
  ioPacketFileError("   got: %s (%02x)\n", name(got), static_cast<unsigned int>(got));
  ioPacketFileError("   expected: %s (%02x)\n", name(expected), static_cast<unsigned int>(expected));
  context.fatalError();
}
