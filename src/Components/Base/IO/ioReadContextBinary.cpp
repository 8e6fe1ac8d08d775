#include "Base/IO/ioReadContextBinary.h"

#include "Base/IO/ioBufferedStream.h"

ioReadContextBinary::~ioReadContextBinary() = default;

void ioReadContextBinary::fetchBoolArray(bool* values, int count) {
  for (int i = 0; i < count; ++i) values[i] = fetchBool();
}

std::unique_ptr<ioPacketFileBuffer> ioReadContextBinary::newBuffer() const {
  return std::make_unique<ioPacketFileBinaryBuffer>();
}

int ioReadContextBinary::readStoredInt(ioBufferedStreamInput& stream) {
  int value = 0;
  char bytes[sizeof value] = {};
  stream.readData(bytes, sizeof bytes);
  std::memcpy(&value, bytes, sizeof value);
  return value;
}
