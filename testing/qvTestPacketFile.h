// Packet files in memory: writes one with a function, reads it back with one function for each packet type,
// and turns the fatal path into an exception.
#pragma once

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioPacketFileError.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioWriteContext.h"
#include "Base/OS/qvOSMemoryIOStream.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qvTest {

using PacketReader = std::function<void(ioReadContext&)>;
/// Names of packet types, and what reads a packet of each; nothing reads where there is no function.
using PacketReaders = std::vector<std::pair<std::string, PacketReader>>;

/// A packet type that remembers what the end of the file told it.
class PacketType : public ioPacketType {
public:
  PacketType(const std::string& name, PacketReader reader)
      : ioPacketType(name.c_str()), reader_(std::move(reader)) {}

  void read(ioClientReadContext& client) override {
    if (reader_) reader_(client.getContext());
  }
  void memoryNotReferenced(ioClientReadContext&, void* address) override { unused.push_back(address); }
  void hasUnresolvedPointer(ioClientReadContext&, void*, int extra) override { waiting.push_back(extra); }

  std::vector<void*> unused;
  std::vector<int> waiting;

private:
  PacketReader reader_;
};

class PacketTypes : public ioPacketRegistry {
public:
  PacketTypes(bool forReading, PacketReaders readers)
      : ioPacketRegistry(forReading), readers_(std::move(readers)) {}

  [[nodiscard]] PacketType& type(const char* name) { return dynamic_cast<PacketType&>(*lookup(name)); }

protected:
  void registerAllTypes() override {
    for (const auto& [name, reader] : readers_) supportedType(new PacketType(name, reader));
  }

private:
  PacketReaders readers_;
};

/// Writes packets of the named types with `write`. @return the bytes of the file.
inline std::string writePackets(ioWriteMethod method, const std::vector<std::string>& names,
                                const std::function<void(ioWriteContext&)>& write,
                                ioStatus* status = nullptr) {
  PacketReaders types;
  for (const std::string& name : names) types.emplace_back(name, nullptr);
  PacketTypes registry(false, types);
  qvOS::MemoryIOStream memory;
  ioBufferedStreamOutput stream;
  stream.openIOStream(&memory);
  const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(stream, method, &registry));
  context->startFile();
  write(*context);
  context->endFile();
  stream.close();
  if (status) *status = context->getStatus();
  return {static_cast<const char*>(memory.data()), memory.size()};
}

/// Reads packet files from bytes. Everything stays in place until it goes, for a look at what came out.
class PacketReading {
public:
  PacketReading(std::string bytes, PacketReaders readers)
      : registry(true, std::move(readers)), bytes_(std::move(bytes)), memory_(bytes_.data(), bytes_.size()) {
    stream.openIOStream(&memory_);
    context.reset(ioReadContextAlloc(stream, &registry));
  }

  ioStatus read() {
    ioClientReadContext client(context.get());
    return context->readFile(client);
  }

  PacketTypes registry;
  ioBufferedStreamInput stream;
  std::unique_ptr<ioReadContext> context; ///< Null where the header asks for no reader.

private:
  std::string bytes_;
  qvOS::MemoryIOStream memory_;
};

inline ioStatus readPackets(const std::string& bytes, const PacketReaders& readers) {
  return PacketReading(bytes, readers).read();
}

/// While it lives, a fatal fault of a packet file throws this and its report is kept. One at a time.
class PacketFileAbort {
public:
  struct Thrown {};

  PacketFileAbort() {
    report_.clear();
    ioPacketFileErrorInit([](const char* text) { report_ += text; });
    ioPacketFileAbortInit([] { throw Thrown(); });
  }
  ~PacketFileAbort() {
    ioPacketFileErrorInit(nullptr);
    ioPacketFileAbortInit(nullptr);
  }
  PacketFileAbort(const PacketFileAbort&) = delete;
  PacketFileAbort& operator=(const PacketFileAbort&) = delete;

  /// What was reported since the last call.
  [[nodiscard]] static std::string report() { return std::exchange(report_, {}); }

private:
  static inline std::string report_;
};

} // namespace qvTest
