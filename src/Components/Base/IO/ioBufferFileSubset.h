// The link over a range of a file, for reading. Package entries are read through it.
#pragma once

#include "Base/IO/ioBufferFD.h"

class ioBufferFileSubset : public ioBuffer {
public:
  ioBufferFileSubset();

  /// Opens the `size` bytes from `start` on of a file. A range that passes the end of the file is
  /// `ioBufferAtEnd`: an empty read and no failure.
  void openSlice(const qvString::IString& name, std::int64_t start, std::int64_t size);

  /// Positions count from the start of the slice. One at the slice's size or above fails as the end.
  bool seekLink(std::int64_t position) override;
  std::int64_t tellLink() override;
  [[nodiscard]] int kind() const override { return ioBufferKindFileSubset; }
  void closeLink() override { file_.closeLink(); }
  int readRaw(void* destination, int count) override;
  /// A slice only reads: nothing happens.
  void writeRaw(const void* source, int count) override;

private:
  ioBufferFD file_; ///< Not on the chain, and its own buffer stays unused.
  std::int64_t sliceStart_ = -1;
  std::int64_t sliceSize_ = -1;
  std::int64_t slicePosition_ = -1;
};
