// The commands that write a package. Each works on a copy that takes the old package's place only when it is
// whole.
#pragma once

#include "commandLine.h"

void createPackage(const CommandLine& line);
void addToPackage(const CommandLine& line);
void removeFromPackage(const CommandLine& line);
void compactPackage(const CommandLine& line);
