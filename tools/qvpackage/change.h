// The commands that write a package. Each works on a copy that takes the old package's place only when it is
// whole.
#pragma once

#include "arguments.h"

void createPackage(const Arguments& arguments);
void addToPackage(const Arguments& arguments);
void removeFromPackage(const Arguments& arguments);
void compactPackage(const Arguments& arguments);
