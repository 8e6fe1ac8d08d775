// The commands that only read a package.
#pragma once

#include "commandLine.h"

void listPackage(const CommandLine& line);
void extractPackage(const CommandLine& line);
void verifyPackage(const CommandLine& line);
