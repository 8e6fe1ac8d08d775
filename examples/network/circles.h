// Circles, and how a drawing of them crosses a connection: as a packet file, the form in which it would also
// be stored.
#pragma once

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioWriteContext.h"
#include "Base/TCP/qvTCPSocket.h"

#include <memory>
#include <vector>

struct Circle {
  double x = 0, y = 0, radius = 0;
  bool operator==(const Circle&) const = default;
};
using Drawing = std::vector<Circle>;

/// Sends a drawing and ends this side's sending: the other side reads on until it has a full buffer or the
/// end. False where the connection broke.
inline bool send(qvTCP::Socket& socket, const Drawing& drawing) {
  struct Registry : ioPacketRegistry {
    Registry() : ioPacketRegistry(false) {}
    void registerAllTypes() override { supportedType(new ioPacketType("example.circle")); }
  } registry;
  ioBufferedStreamOutput stream;
  stream.openSocket(&socket);
  const std::unique_ptr<ioWriteContext> out(ioWriteContextAlloc(stream, ioWriteBinary, &registry));
  out->startFile();
  for (const Circle& circle : drawing) {
    out->startPacket("example.circle", nullptr); // Nothing refers to a circle.
    out->writeDouble(circle.x);
    out->writeDouble(circle.y);
    out->writeDouble(circle.radius);
    out->endPacket();
  }
  out->endFile();
  stream.close();
  return out->good() && stream.good() && !socket.close(2);
}

/// Receives a drawing. False where the connection broke, or where something else came.
inline bool receive(qvTCP::Socket& socket, Drawing& drawing) {
  struct Reader : ioClientReadContext {
    Reader(ioReadContext* context, Drawing& target) : ioClientReadContext(context), drawing(target) {}
    Drawing& drawing;
  };
  struct Registry : ioPacketRegistry {
    Registry() : ioPacketRegistry(true) {}
    static void readCircle(ioClientReadContext& client) {
      ioReadContext& in = client.getContext();
      Circle& circle = static_cast<Reader&>(client).drawing.emplace_back();
      circle.x = in.fetchDouble();
      circle.y = in.fetchDouble();
      circle.radius = in.fetchDouble();
    }
    void registerAllTypes() override {
      supportedType(new ioReadPacketByFunction("example.circle", readCircle));
    }
  } registry;
  ioBufferedStreamInput stream;
  stream.openSocket(&socket);
  const std::unique_ptr<ioReadContext> in(ioReadContextAlloc(stream, &registry));
  if (!in) return false;
  Reader reader(in.get(), drawing);
  return in->readFile(reader) == ioOK;
}
