// Packages and their entries, as every tool opens and names them.
#pragma once

#include "Base/String/qvStringIString.h"

#include <string>

class ioPackageFile;

/// The name of an entry as it is printed.
[[nodiscard]] std::string nameText(const qvString::IString& name);

/// The name of the entry that a word of the command line means: the word itself, or what a package makes of
/// it as a path.
[[nodiscard]] qvString::IString namedBy(const std::string& word, const ioPackageFile& package);

/// Whether `path` is a file that can be opened, not a folder or a device. What is wrong is reported; `what`
/// names the kind of file that is asked for.
[[nodiscard]] bool isFile(const std::string& path, const char* what);

/// Opens a package that exists. @return false, and reported, where that fails.
[[nodiscard]] bool openPackage(const std::string& path, ioPackageFile& package);
