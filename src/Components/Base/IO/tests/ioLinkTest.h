// Chains over memory for the tests of links.
#pragma once

#include "Base/IO/ioBufferIOStream.h"
#include "Base/OS/qvOSMemoryIOStream.h"
#include "testing/qvTestSeed.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

namespace ioLinkTest {

/// A link of type `Link` over bytes in memory.
template <class Link>
struct Reading {
  explicit Reading(std::string stream)
      : bytes(std::move(stream)), memory(bytes.data(), bytes.size()), link(true) {
    auto* const transport = new ioBufferIOStream(true);
    transport->attachStream(&memory);
    link.setNext(transport);
  }

  /// What comes until the status changes, in pieces of `piece` bytes.
  std::string all(int piece = 1000) {
    std::string out;
    std::string buffer(static_cast<std::size_t>(piece), '\0');
    while (link.good()) out.append(buffer, 0, static_cast<std::size_t>(link.readBytes(buffer.data(), piece)));
    return out;
  }

  std::string bytes;
  qvOS::MemoryIOStream memory;
  Link link;
};

/// What a link of type `Link` makes of `data`, written in pieces of `piece` bytes.
template <class Link>
std::string written(const std::string& data, int piece = 1000) {
  qvOS::MemoryIOStream memory;
  {
    Link link(false);
    auto* const transport = new ioBufferIOStream(false);
    transport->attachStream(&memory);
    link.setNext(transport);
    for (std::size_t i = 0; i < data.size(); i += static_cast<std::size_t>(piece))
      link.writeBytes(data.data() + i,
                      static_cast<int>(std::min(data.size() - i, static_cast<std::size_t>(piece))));
    link.flushChain();
    link.closeLink();
  }
  return {static_cast<const char*>(memory.data()), memory.size()};
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
        data +=
            static_cast<char>(first + static_cast<char>(random.below(static_cast<std::uint64_t>(letters))));
  }
  data.resize(size);
  return data;
}

} // namespace ioLinkTest
