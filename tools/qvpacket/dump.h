// Shows every packet, for people and for programs.
#pragma once

#include "commandLine.h"

void dumpPackets(const CommandLine& line);
