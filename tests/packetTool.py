#!/usr/bin/env python3
"""Looks into packet files with the packet tool. usage: packetTool.py GOLDEN QVPACKET [EMULATOR WORD...]"""
import atexit, json, os, random, shutil, struct, subprocess, sys, tempfile
from toolCheck import check, finish

GOLDEN = os.path.abspath(sys.argv[1])
TOOL = sys.argv[3:] + [os.path.abspath(sys.argv[2])]
SLOW = len(TOOL) > 1  # an emulator starts slowly


def run(*words):
    done = subprocess.run([*TOOL, *words], capture_output=True, timeout=60)
    return done.returncode, done.stdout.decode().replace("\r", ""), done.stderr.decode().replace("\r", "")


def expect(status, err, *words):
    """Runs the tool and compares its status and what it reports: one line, but for the usage. @return its output."""
    got, out, reported = run(*words)
    one_line = len(reported.splitlines()) == (status == 1) or status == 2
    if got != status or err not in reported or not one_line:
        check(False, "%d, %r" % (got, reported), depth=2)
    return out


def write(name, data):
    with open(name, "wb") as file:
        file.write(data)
    return name


def read(name):
    with open(name, "rb") as file:
        return file.read()


def dump(status, err, *words):
    return [json.loads(line) for line in expect(status, err, "dump", *words, "-json").splitlines()]


# ---- packet files, made by hand ----

def front(method=3, little=True, types=("packetFile_string", "packetFile_EOF", "t")):
    table = b"".join(b"%4d %s\n" % (i, t if isinstance(t, bytes) else t.encode()) for i, t in enumerate(types))
    return b"^@\n1\n%d %d 1\n1 2 4 8 4 8 8\n@\n" % (little, method) + table + b"@\n"


def packet(body, kind=2, mode=0, size=None):
    return struct.pack("<iii", kind, mode, len(body) if size is None else size) + body


def chunk(body, mark=b",", size=None):
    return mark + b"i" + struct.pack("<i", len(body) + 5 if size is None else size) + body


END = packet(b"", 1)
FRONT = len(front())
BINARY = front() + packet(b"rI\1\0\0\0" + chunk(b"i\7\0\0\0" + chunk(chunk(b"sabc\0"), b".")) + chunk(b"5\1\0\0\0"), 2, 1) + END
TEXT = front(2) + b'{ 2 1 rI1 \n  [ i7 \n  < \n  [ s"a\\"c" ] > ] \n  [ 5i1 ] }\n{ 1 0 }\n'


# ---- tests ----

def value(kind, content):
    return {"kind": kind, "value": content}


ARRAYS = [("Bool", [True, False, True], "?"), ("Char", [97, 10, -1, 0], "b"), ("UChar", [0, 128, 255], "B"), ("Short", [-1, 257], "h"),
          ("UShort", [1, 65535], "H"), ("Int", [1, -1, 0x01020304], "i"), ("UInt", [0xA0B0C0D0, 0], "I"), ("Int64", [-1, 0x0102030405060708], "q"),
          ("UInt64", [0xF0E0D0C0B0A09080], "Q"), ("Float", [0.0, 1.0, -3.25], "f"), ("Double", [1 / 3, -0.0], "d")]


def golden_items(order, is_text):
    """What every golden packet shows, and the references between them."""
    numbers, items, edges = {}, [], set()
    number = lambda k: numbers.setdefault(k, len(numbers) + 1)
    for i in range(40):
        me, other = number(i), number((i + 7) % 40)
        edges.add((me, other))
        values = [value(kind, content) for kind, content in [
            ("Bool", True), ("Char", -5), ("UChar", 250), ("Short", -30000), ("UShort", 60000), ("Int", -2000000000 + i),
            ("UInt", 4000000000), ("Int64", -2**63 + 5), ("UInt64", 2**64 - 8), ("Float", -1.5e-30), ("Double", 6.02214076e23),
            ("CString", 'text with \u00fc, a\ttab and "quotes"%d' % i), ("Reference", other)]]
        arrays = [{"kind": "BoolArray"}] + [value("Bool", b) for b in ARRAYS[0][1]]
        raw = b""
        for (kind, elements, letter), tag in zip(ARRAYS[1:], "1234567890"):
            arrays += ([{"kind": kind + "Array"}] + [value(kind, e) for e in elements]) if is_text else []
            raw += tag.encode() + struct.pack(order + "%d%s" % (len(elements), letter), *elements)
        arrays += [] if is_text else [{"kind": "CharArray"}, {"bytes": raw[1:].hex()}]
        items.append([value("Reference", me), {"chunk": values}, {"chunk": arrays},
                      {"chunk": [{"subpacket": [{"chunk": [value("Int", 4711)]}]}]}, {"chunk": [value("Int", 42)]}])
    return items, edges


