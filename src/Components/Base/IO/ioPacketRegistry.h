// The registry of packet types: packets hold small numbers, and the table of names at the front of the file
// says what they mean.
#pragma once

#include "Base/IO/ioStatus.h"
#include "Base/qvBase.h"

#include <memory>

class ioBufferedStreamInput;
class ioBufferedStreamOutput;
class ioPacketType;

/// The packet types of an application. A derived class adds them in `registerAllTypes`. A writing registry
/// numbers them in the order of registration, after the string type 0 and the end type 1; a reading one
/// learns the numbers from the file. One registry may serve several files, one after the other. Without a
/// lock: two contexts may use it at once only after `init`, and only if neither reads a type table. Field and
/// virtual order are part of the interface.
class QV_BASE_API ioPacketRegistry {
public:
  explicit ioPacketRegistry(bool forReading);
  ioPacketRegistry(const ioPacketRegistry&) = delete;
  ioPacketRegistry& operator=(const ioPacketRegistry&) = delete;
  /// Deletes every type.
  virtual ~ioPacketRegistry();

protected:
  /// Calls `supportedType` for each type of the application. `init` calls it once.
  virtual void registerAllTypes() = 0;

public:
  /// Registers the two built-in types and the application's, unless that was done before. Starting to write
  /// or read a file does it.
  void init();
  /// Adds `type`, which the registry then owns. A type of the same name gives way to it.
  void supportedType(ioPacketType* type);

  /// How many types have a number.
  [[nodiscard]] int numTypes() const noexcept;
  /// The type of that number or name, or null.
  [[nodiscard]] ioPacketType* lookup(int id) const noexcept;
  [[nodiscard]] ioPacketType* lookup(const char* name) const noexcept;

  /// Writes the type table, empty without names.
  void writeRegistry(ioBufferedStreamOutput& stream, bool withNames) const;
  /// Reads a type table and numbers the types by it. A name that is not registered gets a plain
  /// `ioPacketType`.
  /// @return `ioFailed` where the stream failed, `ioBadData` where the numbers do not follow each other or a
  /// line makes no sense.
  [[nodiscard]] ioStatus readRegistry(ioBufferedStreamInput& stream);

private:
  struct Tables;
  void add(ioPacketType* type, bool assign);
  void replace(ioPacketType* old, ioPacketType* type);

  std::unique_ptr<Tables> tables_;
  bool initialised_ = false;
  bool forReading_;
};
static_assert(sizeof(void*) != 8 || sizeof(ioPacketRegistry) == 24);
