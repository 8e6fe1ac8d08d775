#include "testing/qvTestDirectory.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace fs = std::filesystem;

namespace qvTest {

Directory::Directory() {
  std::random_device random;
  for (int attempt = 0; attempt < 100; ++attempt) {
    path_ = (fs::temp_directory_path() / ("qvtest" + std::to_string(random()))).string();
    if (fs::create_directory(path_)) return;
  }
  throw std::runtime_error("no scratch directory");
}

Directory::~Directory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string Directory::path(std::string_view name) const { return path_ + "/" + std::string(name); }

std::string Directory::write(std::string_view name, std::string_view content) const {
  std::ofstream file(path(name), std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size())).flush();
  if (!file) throw std::runtime_error("cannot write " + path(name));
  return path(name);
}

std::string Directory::read(std::string_view name) const {
  std::ifstream file(path(name), std::ios::binary);
  if (!file) return "<missing>";
  return {std::istreambuf_iterator<char>(file), {}};
}

bool Directory::exists(std::string_view name) const {
  return fs::symlink_status(path(name)).type() != fs::file_type::not_found;
}

int Directory::entries() const {
  return static_cast<int>(
      std::distance(fs::recursive_directory_iterator(path_), fs::recursive_directory_iterator()));
}

} // namespace qvTest
