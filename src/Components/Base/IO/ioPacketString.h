// The built-in packet that holds one text, which is an object of its own.
#pragma once

#include "Base/IO/ioPacketType.h"

/// Reads a text packet into a copy from the C heap, defined as the packet's object: whoever takes its
/// reference owns it and frees it with `free`. A packet without a reference, or with a negative one, is
/// passed over.
class ioPacketString final : public ioPacketType {
public:
  static constexpr char name[] = "packetFile_string";

  ioPacketString() : ioPacketType(name) {}

  void read(ioClientReadContext& client) override;
};
