#!/usr/bin/env python3
"""Fails where an include breaks the order of the levels, where a system header stands outside Platform/, or where any
source of the project asks which platform it is on: only Platform/ and qvBase.h may.

A line that must break a rule says why in a comment that begins with "layer waiver:"."""
import pathlib
import re
import sys

LEVELS = {"Platform": 1, "Containers": 2, "String": 2, "Utility": 2, "Callback": 3, "Linear": 3, "OS": 3,
          "Thread": 4, "TCP": 4, "IO": 5, "Undo": 5, "Plugin": 5}

# Files that stand on another level than their folder.
FILES = {
    "Utility": [(re.compile(r"qvUtil(ThreadPool|Threaded|Parallel|Progress|Ordering)"), 3)],
    "String": [(re.compile(r"qvStringTable"), 4)],
}

# Folders of one level that may know each other, in this direction.
NEIGHBOURS = {("Utility", "String"), ("Utility", "Containers"), ("String", "Containers"), ("String", "Utility"),
              ("Containers", "Utility"), ("OS", "Callback")}

SYSTEM = re.compile(r"^(unistd|fcntl|poll|pthread|dirent|dlfcn|netdb|pwd|grp|spawn|termios|windows|winsock2|ws2tcpip|io|"
                    r"direct|process|link|sched|semaphore|signal)\.h$|^(sys|arpa|netinet|linux|net)/")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
PLATFORM_TEST = re.compile(r"^\s*#\s*(if|elif).*\b(_WIN32|_WIN64|WIN32|__CYGWIN__|__MINGW32__|__MINGW64__|_MSC_VER|"
                           r"__linux|__linux__|__gnu_linux__|__unix|__unix__|__APPLE__|__FreeBSD__)\b")
SOURCES = ("bench", "examples", "fuzz", "src", "testing", "tests", "tools")

tree = pathlib.Path(__file__).resolve().parent.parent
root = tree / "src/Components/Base"
problems = []


def level(folder, name):
    for pattern, value in FILES.get(folder, []):
        if pattern.match(name):
            return value
    return LEVELS[folder]


def check_include(path, number, folder, is_test, quote, target):
    where = f"{path.relative_to(root)}:{number}"
    if quote == "<" or not target.startswith("Base/"):
        if folder != "Platform" and not is_test and SYSTEM.match(target):
            problems.append(f"{where}: system header <{target}> outside Platform/")
        return
    parts = target.split("/")
    if len(parts) != 3 or is_test:
        return
    other, name = parts[1], parts[2]
    if other == "Platform" and path.suffix == ".h" and str(path) in installed:
        problems.append(f"{where}: an installed header includes {target}")
    if other == folder:
        return
    mine, theirs = level(folder, path.name), level(other, name)
    if theirs > mine or (theirs == mine and (folder, other) not in NEIGHBOURS):
        problems.append(f"{where}: {target} is not below {folder}")


def installed_headers():
    found = set()
    for listing in root.glob("*/CMakeLists.txt"):
        block = re.search(r"HEADERS(.*?)(SOURCES|TESTS|\))", listing.read_text(), re.S)
        if block:
            found |= {str((listing.parent / name).resolve()) for name in block.group(1).split()}
    return found


installed = installed_headers()
for path in sorted(root.glob("*/**/*.*")):
    if path.suffix not in (".h", ".cpp"):
        continue
    folder = path.relative_to(root).parts[0]
    is_test = "tests" in path.parts
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if "layer waiver:" in line:
            continue
        found = INCLUDE.match(line)
        if found:
            check_include(path, number, folder, is_test, found.group(1), found.group(2))

for path in sorted(path for folder in SOURCES for path in (tree / folder).rglob("*.*")):
    if path.suffix not in (".h", ".cpp", ".c") or root / "Platform" in path.parents or path == root / "qvBase.h":
        continue
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if PLATFORM_TEST.match(line):
            problems.append(f"{path.relative_to(tree)}:{number}: a platform is tested for outside Platform/")

print("\n".join(problems))
sys.exit(1 if problems else 0)
