// Packet types: what a registry knows by name and number, and what reads a packet of that name.
#pragma once

#include "Base/qvBase.h"

#include <memory>

class ioClientReadContext;

/// One kind of packet. This base itself stands for a type that the reader does not know: its `read` abandons
/// the packet. Owned by the registry that it is given to. Field and virtual order are part of the interface.
class QV_BASE_API ioPacketType {
public:
  /// Keeps a copy of `name`, which must be free of blanks and fit a line of the type table (80 characters).
  explicit ioPacketType(const char* name);
  ioPacketType(const ioPacketType&) = delete;
  ioPacketType& operator=(const ioPacketType&) = delete;
  virtual ~ioPacketType();

  /// Reads the packet that has come in.
  virtual void read(ioClientReadContext& client);
  /// Called at the end of the file for an object that a packet of this type defined and nobody used.
  virtual void memoryNotReferenced(ioClientReadContext& client, void* address);
  /// Called at the end of the file for a reference in a packet of this type whose object never came.
  /// `address` is null unless the object was made known without its packet; `extra` is what the reader gave.
  virtual void hasUnresolvedPointer(ioClientReadContext& client, void* address, int extra);

  /// The number in the type table, -1 before the type has one.
  [[nodiscard]] int getId() const noexcept { return id_; }
  [[nodiscard]] const char* getName() const noexcept { return name_.get(); }
  /// Counts a packet of this type.
  void used() noexcept { ++numUsages_; }
  [[nodiscard]] int getNumUsages() const noexcept { return static_cast<int>(numUsages_); }

  /// Remember the problem and call the virtual of the same meaning.
  void handleUnreferencedMemory(ioClientReadContext& client, void* address);
  void handleUnresolvedPtr(ioClientReadContext& client, void* address, int extra);
  [[nodiscard]] bool isUnreferenced() const noexcept { return (problemFlags_ & unreferenced) != 0; }
  [[nodiscard]] bool isUnresolved() const noexcept { return (problemFlags_ & unresolved) != 0; }

private:
  friend class ioPacketRegistry;
  static constexpr unsigned int unresolved = 1;
  static constexpr unsigned int unreferenced = 2;

  std::unique_ptr<char[]> name_;
  int id_ = -1;
  unsigned int numUsages_ = 0;
  unsigned int problemFlags_ = 0;
};
static_assert(sizeof(void*) != 8 || sizeof(ioPacketType) == 32);

/// A type whose packets a function reads.
class QV_BASE_API ioReadPacketByFunction : public ioPacketType {
public:
  using Function = void (*)(ioClientReadContext& client);

  /// `function` is not null.
  ioReadPacketByFunction(const char* name, Function function) : ioPacketType(name), function_(function) {}
  ~ioReadPacketByFunction() override;

  void read(ioClientReadContext& client) override;

private:
  Function function_;
};

/// What an `ioSimplePacketType` calls.
class QV_BASE_API ioReadCallback {
public:
  ioReadCallback() = default;
  ioReadCallback(const ioReadCallback&) = delete;
  ioReadCallback& operator=(const ioReadCallback&) = delete;
  virtual ~ioReadCallback();

  virtual void read() = 0;
};

/// Calls a function that takes nothing.
class QV_BASE_API ioGlobalReadCallback : public ioReadCallback {
public:
  using Function = void (*)();

  /// `function` is not null.
  explicit ioGlobalReadCallback(Function function) noexcept : function_(function) {}
  ~ioGlobalReadCallback() override;

  void read() override;

private:
  Function function_;
};

/// A type whose packets a callback reads. One without a callback only declares a name for writing; a packet
/// of it that comes in is abandoned, like one of an unknown type.
class QV_BASE_API ioSimplePacketType : public ioPacketType {
public:
  /// Takes ownership of `callback`, which may be null.
  ioSimplePacketType(const char* name, ioReadCallback* callback) : ioPacketType(name), callback_(callback) {}
  ~ioSimplePacketType() override;

  void read(ioClientReadContext& client) override;

private:
  std::unique_ptr<ioReadCallback> callback_;
};
