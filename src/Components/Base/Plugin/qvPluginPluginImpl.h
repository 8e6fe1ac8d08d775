// The state of a plug-in, and the calls of the loader that change it.
#pragma once

#include "Base/OS/qvOSFilename.h"
#include "Base/String/qvStringIString.h"

namespace qvPlugin {

class PluginImpl {
public:
  explicit PluginImpl(const qvOS::Filename& file) : filename_(file) {}

  /// Loads the library and calls its "initializePlugin". False where that failed, with an error, or without
  /// one where there is no such file.
  bool load();
  /// Undoes `load`, unless the library is to stay.
  void unload();
  [[nodiscard]] void* getSymbol(const char* name);

  void finallyUnload(bool unload) { unloadOnDestroy_ = unload; }
  [[nodiscard]] const qvOS::Filename& filename() const { return filename_; }
  [[nodiscard]] const char* error() const { return error_.asUTF8(); }

private:
  void callIfExported(const char* name);

  qvOS::Filename filename_;
  qvString::IString error_;
  bool loaded_ = false;
  bool unloadOnDestroy_ = true;
  void* module_ = nullptr;
};

} // namespace qvPlugin
