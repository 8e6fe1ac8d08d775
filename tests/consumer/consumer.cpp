// What crosses the library's boundary: functions, data, an exception, and a class that the program derives
// from.
#include "Base/IO/ioPackageFile.h"
#include "Base/Utility/qvReferenceCount.h"
#include "Base/Utility/qvUtilBuild.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/Utility/qvUtilInterval.h"

#include <cstdio>

namespace {

bool errorIsCaught() {
  try {
    (void)qvUtil::Interval("no interval");
  } catch (const qvUtil::Error& error) {
    return error.num() == 1;
  }
  return false;
}

struct Object final : qv::ReferenceCount {
  explicit Object(bool& gone) : gone_(gone) {}
  ~Object() override { gone_ = true; }
  bool& gone_;
};

bool derivedObjectDies() {
  bool gone = false;
  { const qv::Reference<Object> object(new Object(gone)); }
  return gone;
}

} // namespace

int main() {
  ioPackageFile package;
  const struct {
    const char* what;
    bool holds;
  } facts[] = {
      {"an error of the library is caught", errorIsCaught()},
      {"an object of a derived class is destroyed", derivedObjectDies()},
      {"data of the library is seen", gBuildTime > 0 && gBuildChangeSet[0] != 0},
      {"a missing package is an error", bool(package.open(qvString::IString("missing/file")))},
  };
  int failures = 0;
  for (const auto& [what, holds] : facts)
    if (!holds) std::printf("not so: %s\n", what), ++failures;
  return failures;
}
