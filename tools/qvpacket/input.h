// The bytes of a packet file, from a file or an entry of a package, through the filters it was written with.
#pragma once

#include "commandLine.h"

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioPackageFile.h"

#include <cstdint>
#include <string>

class Input {
public:
  Input() = default;
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  ~Input() { stream_.close(); }

  /// Opens what the command line names. @return false, and reported, where that fails.
  [[nodiscard]] bool open(const CommandLine& line);
  /// What was opened, for reports.
  [[nodiscard]] const std::string& name() const { return name_; }

  /// The next byte; -1 where there is none.
  [[nodiscard]] int peek() { return position_ < held_ || fill() ? byteHere() : -1; }
  int take() {
    const int byte = peek();
    position_ += byte >= 0;
    return byte;
  }
  /// Takes `count` bytes or as many as there are. @return them; memory is used as they come.
  [[nodiscard]] std::string take(std::int64_t count);
  /// Passes over `count` bytes. @return false where there are fewer.
  bool skip(std::int64_t count);

  /// How many bytes were taken, behind the filters.
  [[nodiscard]] std::int64_t offset() const { return before_ + position_; }
  /// Once there are no more bytes: whether the file and its filters ended as they should.
  [[nodiscard]] bool endedWell() const;
  /// Once there are no more bytes: why, as the beginning of a sentence.
  [[nodiscard]] std::string endReason() const;

private:
  [[nodiscard]] int byteHere() const { return static_cast<unsigned char>(block_[position_]); }
  [[nodiscard]] bool fill();
  void openSource();
  void pushFilters(bool compress, bool checksum);
  [[nodiscard]] bool beginsCompressed();

  std::string name_;
  qvString::IString path_;
  ioPackageFile package_;
  const ioPackageFileEntry* entry_ = nullptr;
  ioBufferedStreamInput stream_;
  std::int64_t before_ = 0; // bytes in front of `block_`
  int position_ = 0;
  int held_ = 0;
  char block_[1 << 16];
};
