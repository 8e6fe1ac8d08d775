#include "Base/IO/ioLzwReader.h"

#include "Base/IO/ioBuffer.h"
#include "Base/IO/ioBytes.h"

#include <algorithm>

namespace {

/// The longest chain of codes that is expanded. The table's own strings are shorter: a longer one is a cycle.
constexpr int longestChain = 65536;
/// Bytes that an expansion may overwrite past its end.
constexpr int slack = 7;
constexpr int heldSize = longestChain + 8;
/// Bytes that unpacking a group may look at.
constexpr int groupReach = ioLzwGroupSize + 2;

} // namespace

ioLzwReader::ioLzwReader() : table_(new Entry[ioLzwCodeLimit]), held_(new unsigned char[heldSize]) {
  for (int i = 0; i < 256; ++i) table_[i] = {static_cast<std::uint64_t>(i), 1};
  for (int i = 256; i < ioLzwFirstFreeCode; ++i) table_[i] = {0, 1};
}

int ioLzwReader::decompress(ioBuffer& source, unsigned char* destination, int count) {
  unsigned char* to = destination;
  unsigned char* const end = destination + count;
  if (!started_) {
    if (!readMagic(source)) return 0;
    to += readFirstCode(source, to);
    if (to == destination) return 0;
  }
  for (;;) {
    to += deliverHeld(to, static_cast<int>(end - to));
    if (to == end) break;
    if (!wild_) to = expandRun(source, to, end);
    const int code = readStringCode(source);
    if (code < 0 || code == ioLzwEndCode) break;
    if (!wild_ && (code > freeCode_ || code == ioLzwClearCode)) turnWild();
    if (!wild_)
      holdString(code);
    else if (!holdWildString(code))
      break;
    oldCode_ = code;
  }
  return static_cast<int>(to - destination);
}

// ---- Codes ---------------------------------------------------------------------------------------------

bool ioLzwReader::readMagic(ioBuffer& source) {
  started_ = true;
  unsigned char magic[sizeof ioLzwMagic] = {};
  source.readBytes(magic, sizeof magic);
  if (std::equal(magic, magic + sizeof magic, ioLzwMagic)) return true;
  lastCode_ = -1;
  return false;
}

int ioLzwReader::readFirstCode(ioBuffer& source, unsigned char* destination) {
  oldCode_ = readCode(source);
  finalChar_ = static_cast<unsigned char>(oldCode_);
  if (oldCode_ < 0 || oldCode_ == ioLzwEndCode) return 0;
  if (oldCode_ >= ioLzwClearCode) turnWild();
  *destination = finalChar_;
  return 1;
}

int ioLzwReader::readCode(ioBuffer& source) {
  const bool groupEnds = clearPending_ || codeIndex_ == codeCount_ || freeCode_ > maxCode_;
  lastCode_ = groupEnds && !takeGroup(source) ? -1 : codes_[codeIndex_++];
  return lastCode_;
}

/// Reads a code and obeys a clear code. The code after that one is taken for a string, even a second clear
/// code.
int ioLzwReader::readStringCode(ioBuffer& source) {
  const int code = readCode(source);
  if (code != ioLzwClearCode) return code;
  definedCodes_ = std::max(definedCodes_, freeCode_);
  clearPending_ = true;
  freeCode_ = ioLzwFirstFreeCode - 1; // so that the code after the clear code defines no string of use
  return readCode(source);
}

/// Drops the rest of the group and reads the next one. False where no whole code came.
bool ioLzwReader::takeGroup(ioBuffer& source) {
  if (freeCode_ > maxCode_) maxCode_ = ioLzwMaxCode(++codeBits_);
  if (clearPending_) {
    codeBits_ = ioLzwFirstBits;
    maxCode_ = ioLzwFirstMaxCode;
    clearPending_ = false;
  }
  codeIndex_ = 0;
  if (source.good() && source.heldBytes() >= groupReach) {
    unpackCodes(source.heldData());
    source.dropHeld(codeBits_);
    codeCount_ = 8;
    return true;
  }
  unsigned char group[groupReach] = {};
  codeCount_ = source.readBytes(group, codeBits_) * 8 / codeBits_;
  unpackCodes(group);
  return codeCount_ > 0;
}

inline void ioLzwReader::unpackCodes(const unsigned char* group) noexcept {
  const std::uint32_t mask = (1U << codeBits_) - 1;
  for (int i = 0, bit = 0; i < 8; ++i, bit += codeBits_)
    codes_[i] = static_cast<std::uint16_t>(ioLoadLittle32(group + bit / 8) >> bit % 8 & mask);
}

// ---- Strings -------------------------------------------------------------------------------------------

/// The string of `entry`, whose code is `code`, with one more byte.
inline ioLzwReader::Entry ioLzwReader::extended(const Entry& entry, int code, unsigned char last) noexcept {
  const std::uint64_t inTail = entry.facts & 7;
  const std::uint64_t link = static_cast<std::uint64_t>(code) << 32;
  const std::uint64_t byte = static_cast<std::uint64_t>(last) << (8 * inTail);
  const std::uint64_t length = (entry.facts & 0xFFFFFFFFU) + 1;
  return {(inTail ? entry.tail : 0) | byte,
          length | (inTail ? entry.facts & 0xFFFF00000000U : link) | link << 16};
}

