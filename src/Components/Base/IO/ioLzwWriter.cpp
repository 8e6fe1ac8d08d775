#include "Base/IO/ioLzwWriter.h"

#include "Base/IO/ioBuffer.h"
#include "Base/IO/ioBytes.h"

void ioLzwWriter::start(ioBuffer& target, unsigned char first) {
  target.writeBytes(ioLzwMagic, sizeof ioLzwMagic);
  inputCount_ = 1;
  currentCode_ = first;
  started_ = true;
}

void ioLzwWriter::compress(ioBuffer& target, const unsigned char* source, int count) {
  const unsigned char* const end = source + count;
  if (!started_ && count > 0) start(target, *source++);
  std::uint32_t current = static_cast<std::uint32_t>(currentCode_);
  const unsigned char* const begin = source;
  const std::int64_t countBefore = inputCount_;
  for (; source < end; ++source) {
    const std::uint32_t key = static_cast<std::uint32_t>(*source) << 16 | current;
    if (const std::uint32_t known = table_.find(key)) {
      current = known;
      continue;
    }
    emitCode(target, static_cast<int>(current));
    current = *source;
    inputCount_ = countBefore + (source + 1 - begin);
    if (freeCode_ < ioLzwCodeLimit)
      table_.insert(key, static_cast<std::uint32_t>(freeCode_++));
    else if (inputCount_ >= checkpoint_)
      checkRatio(target);
  }
  inputCount_ = countBefore + (source - begin);
  currentCode_ = static_cast<int>(current);
}

void ioLzwWriter::checkRatio(ioBuffer& target) {
  checkpoint_ = inputCount_ + ratioCheckInterval;
  std::int64_t now = 0;
  if (inputCount_ < 8388608) {
    now = (inputCount_ << 8) / outputCount_;
  } else {
    const std::int64_t divisor = outputCount_ >> 8;
    now = divisor == 0 ? 0x7FFFFFFF : inputCount_ / divisor;
  }
  if (now > ratio_) {
    ratio_ = now;
    return;
  }
  ratio_ = 0;
  table_.clear();
  freeCode_ = ioLzwFirstFreeCode;
  clearPending_ = true;
  emitCode(target, ioLzwClearCode);
}

inline void ioLzwWriter::emitCode(ioBuffer& target, int code) {
  codes_[pendingCodes_++] = static_cast<std::uint16_t>(code);
  if (pendingCodes_ == 8) writeGroup(target);
  if (freeCode_ <= maxCode_ && !clearPending_) return;
  if (pendingCodes_ > 0) writeGroup(target);
  codeBits_ = clearPending_ ? ioLzwFirstBits : codeBits_ + 1;
  maxCode_ = ioLzwMaxCode(codeBits_);
  clearPending_ = false;
}

/// Packs the pending codes over the start of the last group, whose other bytes stay.
void ioLzwWriter::packCodes() noexcept {
  std::uint64_t words[2] = {};
  for (int i = 0, bit = 0; i < pendingCodes_; ++i, bit += codeBits_) {
    const std::uint64_t code = codes_[i];
    words[bit / 64] |= code << bit % 64;
    if (bit < 64 && bit + codeBits_ > 64) words[1] = code >> (64 - bit);
  }
  unsigned char packed[ioLzwGroupSize];
  ioStoreLittle64(packed, words[0]);
  ioStoreLittle64(packed + 8, words[1]);
  std::memcpy(codeGroup_, packed, static_cast<std::size_t>((pendingCodes_ * codeBits_ + 7) / 8));
}

void ioLzwWriter::writeGroup(ioBuffer& target) {
  packCodes();
  pendingCodes_ = 0;
  outputCount_ += codeBits_;
  target.writeBytes(codeGroup_, codeBits_);
}

void ioLzwWriter::end(ioBuffer& target) {
  emitCode(target, currentCode_);
  emitCode(target, ioLzwEndCode);
  if (pendingCodes_ > 0) writeGroup(target);
}
