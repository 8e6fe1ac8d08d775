// What there is in a packet file, as the commands meet it from front to back.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Where and why a file cannot be read any further.
struct Damage {
  std::int64_t offset;
  std::string reason;
};

/// @return the damage that stopped `work`, if any.
template <class Work>
[[nodiscard]] std::optional<Damage> damageIn(Work work) {
  try {
    work();
  } catch (const Damage& damage) {
    return damage;
  }
  return std::nullopt;
}

struct FileHeader {
  bool littleEndian = false;
  int method = 0; ///< 0 text, 1 binary, 2 text with type tags, 3 binary with type tags.
  std::vector<std::string> types;

  [[nodiscard]] bool isText() const { return method == 0 || method == 2; }
  [[nodiscard]] bool isTagged() const { return method >= 2; }
  /// A file may leave out the table, which then names only the two types that have the same numbers always.
  [[nodiscard]] bool hasType(int id) const {
    return id >= 0 && (types.empty() || id < static_cast<int>(types.size()));
  }
  [[nodiscard]] std::string nameOf(int id) const {
    if (!types.empty()) return types[static_cast<std::size_t>(id)];
    return id == 0 ? "packetFile_string" : id == 1 ? "packetFile_EOF" : "";
  }
  [[nodiscard]] bool isEnd(int id) const { return nameOf(id) == "packetFile_EOF"; }
};

struct Packet {
  std::int64_t offset = 0;
  int id = 0;
  int mode = 0;
  std::int64_t size = 0; ///< Of the body; in text, of what stands between the mode and the closing mark.
  std::int64_t bodyOffset = 0;
  std::string body;      ///< Empty where it is too large.
  bool isCut = false;    ///< The data ended before the body did.
  bool tooLarge = false; ///< The body is more than the program holds, and was passed over.
};

enum class Container { chunk, subPacket };

/// A value; a text, or what stands where a number should, as it is.
using Scalar = std::variant<bool, std::int64_t, std::uint64_t, float, double, std::string_view>;

/// What is told about a file, in its order. Each `open` has its `close`, also in a damaged packet.
class Visitor {
public:
  virtual ~Visitor() = default;
  virtual void startFile(const FileHeader&) {}
  /// There is no more, or what follows is damaged.
  virtual void finish() {}
  virtual void startPacket(const Packet&) {}
  virtual void endPacket() {}
  virtual void open(Container) {}
  virtual void close() {}
  virtual void value(const char* /*kind*/, const Scalar&) {}
  /// The tag of an array. Its elements follow as values where they have tags of their own.
  virtual void array(const char* /*kind*/) {}
  /// Bytes that cannot be told apart, and why; no reason in a file without tags.
  virtual void bytes(std::string_view, std::int64_t /*offset*/, const char* /*why*/) {}
};
