// The frame of a tool's `main`.
#pragma once

#include "commandLine.h"

struct Tool {
  const char* name;
  const char* usage;
  std::span<const Command> commands; ///< Besides "help", which every tool has.
  std::span<const Option> options;
  /// What is still wrong with a command line that is in order so far, empty where nothing is. May be null.
  std::string (*problemOf)(const CommandLine& line);
  void (*run)(const CommandLine& line);
};

/// Runs the tool with the words of `main`. @return the exit status: 0 done, 1 something failed, 2 wrong
/// usage.
[[nodiscard]] int runTool(const Tool& tool, int argc, char** argv);
