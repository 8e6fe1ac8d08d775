#include "Base/IO/ioWriteContextBinary.h"

ioWriteContextBinary::~ioWriteContextBinary() = default;

void ioWriteContextBinary::writeBoolArray(const bool* values, int count) {
  for (int i = 0; i < count; ++i) writeBool(values[i]);
}

std::unique_ptr<ioPacketFileBuffer> ioWriteContextBinary::newBuffer() const {
  return std::make_unique<ioPacketFileBinaryBuffer>();
}
