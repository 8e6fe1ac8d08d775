// A program that is not linked with the library: it copies the library to an odd place, loads it from there,
// and asks it, by way of the asker module, where it lies. usage: host LIBRARY ASKER PLACE
#include "testing/qvTestLibrary.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>

namespace fs = std::filesystem;

namespace {

using Ask = const char* (*)();

/// The library's name for a path, in UTF-8. Where there are no drives, it begins with one all the same.
std::u8string nameOf(const fs::path& path) {
  std::u8string name = path.u8string();
  std::replace(name.begin(), name.end(), u8'/', u8'\\');
  return path.has_root_name() ? name : u8"C:" + name;
}

/// Loads `library` and then the asker, which finds it loaded, from a current directory that is left between
/// loading and asking.
bool liesIn(const fs::path& directory, const fs::path& library, const fs::path& asker) {
  if (!qvTest::loadLibrary(library)) return false;
  fs::current_path(fs::temp_directory_path());
  void* const module = qvTest::loadLibrary(asker);
  const auto ask = module ? reinterpret_cast<Ask>(qvTest::symbolOf(module, "libraryPlace")) : nullptr;
  if (!ask) return false;
  const std::string told = ask();
  const std::u8string wanted = nameOf(directory);
  std::cout << told << '\n';
  return told == std::string(wanted.begin(), wanted.end());
}

} // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const fs::path library = argv[1];
  const fs::path asker = fs::absolute(argv[2]);
  const std::string place = argv[3];
  const std::string number = std::to_string(std::random_device()());
  const fs::path top = fs::canonical(fs::temp_directory_path()) / ("base-" + place + number);
  const fs::path directory = top / (place == "odd" ? u8"with blanks and \u00e9\u6f22\U0001f600" : u8"plain");
  const fs::path copy = directory / library.filename();
  fs::remove_all(top);
  fs::create_directories(directory);
  fs::copy_file(library, copy);

  fs::path loaded = copy;
  if (place == "relative") {
    fs::current_path(directory);
    loaded = fs::path(".") / library.filename();
  } else if (place == "link") {
    fs::create_directory(top / "links");
    loaded = top / "links" / library.filename();
    fs::create_symlink(copy, loaded);
  }
  const bool right = liesIn(directory, loaded, asker);
  std::error_code ignored; // a loaded library may not be deleted everywhere
  fs::remove_all(top, ignored);
  return right ? 0 : 1;
}
