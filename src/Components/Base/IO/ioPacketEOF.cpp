#include "Base/IO/ioPacketEOF.h"

#include "Base/IO/ioWriteContext.h"

void ioPacketEOF::read(ioClientReadContext&) {}

void ioPacketEOF::writeEndPacket(ioWriteContext& context) {
  context.startPacket(name, nullptr);
  context.endPacket();
}
