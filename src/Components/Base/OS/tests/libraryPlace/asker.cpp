// A module that tells where the library it stands on believes to lie.
#include "Base/OS/qvOSAppMain.h"
#include "Base/qvBase.h"

QV_PLUGIN_EXPORT const char* libraryPlace() {
  return qvOS::AppMain::getInstance().getBaseLocation().asUTF8();
}
