// Reading a packet file: each packet is read whole, and its type in the registry reads its values through the
// operations here. The encoding is the derived class's.
//
//   std::unique_ptr<ioReadContext> context(ioReadContextAlloc(stream, &registry));
//   if (!context) return;                  // not a packet file
//   ioClientReadContext client(context.get());
//   const ioStatus status = context->readFile(client);
#pragma once

#include "Base/IO/ioContext.h"
#include "Base/IO/ioHeader.h"
#include "Base/qvBase.h"

#include <cstdint>

class ioBufferedStreamInput;
class ioClientReadContext;

/// Reads one packet file, or several that stand one after the other. Reads are not checked against the end
/// of a chunk or sub-packet; past the packet's end they give zeros. Field and virtual order are part of the
/// interface.
class QV_BASE_API ioReadContext : public ioContext {
public:
  ~ioReadContext() override;

  /// Whether the last `nextChunk` found a chunk with content. Reading values does not change it.
  [[nodiscard]] virtual bool moreInChunk() const = 0;

  /// Declares that `address` is the object of this packet. A packet with a reference must do so, or abandon
  /// itself with `invalidPacket`; otherwise the program stops in `fatalError`.
  virtual void definePacketReference(void* address);
  /// Reads a reference and stores its object in the pointer at `slot`: at once, or null now and the object
  /// when its packet comes. The pointer must stay in its place until then. `extra` comes back in the report
  /// of what never came.
  virtual void readReferenceUsage(void* slot, int extra);
  /// Reads a reference. @return its object, or null where that has not come yet; then `reference` can be
  /// resolved later.
  virtual void* readReferenceUsage(int& reference);
  virtual void* readReferenceUsage();
  /// Reads a reference and declares that `address` is its object. @return the number.
  virtual int readReferenceDefinition(void* address);
  /// Reads a reference's number alone.
  virtual int readReference();
  /// Declares that `address` is the object of `reference`. An alias is one more number of an object.
  virtual void defineReference(int reference, void* address);
  virtual void defineReferenceAlias(int reference, void* address);
  /// As `readReferenceUsage`, for a number that was read before.
  virtual void resolveReference(int reference, void* slot, int extra);
  /// Counts a use, so that the object is not reported as unreferenced.
  virtual void useReference(const void* address);
  virtual void useReference(int reference);

  [[nodiscard]] virtual bool fetchBool() = 0;
  [[nodiscard]] virtual char fetchChar() = 0;
  [[nodiscard]] virtual unsigned char fetchUChar() = 0;
  [[nodiscard]] virtual short fetchShort() = 0;
  [[nodiscard]] virtual unsigned short fetchUShort() = 0;
  [[nodiscard]] virtual int fetchInt() = 0;
  [[nodiscard]] virtual unsigned int fetchUInt() = 0;
  [[nodiscard]] virtual std::int64_t fetchInt64() = 0;
  [[nodiscard]] virtual std::uint64_t fetchUInt64() = 0;
  [[nodiscard]] virtual float fetchFloat() = 0;
  [[nodiscard]] virtual double fetchDouble() = 0;
  /// @return the text, valid until the next text or packet is read; an encoding may give null for no text.
  [[nodiscard]] virtual const char* fetchCString() = 0;

  /// Read `count` elements; a count below 1 reads none.
  virtual void fetchBoolArray(bool* values, int count) = 0;
  virtual void fetchCharArray(char* values, int count) = 0;
  virtual void fetchUCharArray(unsigned char* values, int count) = 0;
  virtual void fetchShortArray(short* values, int count) = 0;
  virtual void fetchUShortArray(unsigned short* values, int count) = 0;
  virtual void fetchIntArray(int* values, int count) = 0;
  virtual void fetchUIntArray(unsigned int* values, int count) = 0;
  virtual void fetchInt64Array(std::int64_t* values, int count) = 0;
  virtual void fetchUInt64Array(std::uint64_t* values, int count) = 0;
  virtual void fetchFloatArray(float* values, int count) = 0;
  virtual void fetchDoubleArray(double* values, int count) = 0;

  /// Reads the one-byte code of a tagged value.
  [[nodiscard]] virtual char readTypeTag() = 0;

  void readBool(bool& value) { value = fetchBool(); }
  void readChar(char& value) { value = fetchChar(); }
  void readUChar(unsigned char& value) { value = fetchUChar(); }
  void readShort(short& value) { value = fetchShort(); }
  void readUShort(unsigned short& value) { value = fetchUShort(); }
  void readInt(int& value) { value = fetchInt(); }
  void readUInt(unsigned int& value) { value = fetchUInt(); }
  void readInt64(std::int64_t& value) { value = fetchInt64(); }
  void readUInt64(std::uint64_t& value) { value = fetchUInt64(); }
  void readFloat(float& value) { value = fetchFloat(); }
  void readDouble(double& value) { value = fetchDouble(); }

  /// Reads the type table and every packet up to the end packet; each packet's type reads it.
  /// @return the status: `ioOK` when the end packet was reached, `ioBadData` where the data ended before it
  /// or made no sense, `ioHalted` after `halt`.
  ioStatus readFile(ioClientReadContext& client);
  /// Prepares to read a further packet file that follows in the same stream, with the same reference map.
  /// @return false, and the context is halted, where there is none or it is encoded in another way.
  bool reusePacketFile();
  /// Stops `readFile` before the next packet.
  void halt() noexcept { halted_ = true; }

  /// Goes on to the next chunk, past what is left of this one. `moreInChunk` tells whether there is one.
  void nextChunk();
  void startSubPacket();
  /// Leaves the sub-packet at its end, however little of it was read.
  void endSubPacket();

  /// The reference of the packet that is being read, 0 if it has none.
  [[nodiscard]] int getPacketReference() const noexcept { return packetReference_; }

protected:
  /// `stream` stays the caller's and must outlive the context.
  ioReadContext(ioBufferedStreamInput& stream, ioReadMethod method) : stream_(&stream), readMethod_(method) {}

private:
  void readPacket(ioClientReadContext& client);
  void readBody(ioClientReadContext& client, bool hasReference);
  [[noreturn]] void stopUndefined() const;
  void define(int reference, void* address, bool alias);

  ioBufferedStreamInput* stream_;
  int packetReference_ = -1;
  bool packetReferenceDefined_ = false;
  ioPacketType* endType_ = nullptr;
  int packetsRead_ = 0;
  bool halted_ = false;
  ioReadMethod readMethod_;
};
static_assert(sizeof(void*) != 8 || sizeof(ioReadContext) == 96);

/// Reads the header of `stream` and makes the reader that it asks for, for the caller to delete; null where
/// the header is invalid or its method has no reader. A registry that is not null is associated.
[[nodiscard]] QV_BASE_API ioReadContext* ioReadContextAlloc(ioBufferedStreamInput& stream,
                                                            ioPacketRegistry* registry);
