// Reads a stream through filters. The first byte chooses the chain: two bits for each of three filters, from
// the bottom up (none, compress, checksum, encrypt), one for the transport (memory, or a slice of a file),
// and one for the way of reading (blocks, or characters, numbers and lines).
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioEncryptKey.h"
#include "Base/OS/qvOSMemoryIOStream.h"
#include "Base/String/qvStringIString.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace {

/// Keeps an expansion of a hostile stream short: a few bytes may stand for very many.
constexpr int mostPieces = 2000;

/// A file for the slices, which goes with the process.
struct ScratchFile {
  ScratchFile() = default;
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("fuzzStream" + std::to_string(std::random_device()()));
};

bool storeKey(unsigned char* key) {
  std::fill_n(key, ioEncryptKeySize, static_cast<unsigned char>('k'));
  return true;
}

void push(ioBufferedStreamInput& stream, unsigned choice) {
  for (int i = 0; i < 3; ++i, choice >>= 2) {
    if (choice % 4 == 1) stream.compress(true);
    if (choice % 4 == 2) stream.checksum(true);
    if (choice % 4 == 3) stream.encrypt(true);
  }
}

void readBlocks(ioBufferedStreamInput& stream) {
  char buffer[5000];
  for (int i = 0; i < mostPieces && stream.good(); ++i) {
    const int size = i % 2 ? 4097 : 7;
    const int got = stream.readData(buffer, size);
    if (got < 0 || got > size || (got < size && stream.good())) std::abort();
  }
}

void readText(ioBufferedStreamInput& stream) {
  char line[80];
  for (int i = 0; i < mostPieces && stream.good(); ++i) {
    (void)stream.readInt();
    (void)stream.readChar();
    stream.readLine(line, 1 + i % 80);
  }
}

void read(ioBufferedStreamInput& stream, unsigned choice) {
  push(stream, choice);
  if (choice & 128)
    readText(stream);
  else
    readBlocks(stream);
  stream.close();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  ioEncryptKeyInit(storeKey);
  const unsigned choice = data[0];
  ioBufferedStreamInput stream;
  if (choice & 64) {
    static const ScratchFile scratch;
    const qvString::IString name(scratch.path.c_str(), qvString::UTF8Encoding);
    ioBufferedStreamOutput file;
    file.openFile(name);
    file.writeData(reinterpret_cast<const char*>(data), static_cast<int>(size));
    file.close();
    stream.openFileSlice(name, 1, static_cast<std::int64_t>(size) - 1);
    read(stream, choice);
    return 0;
  }
  qvOS::MemoryIOStream memory(static_cast<const void*>(data + 1), size - 1);
  stream.openIOStream(&memory);
  read(stream, choice);
  return 0;
}
