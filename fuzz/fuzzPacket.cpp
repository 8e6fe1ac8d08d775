// Reads the input as packet files, binary or text, that stand one after another, with a client whose reads
// the packets themselves choose: values, chunks, sub-packets, references and parcels in any order.
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioLargeArray.h"
#include "Base/IO/ioPacketFileError.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContextAscii.h"
#include "Base/IO/ioReferenceMapImpl.h"
#include "Base/OS/qvOSMemoryIOStream.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <set>
#include <string>

namespace {

struct Aborted {};

char objects[256];
void* slots[256];

/// Owns the texts that nobody takes.
class OwningMap final : public ioReferenceMapImpl {
public:
  void markDefined(int reference, ioPacketType* type) override {
    ioReferenceMapImpl::markDefined(reference, type);
    void* const text = definitionOf(reference); // or an object, where the packet has no text
    const bool isObject =
        std::less_equal<void*>()(objects, text) && std::less<void*>()(text, std::end(objects));
    if (type && !isObject && std::strcmp(type->getName(), "packetFile_string") == 0) texts_.insert(text);
  }

protected:
  ~OwningMap() override {
    for (void* const text : texts_) std::free(text);
  }

private:
  std::set<void*> texts_;
};

template <class T>
void readValues(ioReadContext& c, void (ioReadContext::*fetch)(T*, int)) {
  T values[16];
  (c.*fetch)(values, c.fetchUChar() % 17);
}

template <class T>
void readParcel(ioReadContext& c) {
  static T array[1500];
  static_cast<void>(ioReadArrayParcel(c, array, 1500));
}

/// Stays in a sub-packet of text with an open chunk: a reader waits for ever for its end.
void endSubPacket(ioReadContext& c) {
  const auto* const text = dynamic_cast<const ioReadContextAscii*>(&c);
  if (!text || text->buffer()->subPacketEnd() >= 0) c.endSubPacket();
}

using Operation = void (*)(ioReadContext&);

constexpr Operation operations[] = {
    [](ioReadContext& c) { static_cast<void>(c.fetchBool()); },
    [](ioReadContext& c) { static_cast<void>(c.fetchShort()); },
    [](ioReadContext& c) { static_cast<void>(c.fetchUShort()); },
    [](ioReadContext& c) { static_cast<void>(c.fetchUInt()); },
    [](ioReadContext& c) { static_cast<void>(c.fetchInt64()); },
    [](ioReadContext& c) { static_cast<void>(c.fetchUInt64()); },
    [](ioReadContext& c) { static_cast<void>(c.fetchFloat()); },
    [](ioReadContext& c) { static_cast<void>(c.fetchDouble()); },
    [](ioReadContext& c) {
      if (const char* const text = c.fetchCString()) slots[std::strlen(text) % 256] = nullptr;
    },
    [](ioReadContext& c) { readValues(c, &ioReadContext::fetchBoolArray); },
    [](ioReadContext& c) { readValues(c, &ioReadContext::fetchCharArray); },
    [](ioReadContext& c) { readValues(c, &ioReadContext::fetchUCharArray); },
    [](ioReadContext& c) { readValues(c, &ioReadContext::fetchShortArray); },
    [](ioReadContext& c) { readValues(c, &ioReadContext::fetchIntArray); },
    [](ioReadContext& c) { readValues(c, &ioReadContext::fetchInt64Array); },
    [](ioReadContext& c) { readValues(c, &ioReadContext::fetchFloatArray); },
    [](ioReadContext& c) { readValues(c, &ioReadContext::fetchDoubleArray); },
    readParcel<bool>,
    readParcel<int>,
    readParcel<double>,
    [](ioReadContext& c) { c.nextChunk(); },
    [](ioReadContext& c) { static_cast<void>(c.moreInChunk()); },
    [](ioReadContext& c) { c.startSubPacket(); },
    endSubPacket,
    [](ioReadContext& c) { c.invalidPacket(); },
    [](ioReadContext& c) { c.definePacketReference(&objects[c.fetchUChar()]); },
    [](ioReadContext& c) { c.readReferenceUsage(&slots[c.fetchUChar()], 1); },
    [](ioReadContext& c) { c.readReferenceUsage(); },
    [](ioReadContext& c) { c.readReferenceDefinition(&objects[c.fetchUChar()]); },
    [](ioReadContext& c) { c.defineReferenceAlias(c.fetchInt(), &objects[c.fetchUChar()]); },
    [](ioReadContext& c) { c.useReference(c.fetchInt()); },
    [](ioReadContext& c) { c.useReference(&objects[c.fetchUChar()]); },
    [](ioReadContext& c) { c.undefineReference(c.fetchInt()); },
    [](ioReadContext& c) { c.undefineReference(&objects[c.fetchUChar()]); },
    [](ioReadContext& c) { static_cast<void>(c.getReference(&objects[c.fetchUChar()])); },
    [](ioReadContext& c) { c.halt(); },
};

/// Each byte of a packet names what is read next.
class Operations final : public ioPacketType {
public:
  Operations() : ioPacketType("operations") {}

  void read(ioClientReadContext& client) override {
    for (int i = 0; i < 64; ++i)
      operations[client.getContext().fetchUChar() % std::size(operations)](client.getContext());
    client.getContext().definePacketReference(&objects[0]);
  }
};

class Node final : public ioPacketType {
public:
  Node() : ioPacketType("node") {}

  void read(ioClientReadContext& client) override {
    ioReadContext& context = client.getContext();
    const int index = context.fetchUChar();
    context.definePacketReference(&objects[index]);
    for (context.nextChunk(); context.moreInChunk(); context.nextChunk()) {
      context.startSubPacket();
      context.readReferenceUsage(&slots[index], index);
      endSubPacket(context);
    }
  }
};

class Registry final : public ioPacketRegistry {
public:
  Registry() : ioPacketRegistry(true) {}

protected:
  void registerAllTypes() override {
    supportedType(new Operations);
    supportedType(new Node);
  }
};

void readFiles(const std::string& bytes) {
  qvOS::MemoryIOStream memory(static_cast<const void*>(bytes.data()), bytes.size());
  ioBufferedStreamInput stream;
  stream.openIOStream(&memory);
  Registry registry;
  const std::unique_ptr<ioReadContext> context(ioReadContextAlloc(stream, &registry));
  if (!context) return;
  context->associateReferenceMap(new OwningMap);
  ioClientReadContext client(context.get());
  for (int files = 0; files < 4; ++files) {
    context->readFile(client);
    context->reportUnresolvedPtrs(registry.lookup("node"),
                                  [](void* slot, int) { slots[slot ? 1 : 0] = nullptr; });
    if (!context->reusePacketFile()) break;
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ioPacketFileErrorInit([](const char*) {});
  ioPacketFileAbortInit([] { throw Aborted(); });
  // A reader waits for the end of a header, and in a text file for the next packet, so both come at last. A
  // packet of no known type ends the file; the first may still be taken for a part of an unfinished one. Each
  // of the header's eleven numbers may take an "@" for itself.
  std::string bytes(reinterpret_cast<const char*>(data), size);
  for (int i = 0; i < 12; ++i) bytes += "\n@";
  bytes += "\n{ 2147483647 0 }\n{ 2147483647 0 }\n{ 2147483647 0 }\n";
  try {
    readFiles(bytes);
  } catch (const Aborted&) {
  }
  return 0;
}
