// A packet in the text encoding, built or held whole in memory:
//
//   "{ "        start
//   "%d "       typeId, the type's number in the type table
//   "%d "       referenceMode, 1 if the body starts with a reference, 0 if not
//    items      values, each with a blank behind it; chunks "\n  [ " items "] "; sub-packets "\n  < " items
//    "> "
//   "}\n"       end
//
// No size is stored. Readers find the end of an item by scanning, so eight characters are escaped in texts.
#pragma once

#include "Base/IO/ioNumberText.h"
#include "Base/IO/ioPacketBlock.h"
#include "Base/IO/ioPacketFileBuffer.h"

#include <algorithm>
#include <cstring>
#include <string_view>

/// Offsets are signed 32-bit: a packet of 2 GiB or more is given up, and the writer's context fails.
class ioPacketFileAsciiBuffer final : public ioPacketFileBuffer {
public:
  ~ioPacketFileAsciiBuffer() override;

  void startPacket(ioWriteContext& context, bool hasReference, const ioPacketType* type) override;
  void endPacket(ioWriteContext& context, ioBufferedStreamOutput& stream) override;
  void startChunk(ioWriteContext& context) override;
  void endChunk(ioWriteContext& context) override;
  void startSubPacket(ioWriteContext& context) override;
  void endSubPacket(ioWriteContext& context) override;
  /// Waits for ever on a stream that ends before a packet starts. A packet that does not end is bad data.
  int readPacketHeader(ioReadContext& context, ioBufferedStreamInput& stream) override;
  void finishPacket(ioReadContext& context) override;
  /// Where no chunk stands at the cursor, the cursor stays.
  void nextChunk(ioReadContext& context) override;
  [[nodiscard]] bool moreInChunk() const override { return chunkHasData_; }
  void skipChunk(ioReadContext& context) override;
  /// Takes it that a sub-packet stands at the cursor.
  void startSubPacketRead(ioReadContext& context) override;
  /// Waits for ever where `subPacketEnd` finds none.
  void endSubPacketRead(ioReadContext& context) override;

  /// Where the current sub-packet's closing mark stands, or else the end of the body; -1 where a chunk that
  /// is not closed stands before the mark, which no writer does: the scan then never ends.
  [[nodiscard]] int subPacketEnd() const noexcept;

  /// Puts a number and the blank behind it.
  template <class T>
  void putNumber(T value) {
    if (!block_.makeRoom(cursor_, ioNumberText::longest + 1)) return;
    char* const end = ioNumberText::write(block_.data() + cursor_, value);
    *end = ' ';
    cursor_ = static_cast<int>(end - block_.data()) + 1;
  }
  /// Puts a character of a text or a type code, escaped where it must be.
  void putCharacter(char c);
  /// Puts a text in quotes and the blank behind it.
  void putCString(const char* text);

  /// Gets the number at the cursor, 0 where there is none, and steps over the token.
  template <class T>
  [[nodiscard]] T getNumber() noexcept {
    const T value = ioNumberText::read<T>(rest());
    skipToken();
    return value;
  }
  /// Gets a character that `putCharacter` put; 0 past the end of the body.
  [[nodiscard]] char getCharacter() noexcept;
  /// Gets a text, null where none stands here. All contexts share the memory of the text.
  [[nodiscard]] const char* getCString();

  /// For a writer's tests: lets the packet look large.
  void setCursor(int cursor) noexcept { cursor_ = cursor; }

private:
  void put(std::string_view text);
  [[nodiscard]] std::string_view rest() const noexcept {
    return {block_.data() + cursor_, static_cast<std::size_t>(end_ + 1 - cursor_)};
  }
  /// Steps on, to the place behind the body at the most.
  void step(std::size_t count) noexcept {
    cursor_ += static_cast<int>(std::min(count, static_cast<std::size_t>(end_ + 1 - cursor_)));
  }
  /// Steps behind the next blank. Nothing else ends a token.
  void skipToken() noexcept { step(rest().find(' ')), step(1); }
  [[nodiscard]] bool readBody(ioBufferedStreamInput& stream);

  ioPacketBlock block_;
  int cursor_ = 0; // reader: `end_` + 1 at the most
  int end_ = -1;   // reader: offset of the body's last character, behind which a 0 stands
  bool chunkHasData_ = false;
};