def golden_files():
    for folder, order in ("littleEndian", "<"), ("bigEndian", ">"):
        path = lambda name: os.path.join(GOLDEN, folder, name + ".packets")
        shown = {}
        for name, method in ("text", 0), ("plain", 1), ("taggedText", 2), ("tagged", 3):
            header, *packets = shown[name] = dump(0, "", path(name))
            check(header == {"littleEndian": order == "<", "method": method, "types": ["packetFile_string", "packetFile_EOF", "golden.item"]}, header)
            check([(p["id"], p["mode"]) for p in packets] == [(2, 1)] * 40 + [(0, 1), (1, 0)], name)
            check([p["type"] for p in packets[39:]] == ["golden.item", "packetFile_string", "packetFile_EOF"], name)
        for name, is_text in ("taggedText", True), ("tagged", False):
            items, edges = golden_items(order, is_text)
            check([p["items"] for p in shown[name][1:41]] == items, name)
            check(shown[name][41]["items"] == [value("Reference", 41), value("CString", "a string of its own")], name)
            drawn = [line.split() for line in expect(0, "", "graph", path(name)).splitlines() if "->" in line]
            check(len(drawn) == 40 and {(int(a[6:]), int(b[6:-1])) for a, _, b in drawn} == edges, "graph of " + name)
            total = expect(0, "", "info", path(name)).splitlines()[5].split()
            check(total[:4] == ["42", str(sum(p["size"] for p in shown[name][1:])), "41", "40"], total)
        for name, frame in ("plain", lambda p: struct.pack(order + "iii", p["id"], p["mode"], p["size"])), \
                           ("text", lambda p: b"{ %d %d " % (p["id"], p["mode"])):
            data = read(path(name))
            for p in shown[name][1:]:
                body = b"".join(bytes.fromhex(item["bytes"]) for item in p["items"])
                check(len(body) == p["size"] and data[p["offset"]:].startswith(frame(p) + body), (name, p["offset"]))
        for name, options in ("compressed", ["-compress"]), ("summed", ["-checksum"]), ("both", ["-checksum", "-compress"]), \
                             ("summedBelow", ["-compress", "-checksum"]):
            check(dump(0, "", path(name), *options) == shown["plain"], name)
        data = read(path("both"))
        write("cut", data[:len(data) * 2 // 3])
        check(len(dump(1, "the stored data is damaged or cut", "cut", "-compress", "-checksum")) > 5, "what stands before is shown")
        data = read(path("summed"))
        write("flipped", data[:-3] + b"x" + data[-2:])
        check(len(dump(1, "the stored data is damaged or cut", "flipped", "-checksum")) > 30, "what stands before is shown")


def entries():
    stored = [(b"plain", BINARY, False), (b"caf\xc3\xa9/filtered", read(GOLDEN + "/bigEndian/both.packets"), True)]
    data, records, at = b"", b"", 85
    for name, content, compressed in stored + [(b".", b"", False)]:
        records += packet(name + b"\0" + struct.pack("<qqq?", at, len(content), 0, compressed))
        data, at = data + content, at + len(content)
    head = b"\x8fKestrovaPortablePackageFile\neliFegakcaPelbatroPavortseK\n1\n@\n" + b"%-23d\n" % (85 + len(data))
    directory = front(1, types=("packetFile_string", "packetFile_EOF", "package.entry")) + records + END
    write("package", head + data + directory)
    check(len(dump(0, "", "package", "-entry", "plain")) == 3, "stored as it is")
    check(dump(0, "", "-entry", "caf\u00e9/filtered", "package") == dump(0, "", GOLDEN + "/bigEndian/plain.packets"), "filtered")
    expect(1, "none: there is no such entry", "info", "package", "-entry", "none")
    expect(1, "-entry", "info", "package")
    expect(1, "this is no package", "info", write("binary", BINARY), "-entry", "plain")


def shapes():
    items = lambda data, *words: dump(0, "", write("f", data), *words)[1]["items"]
    nested = lambda text: {"chunk": [value("Int", 7), {"subpacket": [{"chunk": [value("CString", text)]}]}]}
    check(items(BINARY) == [value("Reference", 1), nested("abc"), {"chunk": [{"kind": "IntArray"}, {"bytes": "01000000"}]}], "binary")
    check(items(TEXT) == [value("Reference", 1), nested('a"c'), {"chunk": [{"kind": "IntArray"}, value("Int", 1)]}], "text")
    check(items(front() + packet(b"\x83abc") + END) == [{"kind": "Unknown"}, {"bytes": "616263"}], "a tag for any")
    check(items(front() + packet(b"i\7", mode=5) + END) == [{"bytes": "6907"}], "another reference mode")
    check(items(front() + packet(b"f\0\0\x80\x7fd\0\0\0\0\0\0\xf8\x7f") + END) == [value("Float", "inf"), value("Double", "nan")], "no numbers of JSON")
    odd = [value("Int", "12x"), value("Bool", "2"), value("Char", "200"), value("Float", 0.5), value("Int", -3), value("UInt", "-3")]
    check(items(front(2) + b"no packet { 2 0 i12x b2 c200 f5e-1\ni-3 I-3 }\n{ 1 0 }\n") == odd, "words by other hands")
    nameless = dump(0, "", write("f", front(types=()) + packet(b"", 7) + END))
    check([p.get("type", 0) for p in nameless] == [0, None, "packetFile_EOF"], "no table")
    check([p.get("method") for p in dump(0, "", write("f", TEXT + BINARY))] == [2, None, None, 3, None, None], "one file behind another")
    check(len(dump(0, "", "f", "-limit", "1")) == 2 and len(dump(0, "", "f", "-limit", "0")) == 1, "limit")
    strange = b'\x1b[2J\xc2\x9b\xff"\\\n\xed\xa0\x80\xf0\x9f\x98\x80'
    data = write("f", front(types=("packetFile_string", "packetFile_EOF", b"\x1b\xffx")) + packet(b"s" + strange + b"\0") + END)
    check(dump(0, "", data)[1]["items"] == [value("CString", '\x1b[2J\u009b\u00ff"\\\n\u00ed\u00a0\u0080\U0001f600')], "text")
    check('CString "\\x1b[2J\\xc2\\x9b\\xff\\"\\\\\\x0a\\xed\\xa0\\x80\U0001f600"' in expect(0, "", "dump", data), "text")
    for shift in range(5):  # long texts, which are printed in parts
        data = front() + packet(b"s" + b"a" * shift + b"\xf0\x9f\x98\x80\x80" * 2000 + b"\0") + END
        check(items(data) == [value("CString", "a" * shift + "\U0001f600\x80" * 2000)], shift)
    write("f", front(types=("packetFile_string", "packetFile_EOF", b'\x1b"')) + packet(b"rI\5\0\0\0rI\0\0\0\0") + END)
    check('label="\\\\x1b\\" at ' in expect(0, "", "graph", "f") and run("graph", "f")[1].count("->") == 1, "a packet that is no object")
    expect(1, "without type tags", "graph", GOLDEN + "/bigEndian/plain.packets")


def damage():
    for data, at, reason in [
            (b"", 0, "the data ends"), (b"abcdef", 0, "no packet file begins here"), (front(7), 3, "a method that is not known"),
            (front().replace(b"2 4 8", b"2 8 8"), 3, "numbers of other sizes"), (front().replace(b"   1 p", b"   3 p"), 50, "out of order"),
            (front(types=("x" * 90,)), 27, "too long"), (front() + packet(b"", 3), FRONT, "type 3, which the table lacks"),
            (front() + packet(b"", 2, 0, -1), FRONT, "a negative size"), (front() + packet(b"", 2, 0, 2**31 - 1), FRONT + 12, "the data ends inside a packet"),
            (front(), FRONT, "the data ends before the end packet"), (BINARY + b"x", len(BINARY), "bytes follow"),
            (BINARY + b"^@", len(BINARY), "no packet file begins here"), (front(2) + b"{ 2 x }", FRONT, "two numbers"),
            (TEXT[:-3], len(TEXT) - 3, "inside a packet")]:
        status, _, err = run("dump", write("f", data))
        check(status == 1 and "f: at byte %d: " % at in err and reason in err, (at, reason, err))
    body = lambda data: front() + packet(b"i\1\0\0\0" + data) + END
    text = lambda data: front(2) + b"{ 2 0 i1 " + data + b"}\n{ 1 0 }\n"
    for make, data, at, reason in [
            (body, b"x", 0, "0x78 is no type tag"), (body, b"sabc", 1, "a text passes"), (body, b"i12", 1, "an item passes"),
            (body, b"rh\0\0\0\0", 1, "0x68 stands where the type tag 'I' should"), (body, chunk(b"", size=4), 0, "a chunk has the impossible size 4"),
            (body, chunk(b"b\1", b".", 8), 0, "a sub-packet has the impossible size 8"), (body, chunk(b"", size=-2**31), 0, "a chunk has the"),
            (text, b"] ", 0, "did not begin"), (text, b"\n [ > ] ", 4, "did not begin"), (text, b"[ i2 ", 5, "inside a chunk"),
            (text, b's"a', 3, "inside a text"), (text, b"sa ", 1, "quote"), (text, b"i [ ] ", 1, "missing"), (text, b"? ", 0, "0x3f is no type tag"),
            (text, b"rh5 ", 1, "0x68 stands")]:
        shown = dump(1, "f: at byte %d: " % (FRONT + (17 if make == body else 9) + at), write("f", make(data)))
        check(shown[-1]["items"][0] == value("Int", 1) and reason in run("info", "f")[2], (data, shown, run("info", "f")[2]))
    deep = b""
    for _ in range(300):
        deep = chunk(deep)
    for data in body(deep), text(b"[ " * 300 + b"] " * 300):
        check(json.dumps(dump(1, "nested too deep", write("f", data))).count("chunk") == 256, "depth")


def broken():
    """Every prefix, and many files with a changed byte, end with a status, and what is shown is whole JSON."""
    dice = random.Random(1)
    for good in BINARY, TEXT, front(1) + packet(b"abc") + END:
        ends_well = len(good.rstrip(b"\n"))
        for size in range(0, len(good) + 1, 29 if SLOW else 1):
            dump(int(size < ends_well), "" if size >= ends_well else "f: at byte ", write("f", good[:size]))
        for _ in range(5 if SLOW else 100):
            at = dice.randrange(len(good))
            write("f", good[:at] + bytes([dice.randrange(256)]) + good[at + 1:])
            words = dice.choice([["dump"], ["dump", "-json"], ["info"], ["graph"], ["info", "-compress"], ["dump", "-checksum"]])
            status, out, err = run(words[0], "f", *words[1:])
            check(status in (0, 1) and len(err.splitlines()) == status, (words, status, err))
            check("-json" not in words or all(json.loads(line) for line in out.splitlines()), out)


def usage():
    write("f", BINARY)
    for words in ["", "nonsense f", "dump", "dump f f", "info f -json", "graph f -limit 1", "dump f -limit x", "dump f -limit -1",
                  "dump f -entry", "dump -"]:
        expect(2, "usage:", *words.split())
    check("usage:" in expect(0, "", "help"), "help")
    expect(1, "no: there is no such file", "info", "no")
    expect(1, "this is no file", "info", os.curdir)


scratch = tempfile.mkdtemp(prefix="base-packet-tool.")
atexit.register(shutil.rmtree, scratch, ignore_errors=True)
os.chdir(scratch)
for group in golden_files, entries, shapes, damage, broken, usage:
    group()
os.chdir("/")
finish()
