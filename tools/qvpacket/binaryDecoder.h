// Decodes the body of a tagged binary packet.
#pragma once

#include "decoder.h"

class BinaryDecoder final : public Decoder {
public:
  BinaryDecoder(bool littleEndian, const Packet& packet, Visitor& visitor)
      : Decoder(packet, visitor), littleEndian_(littleEndian) {}

private:
  bool step() override;
  void showContainer(Container container);
  void showValue(const Kind& kind);
  void showArray(const Kind& kind);
  void showText(const Kind& kind);
  /// Shows everything up to the end of the chunk, sub-packet or packet.
  void showRest(const char* why);

  /// Where the chunk, sub-packet or packet ends that the next item stands in.
  [[nodiscard]] std::size_t end() const;
  [[nodiscard]] std::string_view take(std::size_t count);
  void takeTag(char expected);

  bool littleEndian_;
};
