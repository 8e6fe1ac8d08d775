// Sends a thousand circles to the server whose port stands on the standard input, and checks that they come
// back twice as large.
#include "Base/TCP/qvTCPAddress.h"
#include "Base/TCP/qvTCPSocket.h"
#include "circles.h"

#include <cstdio>

int main() {
  const auto failed = [](const char* why) { return std::fprintf(stderr, "circleClient: %s\n", why), 1; };
  int port = 0;
  if (std::scanf("%d", &port) != 1) return failed("there is no server");
  qvTCP::ClientSocket socket(qvTCP::Address(qvTCP::Address::localhost, port));
  if (const qvUtil::Error error = socket.connect()) return failed(error.message());

  Drawing drawing(1000), expected, answer;
  for (int i = 0; i < 1000; ++i) drawing[i] = {0.5 * i, 0.25 * i, 1.0 + i};
  if (!send(socket, drawing)) return failed("the drawing could not be sent");
  if (!receive(socket, answer)) return failed("no answer came");
  for (const Circle& circle : drawing) expected.push_back({circle.x, circle.y, 2 * circle.radius});
  if (answer != expected) return failed("the answer is wrong");
  std::printf("%zu circles went to the server and came back twice as large\n", answer.size());
  return 0;
}
