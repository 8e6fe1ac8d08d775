#include "references.h"

void ReferenceVisitor::startPacket(const Packet& packet) {
  beginsPacket_ = packet.mode == 1;
  if (header_.isTagged() && packet.tooLarge) hiddenBytes_ += packet.size;
  meet(packet);
}

void ReferenceVisitor::value(const char* kind, const Scalar& scalar) {
  const auto* const number = std::get_if<std::uint64_t>(&scalar);
  const bool isReference = number && *number != 0 && std::string_view(kind) == "Reference";
  if (isReference) beginsPacket_ ? define(*number) : refer(*number);
  beginsPacket_ = false;
}

void ReferenceVisitor::bytes(std::string_view bytes, std::int64_t, const char*) {
  beginsPacket_ = false;
  if (header_.isTagged()) hiddenBytes_ += static_cast<std::int64_t>(bytes.size());
}
