#!/usr/bin/env python3
"""Reads golden files by docs/formats.md alone, to prove that the document is enough for a reader in another language.

usage: readFormats.py FOLDER"""
import pathlib
import re
import struct
import sys


def decompress(data):
    """A compressed stream; the bytes behind its end are not looked at."""
    assert data[:3] == b"\x1f\x9d\x90"
    strings = {code: bytes([code]) for code in range(256)}
    width, most, next_code, at, bit, clearing = 9, 511, 258, 3, 0, False
    previous, out = None, []
    while True:
        if clearing or next_code > most:
            if bit:
                at, bit = at + width, 0
            if clearing:
                width, most, next_code, clearing = 9, 511, 257, False
            else:
                width += 1
                most = 65536 if width == 16 else 2**width - 1
        group = int.from_bytes(data[at:at + width], "little")
        code = group >> bit & (1 << width) - 1
        bit += width
        if bit == 8 * width:
            at, bit = at + width, 0
        if code == 257:
            return b"".join(out)
        if code == 256:
            strings = {c: bytes([c]) for c in range(256)}
            clearing = True
            continue
        if previous is None:
            text = strings[code]
        else:
            text = strings[code] if code in strings and code < next_code else previous + previous[:1]
            if next_code < 65536:
                strings[next_code] = previous + text[:1]
                next_code += 1
        out.append(text)
        previous = text


def add_words(total, data, order):
    for i in range(0, len(data) - 1, 2):
        total += int.from_bytes(data[i:i + 2], order)
    total += data[-1] if len(data) % 2 else 0
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return total


def checked(data):
    """The data of a checksum stream."""
    out, at, sums = [], 0, {"little": 0, "big": 0}
    while at < len(data):
        size, complement = struct.unpack(">II", data[at:at + 8])
        assert size ^ complement == 0xFFFFFFFF and size >= 1
        block = data[at + 10:at + 10 + size]
        assert len(block) == size
        sums = {order: add_words(total, block, order) for order, total in sums.items()}
        assert any(int.from_bytes(data[at + 8:at + 10], order) == total for order, total in sums.items())
        out.append(block)
        at += 10 + size
    return b"".join(out)


class PacketFile:
    """Types and packets of a binary packet file."""

    def __init__(self, data):
        header, rest = data.split(b"@\n", 2)[1:] if data.startswith(b"^@\n") else (None, None)
        numbers = [int(word) for word in header.split()]
        self.order = "<" if numbers[1] else ">"
        self.method = numbers[2]
        assert numbers[4:10] == [1, 2, 4, 8, 4, 8]
        table, rest = rest.split(b"@\n", 1)
        self.types = [line.split()[1].decode() for line in table.splitlines()]
        self.packets = []
        at = 0
        while True:
            kind, mode, size = struct.unpack(self.order + "iii", rest[at:at + 12])
            self.packets.append((self.types[kind], mode, rest[at + 12:at + 12 + size]))
            at += 12 + size
            if self.types[kind] == "packetFile_EOF":
                return


class TextPacketFile:
    """Types and packets of a text packet file: for each packet its type, mode and body."""

    def __init__(self, data):
        header, rest = data.split(b"@\n", 2)[1:] if data.startswith(b"^@\n") else (None, None)
        self.tagged = header.split()[2] == b"2"
        table, rest = rest.split(b"@\n", 1)
        self.types = [line.split()[1].decode() for line in table.splitlines()]
        self.packets = []
        for match in re.finditer(rb"\{\s*(\d+) (\d+) ((?:[^\\}]|\\.)*)\}", rest, re.DOTALL):
            self.packets.append((self.types[int(match[1])], int(match[2]), match[3]))
        assert self.packets[-1] == ("packetFile_EOF", 0, b"")

    def items(self, body):
        """Tags, values and marks of a body. Numbers stay text."""
        tag = rb"(?P<tag>(?:r|[0-9B])?[bcChHiIlLfds])" if self.tagged else rb"(?P<tag>)"
        item = re.compile(rb'\n  (?P<open>[\[<]) |(?P<close>[\]>]) |' + tag +
                          rb'(?:"(?P<text>(?:[^\\"]|\\.)*)"|(?P<number>-?(?:[0-9.e+-]+|inf|nan))) ', re.DOTALL)
        at, found = 0, []
        while at < len(body):
            match = item.match(body, at)
            assert match, body[at:]
            if match["text"] is not None:
                found.append((match["tag"].decode(), re.sub(rb"\\(.)", rb"\1", match["text"], flags=re.DOTALL)))
            elif match["number"]:
                found.append((match["tag"].decode(), match["number"].decode()))
            else:
                found.append(("", (match["open"] or match["close"]).decode()))
            at = match.end()
        return found