/// Writes a string, and up to `slack` bytes past its end. @return its first byte. Strings of at most 16 bytes
/// take no branch that depends on the length.
inline unsigned char ioLzwReader::expand(const Entry* table, const Entry& entry, unsigned char* to) noexcept {
  std::uint32_t at = (entry.length() - 1) & ~7U;
  const Entry* piece = table + entry.link();
  ioStoreLittle64(to + (at == 0 ? 0 : at - 8), piece->tail);
  ioStoreLittle64(to + at, entry.tail);
  if (at == 0) piece = &entry;
  while (at > 8) {
    at -= 8;
    piece = table + piece->link();
    ioStoreLittle64(to + at - 8, piece->tail);
  }
  return static_cast<unsigned char>(piece->tail);
}

/// Expands whole groups, straight to where their strings belong. Stops at a code that needs care (the one
/// that is to be defined next, a clear or end code), before a string that might not fit, and near a change of
/// the width; `readCode` goes on from there.
unsigned char* ioLzwReader::expandRun(ioBuffer& source, unsigned char* to, const unsigned char* end) {
  const bool isBetweenGroups = codeIndex_ == codeCount_ && freeCode_ <= maxCode_;
  if (!isBetweenGroups || !source.good() || source.heldBytes() < groupReach) return to;
  return freeCode_ < ioLzwCodeLimit ? expandGroups<true>(source, to, end)
                                    : expandGroups<false>(source, to, end);
}

/// The loop of `expandRun`; `defines` where the table still grows. All state is local in it, since the bytes
/// that it stores might be anything.
template <bool defines>
inline unsigned char* ioLzwReader::expandGroups(ioBuffer& source, unsigned char* to,
                                                const unsigned char* end) {
  Entry* const table = table_.get();
  const int codeBits = codeBits_;
  const std::uint32_t mask = (1U << codeBits) - 1;
  const int lastStart = defines ? std::min(maxCode_, ioLzwCodeLimit - 1) - 7 : ioLzwCodeLimit;
  const unsigned char* const firstGroup = source.heldData();
  const unsigned char* const lastGroup = firstGroup + source.heldBytes() - groupReach;
  const unsigned char* group = firstGroup;
  int freeCode = freeCode_;
  int oldCode = oldCode_;
  Entry old = table[oldCode];
  unsigned char first = finalChar_;
  int index = 8;
  for (; index == 8 && group <= lastGroup && freeCode <= lastStart; group += codeBits) {
    for (index = 0; index < 8; ++index) {
      const int bit = index * codeBits;
      const int code = static_cast<int>(ioLoadLittle32(group + bit / 8) >> bit % 8 & mask);
      if ((defines && code >= freeCode) || (code | 1) == ioLzwEndCode) break;
      const Entry entry = table[code];
      if (end - to < static_cast<std::ptrdiff_t>(entry.length()) + slack) break;
      first = expand(table, entry, to);
      to += entry.length();
      if constexpr (defines) table[freeCode++] = extended(old, oldCode, first);
      old = entry;
      oldCode = code;
    }
  }
  freeCode_ = freeCode;
  oldCode_ = oldCode;
  finalChar_ = first;
  if (index < 8) unpackCodes(group - codeBits);
  codeIndex_ = index;
  codeCount_ = 8;
  source.dropHeld(static_cast<int>(group - firstGroup));
  return to;
}

/// Expands one string, which may be the one that is only now defined, and leaves it to `deliverHeld`.
void ioLzwReader::holdString(int code) {
  const auto define = [this] { table_[freeCode_] = extended(table_[oldCode_], oldCode_, finalChar_); };
  if (code == freeCode_) define();
  const Entry& entry = table_[code];
  finalChar_ = expand(table_.get(), entry, held_.get());
  heldPosition_ = 0;
  heldEnd_ = static_cast<int>(entry.length());
  if (freeCode_ == ioLzwCodeLimit) return;
  define();
  ++freeCode_;
}

int ioLzwReader::deliverHeld(unsigned char* destination, int room) noexcept {
  const int piece = std::min(room, heldEnd_ - heldPosition_);
  if (piece > 0) std::memcpy(destination, held_.get() + heldPosition_, static_cast<std::size_t>(piece));
  heldPosition_ += piece;
  return piece;
}

// ---- Streams that no writer makes ----------------------------------------------------------------------

/// From here on strings are followed from code to code when they are expanded. A code that was named before
/// it is defined stands for whatever its slot holds at that moment: bytes of 0 in a slot never used, and the
/// definition from before the last clear code in others.
void ioLzwReader::turnWild() {
  wild_ = true;
  definedCodes_ = std::max(definedCodes_, freeCode_);
  prefixTable_.reset(new std::uint16_t[ioLzwCodeLimit]());
  suffixTable_.reset(new unsigned char[ioLzwCodeLimit]());
  for (int i = 0; i < definedCodes_; ++i) {
    prefixTable_[i] = table_[i].prefix();
    suffixTable_[i] = static_cast<unsigned char>(table_[i].tail >> (8 * ((table_[i].length() - 1) & 7)));
  }
}

/// As `holdString`. False, and no code any more, for a string without end.
bool ioLzwReader::holdWildString(int code) {
  heldEnd_ = heldSize;
  heldPosition_ = heldSize;
  if (code >= freeCode_) {
    held_[--heldPosition_] = finalChar_;
    code = oldCode_;
  }
  for (int i = 0; code >= ioLzwClearCode; ++i) {
    if (i == longestChain) {
      heldPosition_ = heldEnd_;
      lastCode_ = -1;
      return false;
    }
    held_[--heldPosition_] = suffixTable_[code];
    code = prefixTable_[code];
  }
  finalChar_ = suffixTable_[code];
  held_[--heldPosition_] = finalChar_;
  if (freeCode_ == ioLzwCodeLimit) return true;
  prefixTable_[freeCode_] = static_cast<std::uint16_t>(oldCode_);
  suffixTable_[freeCode_] = finalChar_;
  ++freeCode_;
  return true;
}
