// What the tool asks of the terminal and of the process it runs in.
#pragma once

/// Whether standard error is a terminal.
[[nodiscard]] bool errorsGoToTerminal();

/// Makes a write past a limit on file sizes a failure of that write and not the end of the process, and sees
/// to it that no file takes the place of a standard stream that was closed.
void prepareProcess();
