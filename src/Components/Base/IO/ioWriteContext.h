// Writing a packet file: header, type table, packets, end packet. The encoding is the derived class's.
//
//   std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(stream, ioWriteBinary, &registry));
//   context->startFile();
//   context->startPacket("point", &point);
//   context->writeDouble(point.x);
//   context->writeReference(point.next, false);
//   context->endPacket();
//   context->endFile();
#pragma once

#include "Base/IO/ioContext.h"
#include "Base/IO/ioHeader.h"
#include "Base/qvBase.h"

#include <cstdint>

class ioBufferedStreamOutput;

/// Writes one packet file. After a failure all operations still run, and the stream discards the bytes; test
/// `good` at the end. Calls out of order (a value outside a packet, more ends than starts) set `ioFailed` and
/// write nothing. Field and virtual order are part of the interface.
class QV_BASE_API ioWriteContext : public ioContext {
public:
  ~ioWriteContext() override;

  /// Writes a reference number. With `define`, the current packet is the one that defines it.
  virtual void writeReference(int reference, bool define);
  /// Writes the number of `address`, a new one if it has none yet, and 0 for null. @return the number.
  virtual int writeReference(const void* address, bool define);

  virtual void writeBool(bool value) = 0;
  virtual void writeChar(char value) = 0;
  virtual void writeUChar(unsigned char value) = 0;
  virtual void writeShort(short value) = 0;
  virtual void writeUShort(unsigned short value) = 0;
  virtual void writeInt(int value) = 0;
  virtual void writeUInt(unsigned int value) = 0;
  virtual void writeInt64(std::int64_t value) = 0;
  virtual void writeUInt64(std::uint64_t value) = 0;
  virtual void writeFloat(float value) = 0;
  virtual void writeDouble(double value) = 0;
  /// Writes the text, which is not null, up to its terminator.
  virtual void writeCString(const char* text) = 0;

  /// Write `count` elements and not the count: the reader must know it. A count below 1 writes none.
  virtual void writeBoolArray(const bool* values, int count) = 0;
  virtual void writeCharArray(const char* values, int count) = 0;
  virtual void writeUCharArray(const unsigned char* values, int count) = 0;
  virtual void writeShortArray(const short* values, int count) = 0;
  virtual void writeUShortArray(const unsigned short* values, int count) = 0;
  virtual void writeIntArray(const int* values, int count) = 0;
  virtual void writeUIntArray(const unsigned int* values, int count) = 0;
  virtual void writeInt64Array(const std::int64_t* values, int count) = 0;
  virtual void writeUInt64Array(const std::uint64_t* values, int count) = 0;
  virtual void writeFloatArray(const float* values, int count) = 0;
  virtual void writeDoubleArray(const double* values, int count) = 0;

  /// Writes the one-byte code of a tagged value. Where a text encoding escapes characters, this does it.
  virtual void writeTypeTag(char tag) = 0;
  /// The header that `startFile` writes.
  [[nodiscard]] virtual ioHeader makeHeader() const = 0;

  /// Whether `startFile` writes the names of the packet types, as it does unless told otherwise. Without
  /// them the reader's registry must have its numbers by itself.
  void writePacketRegistry(bool withNames) noexcept { writeRegistryNames_ = withNames; }

  /// Writes the header and the type table. Without a registry: `ioFailed`, and nothing is written.
  void startFile();
  /// Writes the end packet. A packet that is still open gives `ioFailed`; the end packet is written all the
  /// same. The stream is not flushed.
  void endFile();

  /// Opens a packet, also inside another one: the inner packet then stands in the file before the outer. With
  /// an `object` the packet defines that object's reference.
  void startPacket(const ioPacketType* type, const void* object);
  /// The same by name. A name that is not registered sets `ioFailed`, and the packet is never written.
  void startPacket(const char* typeName, const void* object);
  /// Completes the packet, which reaches the stream only here.
  void endPacket();
  /// Starts the next chunk of the packet or sub-packet, which ends the chunk before it.
  void startChunk();
  void startSubPacket();
  void endSubPacket();

  /// Writes a packet that defines a copy of `text` as the object at the address `text`; nothing for null.
  void writeCStringPacket(const char* text);

protected:
  /// `stream` stays the caller's and must outlive the context.
  explicit ioWriteContext(ioBufferedStreamOutput& stream) : stream_(&stream) {}

  /// Sets `ioFailed`: a call came out of order, or a packet cannot be held.
  void misused() noexcept { setStatus(ioFailed); }

private:
  friend class ioPacketFileAsciiBuffer;
  friend class ioPacketFileBinaryBuffer;
  void endOpenChunk();

  ioBufferedStreamOutput* stream_;
  bool fileStarted_ = false;
  bool writeRegistryNames_ = true;
  ioPacketType* stringType_ = nullptr;
};
static_assert(sizeof(void*) != 8 || sizeof(ioWriteContext) == 80);

/// Makes the writer of `method`, for the caller to delete; null for a method that has no writer. A registry
/// that is not null is associated.
[[nodiscard]] QV_BASE_API ioWriteContext*
ioWriteContextAlloc(ioBufferedStreamOutput& stream, ioWriteMethod method, ioPacketRegistry* registry);
