// How the directory of a package becomes packets and comes back.
#pragma once

#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioPacketRegistry.h"

class ioPackageFile;
class ioPackageFileEntry;
class ioReadContext;
class ioWriteContext;

namespace ioPackageIO {

/// Knows the one packet type of a directory, "package.entry".
class PackageRegistry : public ioPacketRegistry {
public:
  explicit PackageRegistry(bool forReading) : ioPacketRegistry(forReading), forReading_(forReading) {}

protected:
  void registerAllTypes() override;

private:
  bool forReading_;
};

/// Carries the package into the function that reads an entry.
class PackageReadContext : public ioClientReadContext {
public:
  PackageReadContext(ioReadContext* context, ioPackageFile& package)
      : ioClientReadContext(context), package_(package) {}

  /// Reads the body of one "package.entry" packet and appends it to the package. A packet with a reference is
  /// damage: nothing in a directory is referred to.
  static void readEntry(ioClientReadContext& client);

  /// Reads a packet that no directory holds.
  static void readDamage(ioClientReadContext& client);

  /// True once something was read that no directory holds.
  [[nodiscard]] bool damaged() const noexcept { return damaged_; }

private:
  ioPackageFile& package_;
  bool damaged_ = false;
};

/// Writes one "package.entry" packet.
void writeEntry(ioWriteContext& context, const ioPackageFileEntry& entry);

} // namespace ioPackageIO
