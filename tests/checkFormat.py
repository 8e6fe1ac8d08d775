#!/usr/bin/env python3
"""Fails where a source file is not formatted as .clang-format says."""
import subprocess
import sys

files = subprocess.run(["git", "ls-files", "*.h", "*.cpp"], capture_output=True, text=True, check=True).stdout.split()
sys.exit(subprocess.run(["clang-format", "--dry-run", "--Werror", *files]).returncode)
