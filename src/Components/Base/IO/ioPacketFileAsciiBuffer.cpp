#include "Base/IO/ioPacketFileAsciiBuffer.h"

#include "Base/IO/ioBuffer.h"
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioWriteContext.h"

#include <chrono>
#include <string>
#include <thread>

namespace {

constexpr std::string_view packetMark = "{ ";
constexpr std::string_view packetEndMark = "}\n";
constexpr std::string_view chunkMark = "\n  [ ";
constexpr std::string_view chunkEndMark = "] ";
constexpr std::string_view subPacketMark = "\n  < ";
constexpr std::string_view subPacketEndMark = "> ";

/// Whether a character of a text may be taken for a part of the packet.
constexpr bool mustBeEscaped(char c) noexcept {
  switch (c) {
  case '"':
  case '<':
  case '>':
  case '[':
  case '\\':
  case ']':
  case '{':
  case '}':
    return true;
  default:
    return false;
  }
}

[[noreturn]] void waitForEver() {
  for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

/// Whether the backslashes at the end of `text` escape what comes behind them.
bool endsInEscape(std::string_view text) {
  const std::size_t before = text.find_last_not_of('\\');
  return (text.size() - (before == text.npos ? 0 : before + 1)) % 2 != 0;
}

} // namespace

ioPacketFileAsciiBuffer::~ioPacketFileAsciiBuffer() = default;

// ---- writing ----

void ioPacketFileAsciiBuffer::put(std::string_view text) {
  if (!block_.makeRoom(cursor_, text.size())) return;
  std::memcpy(block_.data() + cursor_, text.data(), text.size());
  cursor_ += static_cast<int>(text.size());
}

void ioPacketFileAsciiBuffer::putCharacter(char c) {
  const char both[] = {'\\', c};
  put(mustBeEscaped(c) ? std::string_view(both, 2) : std::string_view(&c, 1));
}

void ioPacketFileAsciiBuffer::putCString(const char* text) {
  put("\"");
  for (const char* const end = text + std::strlen(text); text != end;) {
    const char* const special = std::find_if(text, end, mustBeEscaped);
    put({text, special});
    text = special;
    if (text != end) putCharacter(*text++);
  }
  put("\" ");
}

void ioPacketFileAsciiBuffer::startPacket(ioWriteContext&, bool hasReference, const ioPacketType* type) {
  block_.startPacket();
  cursor_ = 0;
  put(packetMark);
  putNumber(type ? type->getId() : -1);
  putNumber(static_cast<int>(hasReference));
}

void ioPacketFileAsciiBuffer::endPacket(ioWriteContext& context, ioBufferedStreamOutput& stream) {
  put(packetEndMark);
  if (block_.tooLarge())
    context.misused();
  else if (packetValid())
    stream.writeData(block_.data(), cursor_);
}

void ioPacketFileAsciiBuffer::startChunk(ioWriteContext&) { put(chunkMark); }
void ioPacketFileAsciiBuffer::endChunk(ioWriteContext&) { put(chunkEndMark); }
void ioPacketFileAsciiBuffer::startSubPacket(ioWriteContext&) { put(subPacketMark); }
void ioPacketFileAsciiBuffer::endSubPacket(ioWriteContext&) { put(subPacketEndMark); }

// ---- reading a packet ----

int ioPacketFileAsciiBuffer::readPacketHeader(ioReadContext& context, ioBufferedStreamInput& stream) {
  setPacketType(nullptr);
  char c;
  do c = stream.readChar(); // 0 for ever, at the end of the stream
  while (c != packetMark.front());
  if (!readBody(stream)) return 0;
  step(rest().find_first_not_of(" \n"));
  const int typeId = getNumber<int>();
  const int referenceMode = getNumber<int>();
  setPacketType(context.lookupType(typeId));
  return referenceMode;
}

/// Reads what stands before the closing mark, escapes and all. False where the stream ends before, or the
/// body is too large.
bool ioPacketFileAsciiBuffer::readBody(ioBufferedStreamInput& stream) {
  block_.startPacket();
  cursor_ = 0;
  end_ = -1;
  chunkHasData_ = false;
  int size = 0;
  bool ended = false;
  while (!ended && stream.good() && stream.holdMore()) {
    ioBuffer& link = *stream.bufferChain_;
    const auto* const held = reinterpret_cast<const char*>(link.heldData());
    const std::string_view text(held, static_cast<std::size_t>(link.heldBytes()));
    const std::size_t mark = text.find(packetEndMark.front());
    const std::size_t taken = mark == text.npos ? text.size() : mark + 1;
    if (!block_.makeRoom(size, taken)) return false;
    std::memcpy(block_.data() + size, held, taken);
    size += static_cast<int>(taken);
    link.dropHeld(static_cast<int>(taken));
    ended = mark != text.npos && !endsInEscape({block_.data(), static_cast<std::size_t>(size) - 1});
  }
  if (ended) --size; // the mark
  block_.data()[size] = '\0';
  end_ = size - 1;
  return ended;
}

void ioPacketFileAsciiBuffer::finishPacket(ioReadContext&) { cursor_ = end_ + 1; }

// ---- reading values ----

char ioPacketFileAsciiBuffer::getCharacter() noexcept {
  if (rest().starts_with('\\')) step(1);
  const char c = rest().empty() ? '\0' : rest().front();
  step(1);
  return c;
}

const char* ioPacketFileAsciiBuffer::getCString() {
  static std::string text;
  text.clear();
  step(rest().find('"')), step(1);
  while (!rest().empty() && rest().front() != '"') {
    const std::size_t plain = std::min(rest().find_first_of("\"\\"), rest().size());
    text += rest().substr(0, plain);
    step(plain);
    if (rest().starts_with('\\')) text += getCharacter();
  }
  step(1);
  if (rest().empty()) return nullptr;
  step(1);
  return text.c_str();
}

// ---- chunks and sub-packets ----

void ioPacketFileAsciiBuffer::nextChunk(ioReadContext&) {
  chunkHasData_ = false;
  if (!rest().starts_with(chunkMark)) return;
  step(chunkMark.size());
  chunkHasData_ = !rest().starts_with(chunkEndMark.front());
}

void ioPacketFileAsciiBuffer::skipChunk(ioReadContext&) {
  chunkHasData_ = false;
  int depth = 0;
  for (bool inside = true; inside && !rest().empty();) {
    const char c = rest().front();
    if (c == '>' && depth == 0) return;
    if (c == '<') ++depth;
    if (c == '>') --depth;
    inside = c != ']' || depth > 0;
    step(c == '\\' || c == ']' ? 2 : 1);
  }
}

void ioPacketFileAsciiBuffer::startSubPacketRead(ioReadContext&) { step(subPacketMark.size()); }

int ioPacketFileAsciiBuffer::subPacketEnd() const noexcept {
  int subPackets = 0, chunks = 0;
  for (int at = cursor_; at <= end_; ++at) {
    switch (block_.data()[at]) {
    case '<':
      ++subPackets;
      break;
    case '>':
      if (subPackets == 0) return chunks == 0 ? at : -1;
      --subPackets;
      break;
    case '[':
      ++chunks;
      break;
    case ']':
      chunks = std::max(chunks - 1, 0);
      break;
    case '\\':
      ++at;
      break;
    default:
      break;
    }
  }
  return end_ + 1;
}

void ioPacketFileAsciiBuffer::endSubPacketRead(ioReadContext&) {
  const int end = subPacketEnd();
  if (end < 0) waitForEver();
  cursor_ = end;
  step(subPacketEndMark.size());
}
