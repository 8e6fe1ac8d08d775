// Chains over memory for the tests of links and streams.
#pragma once

#include "Base/IO/ioBufferIOStream.h"
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioEncryptKey.h"
#include "Base/OS/qvOSMemoryIOStream.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace ioLinkTest {

inline std::string bytesOf(const qvOS::MemoryIOStream& memory) {
  return {static_cast<const char*>(memory.data()), memory.size()};
}

inline int readSome(ioBuffer& link, char* to, int size) { return link.readBytes(to, size); }
inline int readSome(ioBufferedStreamInput& stream, char* to, int size) { return stream.readData(to, size); }
inline void writeSome(ioBuffer& link, const char* from, int size) { link.writeBytes(from, size); }
inline void writeSome(ioBufferedStreamOutput& stream, const char* from, int size) {
  stream.writeData(from, size);
}

/// What comes from a link or a stream until its status changes, in pieces of `piece` bytes.
template <class Source>
std::string readAll(Source& source, int piece = 1000) {
  std::string out, buffer(static_cast<std::size_t>(piece), '\0');
  while (source.good())
    out.append(buffer, 0, static_cast<std::size_t>(readSome(source, buffer.data(), piece)));
  return out;
}

/// Writes to a link or a stream in pieces of `piece` bytes.
template <class Target>
void writeAll(Target& target, const std::string& data, std::size_t piece) {
  for (std::size_t i = 0; i < data.size(); i += piece)
    writeSome(target, data.data() + i, static_cast<int>(std::min(data.size() - i, piece)));
}

/// Puts `link` on top of memory.
inline void attach(ioBuffer& link, qvOS::MemoryIOStream& memory) {
  auto* const transport = new ioBufferIOStream(link.forReading());
  transport->attachStream(&memory);
  link.setNext(transport);
}

/// A link of type `Link` over bytes in memory.
template <class Link>
struct Reading {
  explicit Reading(std::string stream)
      : bytes(std::move(stream)), memory(bytes.data(), bytes.size()), link(true) {
    attach(link, memory);
  }
  std::string all(int piece = 1000) { return readAll(link, piece); }

  std::string bytes;
  qvOS::MemoryIOStream memory;
  Link link;
};

/// What a link of type `Link` makes of `data`, written in pieces of `piece` bytes.
template <class Link>
std::string written(const std::string& data, std::size_t piece = 1000) {
  qvOS::MemoryIOStream memory;
  Link link(false);
  attach(link, memory);
  writeAll(link, data, piece);
  link.flushChain();
  link.closeLink();
  return bytesOf(memory);
}

/// Bytes of `letters` different values from `first` on, some of them repeating what came before.
inline std::string mixed(qvTest::Random& random, std::size_t size, int letters, char first = 0) {
  std::string data;
  while (data.size() < size) {
    const std::size_t length = 1 + random.below(30);
    if (data.size() > 100 && random.oneIn(2))
      data += data.substr(random.below(data.size() - 50), length);
    else
      for (std::size_t i = 0; i < length; ++i)
        data += static_cast<char>(first + random.between(0, letters - 1));
  }
  data.resize(size);
  return data;
}

/// One letter for each filter, in the order in which they are pushed.
inline void push(ioBufferedStream& stream, const std::string& filters) {
  for (const char filter : filters) {
    if (filter == 'c') stream.compress(true);
    if (filter == 's') stream.checksum(true);
    if (filter == 'e') stream.encrypt(true);
  }
}

/// A host with a key, which is the byte `byte` 32 times.
class WithKey : public testing::Test {
protected:
  WithKey() {
    ioEncryptKeyInit([](unsigned char* key) { return std::fill_n(key, ioEncryptKeySize, byte), true; });
  }
  ~WithKey() override { ioEncryptKeyInit(nullptr), byte = 1; }

  static inline unsigned char byte = 1;
};

} // namespace ioLinkTest
