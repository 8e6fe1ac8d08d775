#include "Base/IO/ioPacketType.h"

#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioReadContext.h"

#include <cstring>

ioPacketType::ioPacketType(const char* name)
    : name_(std::make_unique_for_overwrite<char[]>(std::strlen(name) + 1)) {
  std::strcpy(name_.get(), name);
}

ioPacketType::~ioPacketType() = default;

void ioPacketType::read(ioClientReadContext& client) { client.getContext().invalidPacket(); }
void ioPacketType::memoryNotReferenced(ioClientReadContext&, void*) {}
void ioPacketType::hasUnresolvedPointer(ioClientReadContext&, void*, int) {}

void ioPacketType::handleUnreferencedMemory(ioClientReadContext& client, void* address) {
  problemFlags_ |= unreferenced;
  memoryNotReferenced(client, address);
}

void ioPacketType::handleUnresolvedPtr(ioClientReadContext& client, void* address, int extra) {
  problemFlags_ |= unresolved;
  hasUnresolvedPointer(client, address, extra);
}

ioReadPacketByFunction::~ioReadPacketByFunction() = default;

void ioReadPacketByFunction::read(ioClientReadContext& client) { function_(client); }

ioReadCallback::~ioReadCallback() = default;

ioGlobalReadCallback::~ioGlobalReadCallback() = default;

void ioGlobalReadCallback::read() { function_(); }

ioSimplePacketType::~ioSimplePacketType() = default;

void ioSimplePacketType::read(ioClientReadContext& client) {
  if (callback_)
    callback_->read();
  else
    ioPacketType::read(client);
}
