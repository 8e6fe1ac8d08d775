#include "printable.h"

#include <cstdio>

namespace {

/// One character, or one byte that is no part of any.
struct Piece {
  std::string_view bytes;
  char32_t character;
  bool isCharacter;
};

/// Takes the first piece off `text`, which is not empty. Strict, as RFC 3629 defines UTF-8.
Piece takePiece(std::string_view& text) {
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byteAt(0);
  const std::size_t size = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  bool isCharacter = size != 0 && first < 0xF5 && size <= text.size();
  char32_t character = size < 2 ? first : first & (0x7FU >> size);
  for (std::size_t i = 1; isCharacter && i < size; ++i) {
    isCharacter = (byteAt(i) & 0xC0) == 0x80;
    character = character << 6 | (byteAt(i) & 0x3FU);
  }
  const char32_t least = size == 4 ? 0x10000 : size == 3 ? 0x800 : 0;
  const bool isSurrogate = character >= 0xD800 && character < 0xE000;
  isCharacter = isCharacter && character >= least && character <= 0x10FFFF && !isSurrogate;
  const Piece piece{text.substr(0, isCharacter ? size : 1), isCharacter ? character : first, isCharacter};
  text.remove_prefix(piece.bytes.size());
  return piece;
}

void appendHex(std::string& out, const char* format, unsigned number) {
  char text[8];
  std::snprintf(text, sizeof text, format, number);
  out += text;
}

bool isControl(char32_t character) { return character < 0x20 || (character >= 0x7F && character < 0xA0); }

void appendPrintable(std::string& out, const Piece& piece) {
  if (piece.isCharacter && !isControl(piece.character)) {
    out += piece.bytes;
    return;
  }
  for (const char c : piece.bytes) appendHex(out, "\\x%02x", static_cast<unsigned char>(c));
}

} // namespace

std::string printable(std::string_view text) {
  std::string out;
  while (!text.empty()) appendPrintable(out, takePiece(text));
  return out;
}

std::string quoted(std::string_view text) {
  std::string out = "\"";
  while (!text.empty()) {
    const Piece piece = takePiece(text);
    if (piece.character == '"' || piece.character == '\\') out += '\\';
    appendPrintable(out, piece);
  }
  return out + '"';
}

std::string jsonString(std::string_view text) {
  std::string out = "\"";
  while (!text.empty()) {
    const Piece piece = takePiece(text);
    if (piece.character < 0x20 || !piece.isCharacter) {
      appendHex(out, "\\u%04x", static_cast<unsigned>(piece.character));
      continue;
    }
    if (piece.character == '"' || piece.character == '\\') out += '\\';
    out += piece.bytes;
  }
  return out + '"';
}
