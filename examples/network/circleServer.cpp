// Waits for one client, takes its circles, and sends them back twice as large. Prints the port on which it
// listens, so that the two programs can be tied together: circleServer | circleClient
#include "Base/TCP/qvTCPServer.h"
#include "circles.h"

#include <cstdio>

int main() {
  const auto failed = [](const char* why) { return std::fprintf(stderr, "circleServer: %s\n", why), 1; };
  qvTCP::Server server;         // The system chooses the port.
  server.setLoopbackOnly(true); // Only programs of this machine may call.
  if (const qvUtil::Error error = server.listen()) return failed(error.message());
  std::printf("%d\n", server.getPort());
  std::fflush(stdout);

  qvTCP::Socket* accepted = nullptr;
  if (const qvUtil::Error error = server.accept(&accepted, "1min")) return failed(error.message());
  if (!accepted) return failed("nobody called within a minute");
  const std::unique_ptr<qvTCP::Socket> socket(accepted);
  Drawing drawing;
  if (!receive(*socket, drawing)) return failed("no drawing came");
  for (Circle& circle : drawing) circle.radius *= 2;
  return send(*socket, drawing) ? 0 : failed("the answer could not be sent");
}
