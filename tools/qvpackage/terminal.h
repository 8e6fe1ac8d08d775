// What the tool needs to know of the terminal.
#pragma once

/// True where standard error is a terminal that a person looks at.
[[nodiscard]] bool errorsGoToTerminal();
