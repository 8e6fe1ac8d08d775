// Files for a benchmark, in a directory that goes with the program.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <unistd.h>

namespace qvBench {

class Directory {
public:
  explicit Directory(const std::string& name)
      : path_(std::filesystem::temp_directory_path() / ("bench-" + name + "-" + std::to_string(getpid()))) {
    std::filesystem::create_directory(path_);
  }
  ~Directory() { std::filesystem::remove_all(path_); }
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;

  [[nodiscard]] std::string path(const std::string& name) const { return path_ / name; }
  void remove(const std::string& name) const { std::filesystem::remove(path_ / name); }

private:
  std::filesystem::path path_;
};

inline void store(const std::string& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// The first bytes of a file, at most so many.
[[nodiscard]] inline std::string contentOf(const std::string& path, std::size_t most) {
  std::ifstream file(path, std::ios::binary);
  std::string content(most, '\0');
  file.read(content.data(), static_cast<std::streamsize>(most));
  content.resize(static_cast<std::size_t>(file.gcount()));
  return content;
}

} // namespace qvBench
