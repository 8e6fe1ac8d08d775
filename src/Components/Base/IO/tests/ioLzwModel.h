// The format of compressed streams, told a second time: slow, with one table of 69001 slots for writing, and
// with prefixes, suffixes and a stack for reading.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ioLzwModel {

inline int maxCodeOf(int codeBits) { return codeBits == 16 ? 65536 : (1 << codeBits) - 1; }

/// Packs codes as a writer does. The group keeps its bytes, and they fill up the next group that is not full.
class Packer {
public:
  std::string out = "\x1F\x9D\x90";
  int codeBits = 9, maxCode = 511, freeCode = 258;
  bool clearPending = false;
  std::int64_t outputCount = 0;

  /// -1 ends the stream.
  void emit(int code) {
    for (int n = 0; code >= 0 && n < codeBits; ++n, ++bit_) {
      if (bit_ % 8 == 0) group_[bit_ / 8] = 0;
      group_[bit_ / 8] = static_cast<char>(group_[bit_ / 8] | (code >> n & 1) << bit_ % 8);
    }
    const bool changes = code >= 0 && (freeCode > maxCode || clearPending);
    if (bit_ == codeBits * 8 || (bit_ > 0 && (code < 0 || changes))) {
      out.append(group_, static_cast<std::size_t>(codeBits));
      outputCount += codeBits;
      bit_ = 0;
    }
    if (!changes) return;
    codeBits = clearPending ? 9 : codeBits + 1;
    maxCode = maxCodeOf(codeBits);
    clearPending = false;
  }

private:
  char group_[16] = {};
  int bit_ = 0;
};

/// Compresses; `strings` (may be null) receives the string of each code since the last clear code.
inline std::string compress(const std::string& data, std::vector<std::string>* strings = nullptr) {
  constexpr int size = 69001;
  std::vector<std::int32_t> hashCodes(size, -1);
  std::vector<std::uint16_t> codeTable(size);
  Packer packer;
  std::int64_t inputCount = 0, checkpoint = 10000, ratio = 0;
  int current = 0;
  if (strings) strings->resize(65536);
  for (int c = 0; strings && c < 256; ++c) strings->at(c) = std::string(1, static_cast<char>(c));
  for (const char byte : data) {
    const int c = static_cast<unsigned char>(byte);
    if (++inputCount == 1) {
      current = c;
      continue;
    }
    const int key = c << 16 | current, first = c << 8 ^ current;
    int i = first;
    while (hashCodes[i] != key && hashCodes[i] >= (i == first ? 0 : 1)) {
      i -= first == 0 ? 1 : size - first;
      if (i < 0) i += size;
    }
    if (hashCodes[i] == key) {
      current = codeTable[i];
      continue;
    }
    packer.emit(current);
    if (packer.freeCode < 65536) {
      if (strings) strings->at(packer.freeCode) = strings->at(current) + byte;
      codeTable[i] = static_cast<std::uint16_t>(packer.freeCode++);
      hashCodes[i] = key;
    } else if (inputCount >= checkpoint) {
      checkpoint = inputCount + 10000;
      const std::int64_t d = packer.outputCount >> 8;
      const std::int64_t now = inputCount < 8388608 ? (inputCount << 8) / packer.outputCount
                               : d == 0             ? 0x7FFFFFFF
                                                    : inputCount / d;
      packer.clearPending = now <= ratio;
      ratio = packer.clearPending ? 0 : now;
      if (packer.clearPending) {
        hashCodes.assign(size, -1);
        packer.freeCode = 258;
        packer.emit(256);
      }
    }
    current = c;
  }
  if (data.empty()) packer.out.clear();
  for (const int code : {current, 257, -1}) packer.emit(code);
  return packer.out;
}

/// Expands. False for a stream that does not end with the end code.
inline bool decompress(const std::string& stream, std::string& out) {
  std::vector<int> prefix(65536), suffix(65536);
  for (int c = 0; c < 256; ++c) suffix[static_cast<std::size_t>(c)] = c;
  int codeBits = 9, maxCode = 511, freeCode = 258, bitOffset = 0, bitLimit = 0;
  bool clearPending = false;
  std::size_t at = 3, group = 3;
  const auto readCode = [&] {
    if (clearPending || bitOffset >= bitLimit || freeCode > maxCode) {
      codeBits = clearPending ? 9 : freeCode > maxCode ? codeBits + 1 : codeBits;
      maxCode = maxCodeOf(codeBits);
      clearPending = false;
      group = at;
      const std::size_t got = std::min(stream.size() - at, static_cast<std::size_t>(codeBits));
      at += got;
      bitOffset = 0;
      bitLimit = static_cast<int>(got) * 8 - codeBits + 1;
      if (bitLimit < 1) return -1; // a code that is not whole is none
    }
    int code = 0;
    for (int n = 0; n < codeBits; ++n, ++bitOffset)
      code |= (stream[group + static_cast<std::size_t>(bitOffset / 8)] >> bitOffset % 8 & 1) << n;
    return code;
  };
  out.clear();
  if (stream.compare(0, 3, "\x1F\x9D\x90") != 0) return false;
  int oldCode = readCode(), finalChar = oldCode & 0xFF;
  if (oldCode < 0 || oldCode == 257) return oldCode == 257;
  out += static_cast<char>(finalChar);
  for (;;) {
    int code = readCode();
    if (code == 256) {
      clearPending = true;
      freeCode = 257;
      code = readCode();
    }
    if (code < 0 || code == 257) return code == 257;
    std::string stack;
    const int incoming = code;
    if (code >= freeCode) {
      stack += static_cast<char>(finalChar);
      code = oldCode;
    }
    for (int chain = 0; code >= 256; ++chain) {
      if (chain == 65536) return false;
      stack += static_cast<char>(suffix[code]);
      code = prefix[code];
    }
    finalChar = suffix[code];
    stack += static_cast<char>(finalChar);
    out.append(stack.rbegin(), stack.rend());
    if (freeCode < 65536) {
      prefix[freeCode] = oldCode;
      suffix[freeCode++] = finalChar;
    }
    oldCode = incoming;
  }
}

} // namespace ioLzwModel