def entries(data):
    """Name, content and time stamp of the entries of a package."""
    assert data[0] == 0x8F and data[1:59] == b"KestrovaPortablePackageFile\neliFegakcaPelbatroPavortseK\n1\n"
    front = data.index(b"@", 59) + 2
    directory = int(data[front:front + 24])
    file = PacketFile(data[directory:])
    end, found = front + 24, []
    for kind, mode, body in file.packets[:-1]:
        assert kind == "package.entry" and mode == 0
        name, numbers = body.split(b"\0", 1)
        offset, size, time, compressed = struct.unpack(file.order + "qqq?", numbers)
        assert offset == end
        if name == b".":
            assert offset == directory
            continue
        end = offset + size
        stored = data[offset:end]
        if name:
            found.append((name.decode(), checked(decompress(stored)) if compressed else stored, time))
    return found


def expect(what, got, wanted):
    if got != wanted:
        sys.exit(f"{what}: got {got!r}, wanted {wanted!r}")


folder = pathlib.Path(sys.argv[1])
plain = (folder / "plain.packets").read_bytes()
for name, unpack in [("compressed", decompress), ("summed", checked), ("both", lambda d: checked(decompress(d))),
                     ("summedBelow", lambda d: decompress(checked(d)))]:
    expect(name, unpack((folder / f"{name}.packets").read_bytes()), plain)
packets = PacketFile(plain)
expect("types", packets.types, ["packetFile_string", "packetFile_EOF", "golden.item"])
expect("packets", [kind for kind, _, _ in packets.packets],
       ["golden.item"] * 40 + ["packetFile_string", "packetFile_EOF"])
item = packets.packets[3][2]
expect("first values", struct.unpack(packets.order + "IcI?bBhHiIqQfd", item[:4 + 5 + 43])[3:12],
       (True, -5, 250, -30000, 60000, -2000000000 + 3, 4000000000, -2**63 + 5, 2**64 - 8))
chunks = [
    ["1", "-5", "250", "-30000", "60000", "-1999999997", "4000000000", "-9223372036854775803", "18446744073709551608",
     "%.7g" % -1.5e-30, "%.16g" % 6.02214076e23, "text with \u00fc, a\ttab and \"quotes\"3".encode(), "8"],
    ["1", "0", "1", "97", "10", "-1", "0", "0", "128", "255", "-1", "257", "1", "65535", "1", "-1", "16909060",
     "2695938256", "0", "-1", "72623859790382856", "17357102489901502592", "0", "1", "-3.25", "%.16g" % (1 / 3), "-0"],
    ["<", "[", "4711", "]", ">"],
    ["42"]]
tags = ("rI b c C h H i I l L f d s rI Bb b b 1c c c c 2C C C 3h h 4H H 5i i i 6I I 7l l 8L 9f f f 0d d i i").split()
for name in ["text", "taggedText"]:
    text = TextPacketFile((folder / f"{name}.packets").read_bytes())
    expect(name, text.types, packets.types)
    expect(name, [packet[:2] for packet in text.packets], [packet[:2] for packet in packets.packets])
    values = text.items(text.packets[3][2])
    expect(name, [value for _, value in values], ["7"] + sum((["[", *chunk, "]"] for chunk in chunks), []))
    expect(name, [tag for tag, _ in values if tag], tags if name == "taggedText" else [])
package = entries((folder / "mixed.package").read_bytes())
expect("names", [name for name, _, _ in package],
       ["empty", "directory/file with blank.txt", "compressed", "\u043f\u0440\u0438\u0432\u0435\u0442/\u6f22\u5b57/\U0001f600"])
expect("contents", [content for _, content, _ in package],
       [b"", b"stored as it is", b"x" * 3000 + b"y" * 3000, b"any script"])
expect("times", {time for _, _, time in package}, {1000000000})
# A real packet sequence over widths and clears, where a larger package is given.
for path in sys.argv[2:]:
    for name, content, _ in entries(pathlib.Path(path).read_bytes()):
        expect(name, content, pathlib.Path(name).read_bytes())
print("every golden file reads as the document says")
