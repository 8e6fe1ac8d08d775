#include "Base/IO/ioBufferFileSubset.h"
#include "Base/IO/ioBufferIOStream.h"
#include "Base/IO/ioBufferTCP.h"
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioPackageFile.h"

#include <algorithm>
#include <climits>

namespace {

/// What `readInt` keeps of a number.
constexpr int longestNumber = 39;

bool isBlank(char c) { return c == ' ' || c == '\n' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// The magnitude with one more digit, up to the greatest that any int has.
std::int64_t withDigit(std::int64_t magnitude, char digit) {
  const std::int64_t longer = magnitude * 10 + (digit - '0');
  return longer > INT_MAX ? std::int64_t{INT_MAX} + 1 : longer;
}

} // namespace

ioBufferedStreamInput::ioBufferedStreamInput() noexcept : ioBufferedStream(true) {}

void ioBufferedStreamInput::openFile(const qvString::IString& name) {
  resetStatus();
  auto* const link = new ioBufferFD(true);
  link->openDescriptor(name);
  openChain(link, ioStreamOK);
}

void ioBufferedStreamInput::openStdin() {
  resetStatus();
  auto* const link = new ioBufferFD(true);
  link->attachDescriptor(0);
  openChain(link, ioStreamOK);
}

void ioBufferedStreamInput::openSocket(qvTCP::Socket* socket) {
  resetStatus();
  auto* const link = new ioBufferTCP(true);
  link->attachSocket(socket);
  openChain(link, ioStreamOK);
}

void ioBufferedStreamInput::openIOStream(qvOS::IOStream* stream) {
  resetStatus();
  auto* const link = new ioBufferIOStream(true);
  link->attachStream(stream);
  openChain(link, ioStreamOK);
}

void ioBufferedStreamInput::openFileSlice(const qvString::IString& name, std::int64_t start,
                                          std::int64_t size) {
  auto* const link = new ioBufferFileSubset;
  link->openSlice(name, start, size);
  openChain(link, ioStreamAtEnd);
}

bool ioBufferedStreamInput::holdMore() {
  if (!demandOpen()) return false;
  if (bufferChain_->heldBytes() > 0) return true;
  bufferChain_->fillBuffer();
  promoteBufferStatus();
  return good() && bufferChain_->heldBytes() > 0;
}

char ioBufferedStreamInput::readChar() {
  if (!holdMore()) return 0;
  const auto c = static_cast<char>(*bufferChain_->heldData());
  bufferChain_->dropHeld(1);
  return c;
}

int ioBufferedStreamInput::readInt() {
  char c = readChar();
  while (isBlank(c)) c = readChar();
  int length = 0;
  const bool isNegative = c == '-';
  if (isNegative) {
    c = readChar();
    ++length;
  }
  std::int64_t magnitude = 0;
  for (; isDigit(c) && length < longestNumber; ++length) {
    magnitude = withDigit(magnitude, c);
    c = readChar();
  }
  if (isNegative) return static_cast<int>(-magnitude);
  return static_cast<int>(magnitude > INT_MAX ? INT_MAX : magnitude);
}

void ioBufferedStreamInput::readLine(char* buffer, int size) {
  if (!buffer) return;
  const int most = std::max(size, 1) - 1;
  int length = 0;
  while (good() && length < most) {
    buffer[length] = readChar();
    if (buffer[length++] == '\n') break;
  }
  buffer[length] = 0;
}

int ioBufferedStreamInput::readData(char* buffer, int count) {
  if (!demandOpen()) return 0;
  const int got = bufferChain_->readBytes(buffer, count);
  promoteBufferStatus();
  return got;
}

void ioBufferedStreamInput::openPackageFileEntry(const ioPackageFileEntry* entry) {
  status_ = ioStreamOK;
  if (!entry) {
    status_ = ioStreamFailed;
  } else if (entry->getPackageName().isEmpty()) {
    status_ = ioStreamOpenFailed;
  } else {
    openFileSlice(entry->getPackageName(), entry->getOffset(), entry->getSize());
  }
}
