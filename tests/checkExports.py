#!/usr/bin/env python3
"""Compares the exported symbols of the shared library with the list under version control.

usage: checkExports.py LIBRARY [--update]"""
import pathlib
import subprocess
import sys

# Exported only where the C library lacks them.
DRAND48 = {"drand48", "erand48", "lrand48", "nrand48", "mrand48", "jrand48", "srand48", "seed48", "lcong48"}
LISTING = pathlib.Path(__file__).resolve().parent / "exports.txt"
# What the compiler shares between libraries of its own accord, for the standard library's templates.
FOREIGN = ("std::", "__gnu", "typeinfo for std::", "typeinfo name for std::", "vtable for std::", "void std::",
           "bool std::", "operator new", "operator delete")


# How another platform's compiler writes the same: types of its runtime, and names of types that it does not export.
ELSEWHERE = (("__va_list_tag*", "char*"), ("_IO_FILE", "_iobuf"), ("char16_t", "wchar_t"))


def demangled(names):
    return set(subprocess.run(["c++filt"], input="\n".join(names), capture_output=True, text=True, check=True)
               .stdout.splitlines())


def own(names):
    return {n for n in names if not n.startswith(FOREIGN) and "std::basic_string<" not in n.split("(")[0]}


def exported(library):
    text = subprocess.run(["nm", "-D", "--defined-only", library], capture_output=True, text=True, check=True).stdout
    return sorted(own(demangled(line.split(" ", 2)[2] for line in text.splitlines())))


def exported_by_dll(library):
    text = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", library], capture_output=True, text=True,
                          check=True).stdout
    names = text[text.index("[Ordinal/Name Pointer] Table"):].split("\n\n")[0].splitlines()[1:]
    return {n.replace("long long", "long") for n in own(demangled(line.split()[-1] for line in names))}


def check_dll(library):
    """Every listed name, and beside these no more than inline members of classes that are exported whole, and the type
    information that this compiler exports of its own accord."""
    found = exported_by_dll(library)
    listed = set()
    for name in LISTING.read_text().splitlines():
        for here, there in ELSEWHERE:
            name = name.replace(here, there)
        if not name.startswith("typeinfo name for "):
            listed.add(name)
    whole = tuple(n.removeprefix("vtable for ") + "::" for n in listed if n.startswith("vtable for "))
    missing = listed - found
    surplus = {n for n in found - listed if not n.startswith((*whole, "typeinfo for ")) and n not in DRAND48}
    for name in sorted(missing):
        print("not exported:", name)
    for name in sorted(surplus):
        print("exported, but not in the list:", name)
    sys.exit(1 if missing or surplus else 0)


if sys.argv[1].endswith(".dll"):
    check_dll(sys.argv[1])
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
