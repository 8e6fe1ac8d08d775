#include "Base/IO/ioClientReadContext.h"

ioClientReadContext::~ioClientReadContext() = default;

void ioClientReadContext::prePacketRead() {}
void ioClientReadContext::postPacketRead() {}
