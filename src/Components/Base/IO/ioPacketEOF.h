// The built-in packet that ends a file. `readFile` knows it and never reads it.
#pragma once

#include "Base/IO/ioPacketType.h"

class ioWriteContext;

/// The end packet. Virtual order is part of the interface.
class ioPacketEOF final : public ioPacketType {
public:
  static constexpr char name[] = "packetFile_EOF";

  ioPacketEOF() : ioPacketType(name) {}

  void read(ioClientReadContext& client) override;
  virtual void writeEndPacket(ioWriteContext& context);
};
