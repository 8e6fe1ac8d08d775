// The commands that only read a package.
#pragma once

#include "arguments.h"

void listPackage(const Arguments& arguments);
void extractPackage(const Arguments& arguments);
void verifyPackage(const Arguments& arguments);
