#include "terminal.h"

#include "Base/OS/qvOSNativePath.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

qv::vector<qvString::IString> commandLineWords(int argc, char** argv) {
  qv::vector<qvString::IString> words;
  for (int i = 1; i < argc; ++i) words.append(qvOS::fromNativePath(argv[i]));
  return words;
}

bool errorsGoToTerminal() { return isatty(STDERR_FILENO) == 1; }

void prepareProcess() {
  std::signal(SIGXFSZ, SIG_IGN);
  int descriptor = 0;
  do descriptor = open("/dev/null", O_RDONLY);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor >= 0) close(descriptor);
}
