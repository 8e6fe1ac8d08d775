// Which class writes or reads which method: the one place where an encoding is plugged in. Any other method
// has no writer or reader, and the caller gets null.
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioReadContextAscii.h"
#include "Base/IO/ioReadContextBinary.h"
#include "Base/IO/ioReadContextDebug.h"
#include "Base/IO/ioWriteContextAscii.h"
#include "Base/IO/ioWriteContextBinary.h"
#include "Base/IO/ioWriteContextDebug.h"

namespace {

std::unique_ptr<ioWriteContext> makeWriter(ioBufferedStreamOutput& stream, ioWriteMethod method) {
  switch (method) {
  case ioWriteAscii:
    return std::make_unique<ioWriteContextAscii>(stream);
  case ioWriteAsciiDebug:
    return std::make_unique<ioWriteContextDebug<ioWriteContextAscii>>(stream);
  case ioWriteBinary:
    return std::make_unique<ioWriteContextBinary>(stream);
  case ioWriteBinaryDebug:
    return std::make_unique<ioWriteContextDebug<ioWriteContextBinary>>(stream);
  default:
    return nullptr;
  }
}

template <class Context>
std::unique_ptr<ioReadContext> reader(ioBufferedStreamInput& stream, ioReadMethod method) {
  return std::make_unique<Context>(stream, method);
}

std::unique_ptr<ioReadContext> makeReader(ioBufferedStreamInput& stream, ioReadMethod method) {
  switch (method) {
  case ioReadAscii:
    return reader<ioReadContextAscii>(stream, method);
  case ioReadAsciiDebug:
    return reader<ioReadContextDebug<ioReadContextAscii>>(stream, method);
  case ioReadBinarySameEndian:
    return reader<ioReadContextBinarySameEndian>(stream, method);
  case ioReadBinarySwapped:
    return reader<ioReadContextBinarySwapped>(stream, method);
  case ioReadBinarySameEndianDebug:
    return reader<ioReadContextDebug<ioReadContextBinarySameEndian>>(stream, method);
  case ioReadBinarySwappedDebug:
    return reader<ioReadContextDebug<ioReadContextBinarySwapped>>(stream, method);
  default:
    return nullptr;
  }
}

} // namespace

ioWriteContext* ioWriteContextAlloc(ioBufferedStreamOutput& stream, ioWriteMethod method,
                                    ioPacketRegistry* registry) {
  std::unique_ptr<ioWriteContext> context = makeWriter(stream, method);
  if (context && registry) context->associateRegistry(registry);
  return context.release();
}

ioReadContext* ioReadContextAlloc(ioBufferedStreamInput& stream, ioPacketRegistry* registry) {
  ioHeader header;
  if (!header.readHeader(stream)) return nullptr;
  std::unique_ptr<ioReadContext> context = makeReader(stream, header.determineReadMethod());
  if (context && registry) context->associateRegistry(registry);
  return context.release();
}
