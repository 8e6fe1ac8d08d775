// Tells what kinds of packets a file holds, and how much of each.
#pragma once

#include "commandLine.h"

void tellAboutFile(const CommandLine& line);
