#include "Base/OS/qvOSFileFactory.h"

#include "Base/Containers/qvVector.h"
#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSLocalFileTransport.h"
#include "Base/Utility/qvUtilInitializer.h"

namespace qvOS {

using qvString::IString;

namespace {

class FileFactoryImpl : public FileFactory {
public:
  explicit FileFactoryImpl(LocalFileTransportFactory* local) : localFactory_(local) {}

  File* createFile(const IString& name) override {
    FileTransport* transport = createTransport(name);
    return transport ? new File(transport) : nullptr;
  }

  FileTransport* createTransport(const IString& name) override {
    for (FileTransportFactory* factory : factories_) {
      if (FileTransport* transport = factory->create(name)) return transport;
    }
    return localFactory_->create(name);
  }

  void addTransportFactory(FileTransportFactory* factory) override {
    if (factory) factories_.push_back(factory);
  }

private:
  qv::vector<FileTransportFactory*> factories_;
  LocalFileTransportFactory* localFactory_;
};

/// Makes sure that the factory exists before any client runs.
class FileFactoryInitializer : public qvUtil::Initializer {
public:
  qvUtil::Error initialize() override {
    FileFactory::getFileFactory();
    return qvUtil::Error();
  }
};

FileFactoryInitializer fileFactoryInitializer;

} // namespace

FileTransportFactory::~FileTransportFactory() = default;

FileTransport* LocalFileTransportFactory::create(const IString& name) {
  const unsigned colon = name.find(QV_W(':'));
  const bool locator = colon != IString::npos && name.substr(0, colon) == QV_W("file");
  return new LocalFileTransport(locator ? name.substr(colon + 1).strip(QV_W('/')) : name);
}

bool LocalFileTransportFactory::s_forceTransportLoad() { return true; }

FileFactory::~FileFactory() = default;

FileFactory* FileFactory::getFileFactory() {
  static LocalFileTransportFactory localFactory;
  static FileFactoryImpl factory(&localFactory);
  return &factory;
}

} // namespace qvOS
