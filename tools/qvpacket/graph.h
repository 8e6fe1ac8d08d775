// Draws the objects of a tagged file and their references.
#pragma once

#include "commandLine.h"

void drawGraph(const CommandLine& line);
