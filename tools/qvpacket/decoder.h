// Tells the items of a packet's body apart.
#pragma once

#include "packetFile.h"

/// Shows a visitor what is in the body. @return the damage that ended it; none for a packet that is cut,
/// which is shown as far as it goes.
[[nodiscard]] std::optional<Damage> decodeBody(const FileHeader& header, const Packet& packet,
                                               Visitor& visitor);

/// What both decoders share: the place in the body, and the chunks and sub-packets that are open there.
class Decoder {
public:
  Decoder(const Packet& packet, Visitor& visitor) : packet_(packet), body_(packet.body), visitor_(visitor) {}
  virtual ~Decoder() = default;
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  [[nodiscard]] std::optional<Damage> decode();

protected:
  struct Level {
    Container container;
    std::size_t end; ///< In a binary body, where it ends.
  };

  /// Thrown where a cut packet has no more bytes.
  struct Cut {};

  /// Shows one item, or closes what ends here. @return false where the body ends.
  virtual bool step() = 0;

  [[noreturn]] void damaged(std::size_t at, const std::string& reason) const {
    throw Damage{offsetOf(at), reason};
  }
  [[nodiscard]] std::int64_t offsetOf(std::size_t at) const {
    return packet_.bodyOffset + static_cast<std::int64_t>(at);
  }
  void open(Container container, std::size_t end);
  void close();

  const Packet& packet_;
  const std::string_view body_;
  Visitor& visitor_;
  std::vector<Level> levels_;
  std::size_t at_ = 0;
};

/// A type tag and what it stands for.
struct Kind {
  enum class Form { boolean, integer, natural, real, text, reference, array };
  char tag;
  const char* name;
  Form form;
  int width; ///< Bytes of a number.
};

/// The kind of a tag; null for a byte that is none.
[[nodiscard]] const Kind* kindOf(char tag);

/// What a tag above 127 stands for: the library takes it for any, so nothing is known of what follows.
constexpr const char* unknownKind = "Unknown";
[[nodiscard]] constexpr bool isUnknown(char tag) { return static_cast<unsigned char>(tag) > 127; }

/// How a byte is named in reports.
[[nodiscard]] std::string byteText(char byte);
