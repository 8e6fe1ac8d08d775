// A module that tells where the library it stands on believes to lie.
#include "Base/OS/qvOSAppMain.h"

#if defined(_WIN32)
#define ASKER_API __declspec(dllexport)
#else
#define ASKER_API __attribute__((visibility("default")))
#endif

extern "C" ASKER_API const char* libraryPlace() {
  return qvOS::AppMain::getInstance().getBaseLocation().asUTF8();
}
