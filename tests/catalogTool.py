#!/usr/bin/env python3
"""Compares catalogs with the catalog tool. usage: catalogTool.py QVCATALOG [EMULATOR WORD...]"""
import atexit, os, shutil, subprocess, sys, tempfile
from toolCheck import check, finish

TOOL = sys.argv[2:] + [os.path.abspath(sys.argv[1])]


def expect(status, out, err, *words, stdout=subprocess.PIPE):
    """Runs the tool and compares its status, its lines of output, and a piece of what it reports."""
    done = subprocess.run([*TOOL, *words], stdout=stdout, stderr=subprocess.PIPE, timeout=60)
    lines = (done.stdout or b"").decode().splitlines()
    reported = done.stderr.decode(errors="replace").replace("\r", "")
    good = done.returncode == status and out in (None, lines) and err in reported and (err or not reported)
    check(good, "%d, %r, %r" % (done.returncode, lines, reported), depth=2)


def write(name, *lines):
    with open(name, "w", encoding="utf-8", newline="") as file:
        file.write("".join(line + "\n" for line in lines))


scratch = tempfile.mkdtemp(prefix="base-catalog-tool.")
atexit.register(shutil.rmtree, scratch, ignore_errors=True)
os.chdir(scratch)
write("en", 'a.open = "Open %S"', 'a.size = "%d of %I64u bytes, %.1f%%"', 'a.quit = "Quit"', 'b.name = "%s: %S"')
write("same", 'b.name = "%s %S"', 'a.quit = "Beenden"', 'a.size = "%5i von %llu Byte (%3.2f %%)"', 'a.open = "%-20S auf"')
write("kinds", 'a.open = "%s"', 'a.size = "%d %I64u"', 'a.quit = "100% sicher"', 'b.name = "%S: %s"')
write("keys", 'a.close = "x"', 'a.open = "%S"', 'a.quit = "x"', 'z.z = "x"')
write("broken", 'a.open = "%S"', "a.quit = x\x1b")
write("caf\u00e9 1", 'a.open = "%S"', 'b.name = "%s: %S"', 'a.quit = ""')

kinds = ["kinds: a.open: takes %s, and the reference takes %S",
         "kinds: a.quit: takes %S, and the reference takes nothing",
         "kinds: a.size: takes %d %I64u, and the reference takes %d %I64u %f",
         "kinds: b.name: takes %S %s, and the reference takes %s %S"]
keys = ["keys: a.close: left over", "keys: a.size: missing", "keys: b.name: missing", "keys: z.z: left over"]
expect(0, [], "", "check", "en", "en", "same")
expect(1, kinds + keys, "", "check", "en", "kinds", "same", "keys")
expect(1, ["caf\u00e9 1: a.size: missing"], "", "check", "en", "caf\u00e9 1")
expect(1, keys, "qvcatalog: broken: String file parsing error encountered, line 2, file broken:", "check", "en", "broken", "keys")
expect(1, [], "a.quit = x\\x1b\n", "check", "en", "broken")
expect(1, [], "Can't open catalog file missing for read: ", "check", "missing", "en")
for words in [], ["check"], ["check", "en"], ["compare", "en", "en"]:
    expect(2, [], "usage:", *words)
expect(0, None, "", "help")
if os.path.exists("/dev/full"):
    with open("/dev/full", "wb") as full:
        expect(1, None, "standard output: ", "check", "en", "keys", stdout=full)
os.chdir("/")
finish()
