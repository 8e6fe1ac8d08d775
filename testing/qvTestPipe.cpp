#include "testing/qvTestPipe.h"

#include "qvTestSystem.h"

#include <sys/stat.h>

namespace qvTest {

std::array<int, 2> openPipe() {
  std::array<int, 2> ends = {-1, -1};
  system::openPipe(ends.data());
  return ends;
}

bool isOpen(int descriptor) {
  struct stat status;
  return ::fstat(descriptor, &status) == 0;
}

} // namespace qvTest
