#include "Base/IO/ioReadContextBinary.h"

ioReadContextBinary::~ioReadContextBinary() = default;

void ioReadContextBinary::fetchBoolArray(bool* values, int count) {
  for (int i = 0; i < count; ++i) values[i] = fetchBool();
}

std::unique_ptr<ioPacketFileBuffer> ioReadContextBinary::newBuffer() const {
  return std::make_unique<ioPacketFileBinaryBuffer>();
}
