#include "input.h"

#include "native.h"
#include "package.h"
#include "report.h"

#include <algorithm>

bool Input::open(const CommandLine& line) {
  name_ = line.words[0];
  path_ = fromNative(name_);
  const std::optional<std::string> entry = line.wordOf("entry");
  if (!(entry ? openPackage(name_, package_) : isFile(name_, "file"))) return false;
  if (entry) {
    entry_ = package_.getEntry(namedBy(*entry, package_));
    if (!entry_) return fail(*entry, "there is no such entry"), false;
    name_ += ": " + *entry;
  }
  openSource();
  if (stream_.getStatus() == ioStreamOpenFailed) return fail(name_, "it cannot be read"), false;
  pushFilters(line.has("compress"), line.has("checksum"));
  return true;
}

void Input::openSource() {
  if (!entry_) return stream_.openFile(path_);
  stream_.openPackageFileEntry(entry_);
  if (!entry_->getCompressed()) return;
  stream_.compress(true);
  stream_.checksum(true);
}

void Input::pushFilters(bool compress, bool checksum) {
  // Which of two filters the writer pushed first shows in the bytes that are stored.
  const bool checksumFirst = compress && checksum && !beginsCompressed();
  if (checksumFirst) stream_.checksum(true);
  if (compress) stream_.compress(true);
  if (checksum && !checksumFirst) stream_.checksum(true);
}

bool Input::beginsCompressed() {
  const int first = stream_.readData(block_, 3) > 0 ? byteHere() : -1;
  stream_.close();
  openSource();
  return first == 0x1F;
}

bool Input::fill() {
  before_ += position_;
  position_ = held_ = 0;
  if (stream_.good()) held_ = stream_.readData(block_, sizeof block_);
  return held_ > 0;
}

std::string Input::take(std::int64_t count) {
  std::string bytes;
  while (static_cast<std::int64_t>(bytes.size()) < count && peek() >= 0) {
    const std::int64_t missing = count - static_cast<std::int64_t>(bytes.size());
    const auto part = static_cast<int>(std::min<std::int64_t>(missing, held_ - position_));
    bytes.append(block_ + position_, static_cast<std::size_t>(part));
    position_ += part;
  }
  return bytes;
}

bool Input::skip(std::int64_t count) {
  while (count > 0 && peek() >= 0) {
    const auto part = static_cast<int>(std::min<std::int64_t>(count, held_ - position_));
    position_ += part;
    count -= part;
  }
  return count == 0;
}

bool Input::endedWell() const {
  return stream_.getStatus() == ioStreamAtEnd || stream_.getStatus() == ioStreamCompressedEnd;
}

std::string Input::endReason() const {
  return endedWell() ? "the data ends" : "the stored data is damaged or cut";
}
