#include "testing/qvTestLibrary.h"

#include "qvTestSystem.h"

namespace qvTest {

bool isMapped(const std::string& fileName) { return system::isMapped(fileName); }

void* loadLibrary(const std::filesystem::path& file) { return system::loadLibrary(file); }

void* symbolOf(void* library, const char* name) { return system::symbolOf(library, name); }

} // namespace qvTest
