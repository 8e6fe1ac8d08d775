#include "testing/qvTestDirectory.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

#include <unistd.h>

namespace fs = std::filesystem;

namespace qvTest {

fs::path pathOf(std::string_view native) { return std::u8string(native.begin(), native.end()); }

std::string fileBytes(const std::string& path) {
  std::ifstream file(pathOf(path), std::ios::binary);
  if (!file) return "<missing>";
  return {std::istreambuf_iterator<char>(file), {}};
}

Directory::Directory() : Directory(fs::temp_directory_path().string()) {}

Directory::Directory(const std::string& parent) {
  std::random_device random;
  for (int attempt = 0; attempt < 100; ++attempt) {
    path_ = (fs::path(parent) / ("qvtest" + std::to_string(random()))).string();
    if (fs::create_directory(path_)) return;
  }
  throw std::runtime_error("no scratch directory");
}

std::string inMemory() {
  const char* const place = "/dev/shm";
  std::error_code none;
  const bool roomy = fs::space(place, none).available > (1u << 26) && !none;
  return roomy && ::access(place, W_OK) == 0 ? place : fs::temp_directory_path().string();
}

Directory::~Directory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string Directory::path(std::string_view name) const {
  return (pathOf(path_) / pathOf(name)).make_preferred().string();
}

std::string Directory::write(std::string_view name, std::string_view content) const {
  std::ofstream file(pathOf(path(name)), std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size())).flush();
  if (!file) throw std::runtime_error("cannot write " + path(name));
  return path(name);
}

std::string Directory::readText(std::string_view name) const {
  std::string text = read(name);
  std::erase(text, '\r');
  return text;
}

bool Directory::exists(std::string_view name) const {
  return fs::symlink_status(pathOf(path(name))).type() != fs::file_type::not_found;
}

int Directory::entries() const {
  return static_cast<int>(
      std::distance(fs::recursive_directory_iterator(path_), fs::recursive_directory_iterator()));
}

} // namespace qvTest
