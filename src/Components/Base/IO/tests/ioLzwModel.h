// The format of compressed streams, told a second time: slow, with one table of 69001 slots for writing, and
// with prefixes, suffixes and a stack for reading.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ioLzwModel {

/// Packs codes as a writer does. The group keeps its bytes, and they fill up the next group that is not full.
class Packer {
public:
  std::string out = "\x1F\x9D\x90";
  int codeBits = 9, maxCode = 511, freeCode = 258;
  bool clearPending = false;
  std::int64_t outputCount = 0;

  void emit(int code) {
    if (code < 0) {
      if (bitOffset_ > 0) out.append(group_, static_cast<std::size_t>(codeBits));
      return;
    }
    pack(code);
    bitOffset_ += codeBits;
    if (bitOffset_ == codeBits * 8) writeGroup();
    if (freeCode <= maxCode && !clearPending) return;
    if (bitOffset_ > 0) writeGroup();
    codeBits = clearPending ? 9 : codeBits + 1;
    maxCode = codeBits == 16 ? 65536 : (1 << codeBits) - 1;
    clearPending = false;
  }

private:
  /// Replaces what lies above the offset in the first byte, and all of the other bytes that the code touches.
  void pack(int code) {
    const int last = (bitOffset_ + codeBits - 1) / 8;
    for (int byte = bitOffset_ / 8; byte <= last; ++byte) {
      const int from = byte == bitOffset_ / 8 ? bitOffset_ % 8 : 0;
      auto bits = static_cast<unsigned>(static_cast<unsigned char>(group_[byte])) & ((1U << from) - 1);
      for (int bit = from; bit < 8; ++bit) {
        const int n = byte * 8 + bit - bitOffset_;
        if (n < codeBits && (code >> n & 1)) bits |= 1U << bit;
      }
      group_[byte] = static_cast<char>(bits);
    }
  }

  void writeGroup() {
    out.append(group_, static_cast<std::size_t>(codeBits));
    outputCount += codeBits;
    bitOffset_ = 0;
  }

  char group_[16] = {};
  int bitOffset_ = 0;
};

/// Compresses; `stringOfCode` (may be null) receives the string of each code since the last clear code.
inline std::string compress(const std::string& data, std::vector<std::string>* stringOfCode = nullptr) {
  constexpr int size = 69001;
  std::vector<std::int32_t> hashCodes(size, -1);
  std::vector<std::uint16_t> codeTable(size);
  Packer packer;
  std::int64_t inputCount = 0, checkpoint = 10000, ratio = 0;
  int current = 0;
  std::vector<std::string> strings(65536);
  for (int c = 0; c < 256; ++c) strings[static_cast<std::size_t>(c)] = std::string(1, static_cast<char>(c));
  for (const char byte : data) {
    const int c = static_cast<unsigned char>(byte);
    if (++inputCount == 1) {
      current = c;
      continue;
    }
    const int key = c << 16 | current;
    int i = c << 8 ^ current;
    bool found = hashCodes[i] == key;
    if (!found && hashCodes[i] >= 0) {
      const int step = i == 0 ? 1 : size - i;
      do {
        i -= step;
        if (i < 0) i += size;
        found = hashCodes[i] == key;
      } while (!found && hashCodes[i] >= 1);
    }
    if (found) {
      current = codeTable[i];
      continue;
    }
    packer.emit(current);
    if (packer.freeCode < 65536) {
      if (stringOfCode) strings[packer.freeCode] = strings[current] + byte;
      codeTable[i] = static_cast<std::uint16_t>(packer.freeCode++);
      hashCodes[i] = key;
    } else if (inputCount >= checkpoint) {
      checkpoint = inputCount + 10000;
      const std::int64_t d = packer.outputCount >> 8;
      const std::int64_t now = inputCount < 8388608 ? (inputCount << 8) / packer.outputCount
                               : d == 0             ? 0x7FFFFFFF
                                                    : inputCount / d;
      if (now > ratio) {
        ratio = now;
      } else {
        ratio = 0;
        hashCodes.assign(size, -1);
        packer.freeCode = 258;
        packer.clearPending = true;
        packer.emit(256);
      }
    }
    current = c;
  }
  if (data.empty()) packer.out.clear();
  packer.emit(current);
  packer.emit(257);
  packer.emit(-1);
  if (stringOfCode) *stringOfCode = strings;
  return packer.out;
}

enum class End { code, damage };

/// Expands. `length` (may be null) receives how many bytes of the stream were used.
inline End decompress(const std::string& stream, std::string& out, std::size_t* length = nullptr) {
  std::vector<int> prefix(65536), suffix(65536);
  for (int c = 0; c < 256; ++c) suffix[static_cast<std::size_t>(c)] = c;
  int codeBits = 9, maxCode = 511, freeCode = 258, bitOffset = 0, bitLimit = 0;
  bool clearPending = false;
  std::size_t at = 3, group = 3;
  const auto readCode = [&] {
    if (clearPending || bitOffset >= bitLimit || freeCode > maxCode) {
      if (freeCode > maxCode) maxCode = ++codeBits == 16 ? 65536 : (1 << codeBits) - 1;
      if (clearPending) {
        codeBits = 9;
        maxCode = 511;
        clearPending = false;
      }
      group = at;
      const std::size_t got = std::min(stream.size() - at, static_cast<std::size_t>(codeBits));
      at += got;
      bitOffset = 0;
      bitLimit = static_cast<int>(got) * 8 - codeBits + 1;
      if (bitLimit < 1) return -1; // a code that is not whole is none
    }
    int code = 0;
    for (int n = 0; n < codeBits; ++n) {
      const auto bit = static_cast<std::size_t>(bitOffset + n);
      code |= (stream[group + bit / 8] >> (bit % 8) & 1) << n;
    }
    bitOffset += codeBits;
    return code;
  };
  out.clear();
  if (length) *length = 0;
  if (stream.compare(0, 3, "\x1F\x9D\x90") != 0) return End::damage;
  int oldCode = readCode(), finalChar = oldCode & 0xFF;
  if (oldCode == 257) return End::code;
  if (oldCode < 0) return End::damage;
  out += static_cast<char>(finalChar);
  for (;;) {
    int code = readCode();
    if (code == 256) {
      clearPending = true;
      freeCode = 257;
      code = readCode();
    }
    if (length) *length = at;
    if (code < 0) return End::damage;
    if (code == 257) return End::code;
    std::string stack;
    const int incoming = code;
    if (code >= freeCode) {
      stack += static_cast<char>(finalChar);
      code = oldCode;
    }
    for (int chain = 0; code >= 256; ++chain) {
      if (chain == 65536) return End::damage;
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
