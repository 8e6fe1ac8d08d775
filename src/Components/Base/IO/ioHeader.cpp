#include "Base/IO/ioHeader.h"

#include "Base/IO/ioBufferedStream.h"

#include <bit>

ioHeader::ioHeader(ioWriteMethod writeMethod) noexcept
    : valid(true), littleEndian(systemIsLittleEndian()), method(writeMethod) {}

bool ioHeader::systemIsLittleEndian() noexcept { return std::endian::native == std::endian::little; }

void ioHeader::writeHeader(ioBufferedStreamOutput& stream) const {
  stream.writeString("^@\n1\n");
  stream.printf("%d %d 1\n", littleEndian ? 1 : 0, static_cast<int>(method));
  stream.writeString("1 2 4 8 4 8 8\n@\n");
}

bool ioHeader::readHeader(ioBufferedStreamInput& stream) {
  valid = true;
  char marker[3];
  for (char& c : marker) c = stream.readChar();
  if (marker[0] != '^' || marker[1] != '@' || marker[2] != '\n') {
    valid = false;
    return false;
  }
  stream.readInt(); // version
  littleEndian = stream.readInt() != 0;
  const int number = stream.readInt();
  const bool isPortable = stream.readInt() != 0;
  int sizes[7];
  for (int& size : sizes) size = stream.readInt();
  method = static_cast<ioWriteMethod>(number >= ioWriteAscii && number <= ioWriteBinaryDebug ? number : -1);
  const bool isBinary = method == ioWriteBinary || method == ioWriteBinaryDebug;
  if (!isPortable && isBinary) valid = false;

  // What stands before the "@" belongs to later versions. There is no test for the end of the data.
  while (stream.readChar() != '@') {
  }
  stream.readChar();

  const bool sizesMatch = sizes[0] == 1 && sizes[1] == 2 && sizes[2] == 4 && sizes[3] == 8 &&
                          sizes[4] == sizes[2] && sizes[5] == sizes[3];
  if (isBinary && !sizesMatch) valid = false;
  return valid;
}

ioReadMethod ioHeader::determineReadMethod() const noexcept {
  const bool isSame = littleEndian == systemIsLittleEndian();
  switch (method) {
  case ioWriteAscii:
    return ioReadAscii;
  case ioWriteBinary:
    return isSame ? ioReadBinarySameEndian : ioReadBinarySwapped;
  case ioWriteAsciiDebug:
    return ioReadAsciiDebug;
  case ioWriteBinaryDebug:
    return isSame ? ioReadBinarySameEndianDebug : ioReadBinarySwappedDebug;
  }
  return ioReadInvalid;
}
