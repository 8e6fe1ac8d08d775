// The file that a fuzz target has its input read from.
#pragma once

#include "Base/String/qvStringIString.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

/// A file that is there while the program runs.
class ScratchFile {
public:
  ScratchFile()
      : path_(std::filesystem::temp_directory_path() /
              ("base-fuzz-" + std::to_string(std::random_device()()))) {}
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  void write(const std::uint8_t* data, std::size_t size) const {
    std::filesystem::remove(path_);
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  [[nodiscard]] qvString::IString name() const {
    return qvString::IString(path_.string().c_str(), qvString::UTF8Encoding);
  }

private:
  std::filesystem::path path_;
};
