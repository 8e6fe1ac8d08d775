// Packet files in memory: writes one with a function, reads it back with one function for each packet type,
// moves fields of any type either way, and turns the fatal path into an exception.
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
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace qvTest {

/// Every write method, for tests of what does not depend on it.
inline constexpr ioWriteMethod writeMethods[] = {ioWriteAscii, ioWriteBinary, ioWriteAsciiDebug,
                                                 ioWriteBinaryDebug};
constexpr bool isText(ioWriteMethod method) { return method == ioWriteAscii || method == ioWriteAsciiDebug; }
constexpr bool isTagged(ioWriteMethod method) {
  return method == ioWriteAsciiDebug || method == ioWriteBinaryDebug;
}

using PacketWriter = std::function<void(ioWriteContext&)>;
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

/// A stream that writes into memory.
struct MemoryOutput {
  MemoryOutput() { stream.openIOStream(&memory); }
  std::string bytes() {
    stream.close();
    return {static_cast<const char*>(memory.data()), memory.size()};
  }

  qvOS::MemoryIOStream memory;
  ioBufferedStreamOutput stream;
};

/// Writes packets of the named types with `write`. @return the bytes of the file.
inline std::string writePackets(ioWriteMethod method, const std::vector<std::string>& names,
                                const PacketWriter& write, ioStatus* status = nullptr) {
  PacketReaders types;
  for (const std::string& name : names) types.emplace_back(name, nullptr);
  PacketTypes registry(false, types);
  MemoryOutput out;
  const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(out.stream, method, &registry));
  context->startFile();
  write(*context);
  context->endFile();
  if (status) *status = context->getStatus();
  return out.bytes();
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

/// The operations that move a value of type `T` and an array of them.
template <class T>
struct Moves {
  void (ioWriteContext::*write)(T);
  void (ioWriteContext::*writeArray)(const T*, int);
  T (ioReadContext::*fetch)();
  void (ioReadContext::*fetchArray)(T*, int);
};
template <class T, class W = ioWriteContext, class R = ioReadContext>
constexpr Moves<T> moves() {
  return std::get<Moves<T>>(std::tuple{
      Moves<bool>{&W::writeBool, &W::writeBoolArray, &R::fetchBool, &R::fetchBoolArray},
      Moves<char>{&W::writeChar, &W::writeCharArray, &R::fetchChar, &R::fetchCharArray},
      Moves<unsigned char>{&W::writeUChar, &W::writeUCharArray, &R::fetchUChar, &R::fetchUCharArray},
      Moves<short>{&W::writeShort, &W::writeShortArray, &R::fetchShort, &R::fetchShortArray},
      Moves<unsigned short>{&W::writeUShort, &W::writeUShortArray, &R::fetchUShort, &R::fetchUShortArray},
      Moves<int>{&W::writeInt, &W::writeIntArray, &R::fetchInt, &R::fetchIntArray},
      Moves<unsigned int>{&W::writeUInt, &W::writeUIntArray, &R::fetchUInt, &R::fetchUIntArray},
      Moves<std::int64_t>{&W::writeInt64, &W::writeInt64Array, &R::fetchInt64, &R::fetchInt64Array},
      Moves<std::uint64_t>{&W::writeUInt64, &W::writeUInt64Array, &R::fetchUInt64, &R::fetchUInt64Array},
      Moves<float>{&W::writeFloat, &W::writeFloatArray, &R::fetchFloat, &R::fetchFloatArray},
      Moves<double>{&W::writeDouble, &W::writeDoubleArray, &R::fetchDouble, &R::fetchDoubleArray}});
}

/// Writes or reads a value, an array, a text or a pointer, so that one list of fields serves both ways.
template <class T>
void moveField(ioWriteContext& c, T& field) {
  using Value = std::remove_cv_t<std::remove_extent_t<T>>;
  if constexpr (std::is_array_v<T>)
    (c.*moves<Value>().writeArray)(field, int(std::size(field)));
  else if constexpr (std::is_same_v<T, std::string>)
    c.writeCString(field.c_str());
  else if constexpr (std::is_pointer_v<T>)
    c.writeReference(field, false);
  else
    (c.*moves<Value>().write)(field);
}
template <class T>
void moveField(ioReadContext& c, T& field) {
  if constexpr (std::is_array_v<T>)
    (c.*moves<std::remove_extent_t<T>>().fetchArray)(field, int(std::size(field)));
  else if constexpr (std::is_same_v<T, std::string>)
    field = c.fetchCString();
  else if constexpr (std::is_pointer_v<T>)
    c.readReferenceUsage(&field, 0);
  else
    field = (c.*moves<T>().fetch)();
}
inline void moveChunk(ioWriteContext& c) { c.startChunk(); }
inline void moveChunk(ioReadContext& c) { c.nextChunk(); }

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
