// What the tools ask of the terminal and of the process it runs in.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringIString.h"

/// The words of the command line behind the program's name, read as paths.
[[nodiscard]] qv::vector<qvString::IString> commandLineWords(int argc, char** argv);

/// Whether standard error is a terminal that understands the codes which move about on a line.
[[nodiscard]] bool errorsGoToTerminal();

/// Makes a write past a limit on file sizes a failure of that write and not the end of the process, and sees
/// to it that no file takes the place of a standard stream that was closed, and that a terminal reads UTF-8.
void prepareProcess();
