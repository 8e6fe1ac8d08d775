#include "walk.h"

#include "decoder.h"
#include "input.h"
#include "packetReader.h"
#include "report.h"

#include <cstdio>

namespace {

FileHeader showHeader(Input& input, Visitor& visitor) {
  FileHeader header = readStreamHeader(input);
  const std::optional<Damage> damage = damageIn([&] { readTypeTable(input, header); });
  visitor.startFile(header);
  if (damage) throw *damage;
  return header;
}

void showPacket(const Input& input, const FileHeader& header, const Packet& packet, Visitor& visitor) {
  visitor.startPacket(packet);
  const std::optional<Damage> damage = decodeBody(header, packet, visitor);
  visitor.endPacket();
  if (damage) throw *damage;
  if (packet.isCut) throw Damage{input.offset(), input.endReason() + " inside a packet"};
}

/// Nobody reads on where standard output cannot be written.
bool isHeard() { return !std::ferror(stdout); }

void showFiles(Input& input, Visitor& visitor, std::int64_t limit) {
  bool more = true;
  while (more && isHeard()) {
    const FileHeader header = showHeader(input, visitor);
    for (bool ended = false; !ended && isHeard();) {
      if (limit-- == 0) return;
      const Packet packet = readPacket(input, header);
      showPacket(input, header, packet, visitor);
      ended = header.isEnd(packet.id);
    }
    more = anotherFileFollows(input, header);
  }
}

} // namespace

void walk(Input& input, Visitor& visitor, std::int64_t limit) {
  const std::optional<Damage> damage = damageIn([&] { showFiles(input, visitor, limit); });
  visitor.finish();
  if (damage) fail(input.name(), "at byte " + std::to_string(damage->offset) + ": " + damage->reason);
}
