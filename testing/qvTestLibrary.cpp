#include "testing/qvTestLibrary.h"

#include "qvTestSystem.h"

namespace qvTest {

bool isMapped(const std::string& fileName) { return system::isMapped(fileName); }

} // namespace qvTest
