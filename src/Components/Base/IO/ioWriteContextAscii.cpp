#include "Base/IO/ioWriteContextAscii.h"

ioWriteContextAscii::~ioWriteContextAscii() = default;

void ioWriteContextAscii::writeCString(const char* text) {
  if (!buffer_) return misused();
  buffer_->putCString(text);
}

void ioWriteContextAscii::writeTypeTag(char tag) {
  if (!buffer_) return misused();
  buffer_->putCharacter(tag);
}

std::unique_ptr<ioPacketFileBuffer> ioWriteContextAscii::newBuffer() const {
  return std::make_unique<ioPacketFileAsciiBuffer>();
}
