// The lines of a text file. Private.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace qvStringTable {

/// Reads a file line by line as the C runtime does into a buffer: each line with its line feed, cut after
/// `longest` bytes, and what follows is a line of its own.
class Lines {
public:
  static constexpr std::size_t longest = 4097;

  Lines() = default;
  ~Lines();
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

  /// @return 0, or the system's number.
  [[nodiscard]] int open(const char* nativePath);
  /// The next line; false at the end of the file, or where reading failed.
  [[nodiscard]] bool next(std::string& line);
  /// Why reading failed; 0 at the end of the file.
  [[nodiscard]] int error() const { return error_; }

private:
  void fill();

  std::FILE* stream_ = nullptr;
  std::vector<char> buffer_;
  std::size_t begin_ = 0; // of what was read and not yet given out
  std::size_t end_ = 0;
  bool atEnd_ = false;
  int error_ = 0;
};

} // namespace qvStringTable
