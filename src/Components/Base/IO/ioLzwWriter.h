// The compressing half of the LZW filter. What it writes is fixed byte by byte by the table of strings, its
// probe and the ratio check.
#pragma once

#include "Base/IO/ioLzwFormat.h"
#include "Base/IO/ioLzwTable.h"

#include <cstdint>

class ioBuffer;

class ioLzwWriter {
public:
  /// Compresses `count` bytes to `target`.
  void compress(ioBuffer& target, const unsigned char* source, int count);
  /// Writes the last code, the end code and the last group. Without any byte before it the stream has no
  /// magic, and no reader takes it.
  void end(ioBuffer& target);

private:
  static constexpr int ratioCheckInterval = 10000;

  void start(ioBuffer& target, unsigned char first);
  void checkRatio(ioBuffer& target);
  void emitCode(ioBuffer& target, int code);
  void packCodes() noexcept;
  void writeGroup(ioBuffer& target);

  bool started_ = false;
  int codeBits_ = ioLzwFirstBits;
  int maxCode_ = ioLzwFirstMaxCode;
  int freeCode_ = ioLzwFirstFreeCode;
  bool clearPending_ = false;
  std::int64_t ratio_ = 0;
  std::int64_t checkpoint_ = ratioCheckInterval;
  int currentCode_ = 0;
  std::int64_t inputCount_ = 0;
  std::int64_t outputCount_ = 0;
  ioLzwTable table_;
  int pendingCodes_ = 0;                         ///< Codes of the group that is being gathered.
  std::uint16_t codes_[8] = {};                  ///< Those codes.
  unsigned char codeGroup_[ioLzwGroupSize] = {}; ///< Keeps the last group: its bytes fill up a short one.
};
