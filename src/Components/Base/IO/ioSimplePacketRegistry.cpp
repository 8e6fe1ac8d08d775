#include "Base/IO/ioSimplePacketRegistry.h"

#include "Base/IO/ioPacketType.h"

ioSimplePacketRegistry::ioSimplePacketRegistry(bool forReading) : ioPacketRegistry(forReading) {}
ioSimplePacketRegistry::~ioSimplePacketRegistry() = default;

void ioSimplePacketRegistry::add(const char* name) { supportedType(new ioSimplePacketType(name, nullptr)); }

void ioSimplePacketRegistry::add(const char* name, void (*function)()) {
  supportedType(new ioSimplePacketType(name, new ioGlobalReadCallback(function)));
}

void ioSimplePacketRegistry::registerAllTypes() { signal_.emit(*this); }
