#include "describe.h"

#include "printable.h"

std::string describe(const FileHeader& header) {
  const std::string order = header.littleEndian ? "little-endian" : "big-endian";
  const std::string form = header.isText() ? "text" : "binary";
  return order + ", " + form + (header.isTagged() ? " with type tags" : "") + " (method " +
         std::to_string(header.method) + ")";
}

std::string typeText(const FileHeader& header, int id) {
  const std::string name = printable(header.nameOf(id));
  return name.empty() ? "type " + std::to_string(id) : name;
}
