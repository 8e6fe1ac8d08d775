#include "Base/IO/ioBufferFD.h"
#include "Base/IO/ioBufferIOStream.h"
#include "Base/IO/ioBufferTCP.h"
#include "Base/IO/ioBufferedStream.h"
#include "Base/String/qvStringFormat.h"

#include <algorithm>
#include <climits>

ioBufferedStreamOutput::ioBufferedStreamOutput() noexcept : ioBufferedStream(false) {}

void ioBufferedStreamOutput::openFile(const qvString::IString& name) {
  resetStatus();
  auto* const link = new ioBufferFD(false);
  link->setTruncate(truncate_);
  link->openDescriptor(name);
  setChain(link);
}

void ioBufferedStreamOutput::openStdout() {
  resetStatus();
  auto* const link = new ioBufferFD(false);
  link->attachDescriptor(1);
  setChain(link);
}

void ioBufferedStreamOutput::openSocket(qvTCP::Socket* socket) {
  resetStatus();
  auto* const link = new ioBufferTCP(false);
  link->attachSocket(socket);
  openChain(link, ioStreamOK);
}

void ioBufferedStreamOutput::openIOStream(qvOS::IOStream* stream) {
  resetStatus();
  auto* const link = new ioBufferIOStream(false);
  link->attachStream(stream);
  openChain(link, ioStreamOK);
}

void ioBufferedStreamOutput::close() {
  flush();
  ioBufferedStream::close();
}

void ioBufferedStreamOutput::flush() {
  if (!bufferChain_) return;
  bufferChain_->flushChain();
  promoteBufferStatus();
}

void ioBufferedStreamOutput::writeChar(char c) {
  if (!demandOpen()) return;
  bufferChain_->flushBuffer();
  promoteBufferStatus();
  if (bufferChain_->good()) bufferChain_->putByte(static_cast<unsigned char>(c));
}

void ioBufferedStreamOutput::writeData(const char* data, int count) {
  if (!demandOpen()) return;
  bufferChain_->writeBytes(data, count);
  promoteBufferStatus();
}

void ioBufferedStreamOutput::writeString(const char* text) {
  if (text) writeData(text, static_cast<int>(std::min<std::size_t>(std::strlen(text), INT_MAX)));
}

void ioBufferedStreamOutput::printf(const char* format, ...) {
  char text[1024] = {};
  va_list args;
  va_start(args, format);
  QL_vsnprintf(text, sizeof text, format, args);
  va_end(args);
  text[sizeof text - 1] = 0;
  writeString(text);
}
