#include "terminal.h"

#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

// The words of `main` have lost what the system's code page does not hold.
qv::vector<qvString::IString> commandLineWords(int, char**) {
  qv::vector<qvString::IString> words;
  int count = 0;
  if (wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
    for (int i = 1; i < count; ++i) words.append(qvString::IString(wide[i]));
    LocalFree(wide);
  }
  return words;
}

bool errorsGoToTerminal() {
  const HANDLE errors = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(errors, &mode) && SetConsoleMode(errors, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void prepareProcess() {
  static const UINT codePage = GetConsoleOutputCP();
  if (codePage != 0 && SetConsoleOutputCP(CP_UTF8)) std::atexit([] { SetConsoleOutputCP(codePage); });
  int descriptor = 0;
  do descriptor = _open("NUL", _O_RDONLY);
  while (descriptor >= 0 && descriptor <= 2);
  if (descriptor >= 0) _close(descriptor);
}
