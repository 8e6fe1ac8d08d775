// The walk over the plug-in directories that loads the declaration libraries.
#include "Base/OS/qvOSAppMain.h"
#include "Base/OS/qvOSAppOutput.h"
#include "Base/OS/qvOSDirectoryIterator.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/Platform/qvPlatformLibrary.h"
#include "Base/Plugin/qvPluginPluginLoader.h"
#include "Base/Plugin/qvPluginServiceManager.h"

#include <algorithm>
#include <string_view>

namespace qvPlugin {

namespace {

using WideView = std::basic_string_view<qv::WChar>;

bool holdsDebugSymbols(WideView suffix) {
  const std::string_view platforms = qvPlatform::debugSymbolSuffix;
  return suffix == QV_W("pdb") ||
         std::equal(suffix.begin(), suffix.end(), platforms.begin(), platforms.end());
}

bool isDeclarationLibrary(const qvOS::Filename& file) {
  constexpr WideView prefix = QV_W("serviceDecl_");
  const WideView name = file.baseTrunk().view();
  return name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix &&
         !holdsDebugSymbols(file.baseSuffix().view());
}

/// Loads a declaration library, which then lives by its services alone.
void registerServicesOf(const qvOS::Filename& file) {
  qvOS::AppOutput& output = qvOS::AppOutput::getInstance();
  PluginLoader loader;
  const qv::Reference<PluginProxy> proxy = loader.loadProxy(file);
  if (!proxy) {
    output.getStream(0).printf("Proxy failed to load: %S\n", file.name().asWChar());
    output.getStream(0).printf("%s\n", loader.getError());
  } else if (!proxy->installServices()) {
    output.getStream(1).printf("No services in: %S\n", file.name().asWChar());
  }
}

void registerServicesIn(const qvOS::Filename& directory) {
  for (qvOS::DirectoryIterator entry(directory); entry.next();) {
    if (entry.isDirectory()) continue;
    const qvOS::Filename file = entry.path();
    if (isDeclarationLibrary(file)) registerServicesOf(file);
  }
}

} // namespace

void ServiceManager::registerServices(const char* subdirectory) {
  if (registered_) return;
  registered_ = true;
  qv::vector<qvString::IString> directories;
  qvOS::AppMain::getInstance().getPluginDirectories(directories);
  for (const qvString::IString& name : directories) {
    qvOS::Filename directory(name);
    if (subdirectory)
      directory = qvOS::Filename::join(name, qvString::IString(subdirectory, qvString::UTF8Encoding));
    if (qvOS::doesFileExist(directory)) registerServicesIn(directory);
  }
}

} // namespace qvPlugin
