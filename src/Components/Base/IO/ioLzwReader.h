// The expanding half of the LZW filter.
#pragma once

#include "Base/IO/ioLzwFormat.h"

#include <cstdint>
#include <memory>

class ioBuffer;

/// Expands codes into bytes. What it delivers is fixed byte by byte, for streams that name codes before they
/// are defined as well; only a string without end is damage.
class ioLzwReader {
public:
  ioLzwReader();

  /// Expands up to `count` bytes from `source` and returns how many came; fewer only where the codes end, see
  /// `lastCode`. Not to be called again then.
  int decompress(ioBuffer& source, unsigned char* destination, int count);

  /// The last code that was read: the end code, or -1 where no whole code came or the stream is damaged.
  [[nodiscard]] int lastCode() const noexcept { return lastCode_; }
  void forgetLastCode() noexcept { lastCode_ = -1; }

private:
  /// A string of the table. Its last 1 to 8 bytes stand in `tail`, the first of them in the lowest bits, and
  /// `link` is the code of what comes before them, whose length is a multiple of 8: so a string is expanded
  /// from its end in steps of 8 bytes. `prefix` is the code of the string without its last byte.
  struct Entry {
    std::uint64_t tail;
    std::uint64_t facts; ///< The length, and from bit 32 on the link, and from bit 48 on the prefix.

    [[nodiscard]] std::uint32_t length() const noexcept { return static_cast<std::uint32_t>(facts); }
    [[nodiscard]] std::uint16_t link() const noexcept { return static_cast<std::uint16_t>(facts >> 32); }
    [[nodiscard]] std::uint16_t prefix() const noexcept { return static_cast<std::uint16_t>(facts >> 48); }
  };

  bool readMagic(ioBuffer& source);
  int readFirstCode(ioBuffer& source, unsigned char* destination);
  int readCode(ioBuffer& source);
  int readStringCode(ioBuffer& source);
  bool takeGroup(ioBuffer& source);
  void unpackCodes(const unsigned char* group) noexcept;

  unsigned char* expandRun(ioBuffer& source, unsigned char* to, const unsigned char* end);
  template <bool defines>
  unsigned char* expandGroups(ioBuffer& source, unsigned char* to, const unsigned char* end);
  static unsigned char expand(const Entry* table, const Entry& entry, unsigned char* to) noexcept;
  static Entry extended(const Entry& entry, int code, unsigned char last) noexcept;
  void holdString(int code);
  int deliverHeld(unsigned char* destination, int room) noexcept;

  void turnWild();
  bool holdWildString(int code);

  bool started_ = false;
  bool wild_ = false; ///< The stream named a code before it was defined: see `turnWild`.
  int codeBits_ = ioLzwFirstBits;
  int maxCode_ = ioLzwFirstMaxCode;
  int freeCode_ = ioLzwFirstFreeCode;
  int definedCodes_ = ioLzwFirstFreeCode; ///< One above the greatest code that ever had a string.
  bool clearPending_ = false;
  int lastCode_ = 0;
  int oldCode_ = 0;
  unsigned char finalChar_ = 0; ///< The first byte of the string of `oldCode_`.
  int codeIndex_ = 0;           ///< Of the next code in the group.
  int codeCount_ = 0;           ///< Whole codes in the group.
  std::uint16_t codes_[8] = {};
  std::unique_ptr<Entry[]> table_;
  std::unique_ptr<std::uint16_t[]> prefixTable_; ///< Of a wild stream only, like the suffixes.
  std::unique_ptr<unsigned char[]> suffixTable_;
  std::unique_ptr<unsigned char[]> held_; ///< An expanded string that the caller had no room for.
  int heldPosition_ = 0;
  int heldEnd_ = 0;
};
