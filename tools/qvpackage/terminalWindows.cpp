#include "terminal.h"

#include <io.h>

bool errorsGoToTerminal() { return _isatty(2) != 0; }

void prepareProcess() {}
