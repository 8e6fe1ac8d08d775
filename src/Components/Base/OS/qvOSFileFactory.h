// How a name finds its back end: the one file factory, the transport factories that are plugged into it, and
// the one for the local disk.
#pragma once

#include "Base/String/qvStringIString.h"
#include "Base/qvBase.h"

namespace qvOS {

class File;
class FileTransport;

/// Makes transports for the names that are its own.
class QV_BASE_API FileTransportFactory {
public:
  virtual ~FileTransportFactory();
  /// A new transport, which the caller owns, or null if `name` is not for this factory.
  virtual FileTransport* create(const qvString::IString& name) = 0;
};

/// Answers to every name, so it is asked last. "file:" at the start is dropped together with the slashes that
/// follow; in every other case the whole name is the path.
class QV_BASE_API LocalFileTransportFactory : public FileTransportFactory {
public:
  FileTransport* create(const qvString::IString& name) override;
  /// True. A call of it ties the local transport into a statically linked program.
  static bool s_forceTransportLoad();
};

/// Resolves names to files and transports. No lock: transport factories are added before names are resolved.
class QV_BASE_API FileFactory {
public:
  virtual ~FileFactory();
  /// A new file, which the caller owns, or null if nothing answers to `name`.
  virtual File* createFile(const qvString::IString& name) = 0;
  /// A new transport, which the caller owns: that of the first added factory that gives one, and otherwise
  /// the local one.
  virtual FileTransport* createTransport(const qvString::IString& name) = 0;
  /// Adds a factory to those that are asked, in the order of addition. It stays the caller's, stays asked for
  /// the life of the process, and must live as long.
  virtual void addTransportFactory(FileTransportFactory* factory) = 0;

  /// The one factory of the process, built by the first call.
  static FileFactory* getFileFactory();
};

} // namespace qvOS
