// Decodes the body of a tagged text packet.
#pragma once

#include "decoder.h"

class TextDecoder final : public Decoder {
public:
  using Decoder::Decoder;

private:
  bool step() override;
  void closeAs(Container container);
  void showValue(const Kind& kind);
  void showNumber(const Kind& kind, std::string_view word);

  /// Takes a tag, which may be escaped.
  [[nodiscard]] char takeTag();
  [[nodiscard]] std::string_view takeWord();
  /// Takes what stands between quotes, without escapes.
  [[nodiscard]] std::string takeText();
  void passBlanks();
  [[noreturn]] void ended(const char* where) const;
};
