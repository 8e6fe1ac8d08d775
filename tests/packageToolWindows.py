#!/usr/bin/env python3
"""Uses the package tool on Windows. usage: packageToolWindows.py QVPACKAGE [EMULATOR WORD...]"""
import json, os, random, subprocess, sys, tempfile

TOOL = sys.argv[2:] + [os.path.abspath(sys.argv[1])]
FILES = {"tree/plain.txt": b"text\r\nand\x1amore\n", "tree/sub/\u00fc\u6f22\U0001f600.bin": random.Random(1).randbytes(300000),
         "tree/empty": b""}


def run(status, *words):
    done = subprocess.run([*TOOL, *words], capture_output=True, timeout=120)
    text = (done.stdout + done.stderr).decode()
    assert done.returncode == status, "%s gave %d and %s" % (words, done.returncode, text)
    return text


def write(path, data):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(data)


with tempfile.TemporaryDirectory() as place:
    os.chdir(place)
    for name, data in FILES.items():
        write(name, data)
    run(0, "create", "p.package", "-compress", "-from", "tree", ".\\tree\\sub", "tree/plain.txt")
    run(0, "add", "p.package", "tree")
    listing = json.loads(run(0, "list", "p.package", "-json"))
    stored = sorted([*FILES, *(name[5:] for name in FILES if name != "tree/empty")])
    assert sorted(entry["name"] for entry in listing["entries"]) == stored, listing
    run(0, "verify", "p.package")
    run(0, "extract", "p.package", "-into", "out\\deep")
    for name in stored:
        with open("out/deep/" + name, "rb") as file:
            assert file.read() == FILES[name if name in FILES else "tree/" + name], name
    run(0, "remove", "p.package", "sub/\u00fc\u6f22\U0001f600.bin")
    run(0, "compact", "p.package", "\u00e9.package")
    assert os.path.getsize("\u00e9.package") < os.path.getsize("p.package")
    run(0, "verify", "\u00e9.package")
    write("broken/p", b"no package")
    assert "this is no package" in run(1, "list", "broken\\p")
    assert "exists already" in run(1, "create", "p.package", "tree")
    run(2, "nonsense")
