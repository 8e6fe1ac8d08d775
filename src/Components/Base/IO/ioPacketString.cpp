#include "Base/IO/ioPacketString.h"

#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioReadContext.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

char* copyText(const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  void* const copy = std::malloc(size);
  if (!copy) throw std::bad_alloc();
  return static_cast<char*>(std::memcpy(copy, text, size));
}

} // namespace

void ioPacketString::read(ioClientReadContext& client) {
  ioReadContext& context = client.getContext();
  if (context.getPacketReference() < 1) return context.invalidPacket(); // nobody could ever take the copy
  const char* const text = context.fetchCString();
  context.definePacketReference(text ? copyText(text) : nullptr);
}
