#include "Base/String/qvStringTableLines.h"

#include "Base/Platform/qvPlatformFile.h"

#include <algorithm>

namespace qvStringTable {

Lines::~Lines() {
  if (stream_) qvPlatform::closeStream(stream_);
}

int Lines::open(const char* nativePath) {
  buffer_.resize(1 << 16);
  return qvPlatform::openStream(nativePath, "rt", &stream_);
}

bool Lines::next(std::string& line) {
  if (end_ - begin_ < longest && !atEnd_) fill();
  const auto first = buffer_.begin() + static_cast<std::ptrdiff_t>(begin_);
  const auto last = first + static_cast<std::ptrdiff_t>(std::min(longest, end_ - begin_));
  const auto newline = std::find(first, last, '\n');
  // What stands before a failure is no whole line.
  if (first == last || (newline == last && last - first < std::ptrdiff_t(longest) && error_)) return false;
  line.assign(first, newline == last ? last : newline + 1);
  begin_ += line.size();
  return true;
}

/// Reads as much as the buffer holds behind what is left in it.
void Lines::fill() {
  std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
            buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
  end_ -= begin_;
  begin_ = 0;
  std::size_t count = 0;
  error_ = qvPlatform::readStream(stream_, buffer_.data() + end_, buffer_.size() - end_, &count, nullptr);
  end_ += count;
  atEnd_ = error_ || end_ < buffer_.size();
}

} // namespace qvStringTable
