#include "Base/IO/ioReadContextAscii.h"

ioReadContextAscii::~ioReadContextAscii() = default;

std::unique_ptr<ioPacketFileBuffer> ioReadContextAscii::newBuffer() const {
  return std::make_unique<ioPacketFileAsciiBuffer>();
}
