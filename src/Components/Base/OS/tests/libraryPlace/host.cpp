// A program that is not linked with the library: it copies the library to an odd place, loads it from there,
// and asks it, by way of the asker module, where it lies. usage: host LIBRARY ASKER PLACE
#include <filesystem>
#include <iostream>
#include <random>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace fs = std::filesystem;

namespace {

using Ask = const char* (*)();

#if defined(_WIN32)
HMODULE load(const fs::path& path) { return LoadLibraryW(path.c_str()); }
Ask askerIn(HMODULE module) {
  return reinterpret_cast<Ask>(reinterpret_cast<void*>(GetProcAddress(module, "libraryPlace")));
}
#else
void* load(const fs::path& path) {
  void* const module = dlopen(path.c_str(), RTLD_NOW);
  if (!module) std::cerr << dlerror() << '\n';
  return module;
}
Ask askerIn(void* module) { return reinterpret_cast<Ask>(dlsym(module, "libraryPlace")); }
#endif

/// The library's name for a path, in UTF-8.
std::u8string nameOf(fs::path path) {
  std::u8string name = path.make_preferred().u8string();
#if !defined(_WIN32)
  for (char8_t& c : name)
    if (c == u8'/') c = u8'\\';
  name.insert(0, u8"C:");
#endif
  return name;
}

/// Loads `library` and then the asker, which finds it loaded, from a current directory that is left between
/// loading and asking.
bool liesIn(const fs::path& directory, const fs::path& library, const fs::path& asker) {
  if (!load(library)) return false;
  fs::current_path(fs::temp_directory_path());
  const auto module = load(asker);
  const Ask ask = module ? askerIn(module) : nullptr;
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
