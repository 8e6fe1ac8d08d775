#!/usr/bin/env python3
"""Compares the exported symbols of the shared library with the list under version control.

usage: checkExports.py LIBRARY [--update]"""
import pathlib
import subprocess
import sys

LISTING = pathlib.Path(__file__).resolve().parent / "exports.txt"
# What the compiler shares between libraries of its own accord, for the standard library's templates.
FOREIGN = ("std::", "__gnu", "typeinfo for std::", "typeinfo name for std::", "vtable for std::", "void std::",
           "bool std::", "operator new", "operator delete")


def exported(library):
    text = subprocess.run(["nm", "-D", "--defined-only", "-C", library], capture_output=True, text=True, check=True).stdout
    names = {line.split(" ", 2)[2] for line in text.splitlines()}
    return sorted(n for n in names if not n.startswith(FOREIGN) and "std::basic_string<" not in n.split("(")[0])


found = exported(sys.argv[1])
if "--update" in sys.argv:
    LISTING.write_text("\n".join(found) + "\n")
    sys.exit(0)
listed = LISTING.read_text().splitlines()
for name in sorted(set(listed) - set(found)):
    print("no longer exported:", name)
for name in sorted(set(found) - set(listed)):
    print("newly exported:", name)
if set(listed) != set(found):
    print("Where this is wanted, run: python3 tests/checkExports.py build/release/lib/libBase.so --update")
    sys.exit(1)
