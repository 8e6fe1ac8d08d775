#!/usr/bin/env python3
"""Uses the package tool as ordinary and as hostile users do. usage: packageTool.py QVPACKAGE"""
import atexit, contextlib, json, os, pty, random, resource, shutil, signal, stat, subprocess, sys, tempfile, time
from toolCheck import check, finish

def reachable(tool):
    """Copies the tool and its library to where every user may run them, wherever the build lies."""
    place = tempfile.mkdtemp(prefix="base-package-tool.")
    atexit.register(shutil.rmtree, place, ignore_errors=True)
    os.chmod(place, 0o755)
    library = os.path.join(os.path.dirname(tool), "..", "lib", "libBase.so.1")
    os.environ["LD_LIBRARY_PATH"] = place
    shutil.copy(library, place)
    return shutil.copy(tool, place)


TOOL = reachable(os.path.abspath(sys.argv[1]))


def run(*words, user=None, limit=None, umask=None, closed=False, **options):
    """Runs the tool; (exit status, standard output, standard error). A signal gives a negative status."""
    def prepare():
        if limit is not None:
            resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
        if closed:
            os.closerange(0, 3)
        if umask is not None:
            os.umask(umask)
        if user is not None and os.getuid() == 0:
            os.setgroups([])
            os.setgid(user)
            os.setuid(user)
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "timeout": 120, **options}
    done = subprocess.run([TOOL, *words], preexec_fn=prepare, **options)
    return done.returncode, (done.stdout or b"").decode(), (done.stderr or b"").decode(errors="replace")


def expect(status, text, *words, **options):
    """Runs the tool and compares the status, and `text` with standard error. No failure is silent."""
    got, out, err = run(*words, **options)
    good = got == status and text in err and bool(err) == (status != 0)
    check(good, "%s gave %d and %r" % (words, got, err[:500]), depth=2)
    return out


def write(path, data, mode=None):
    if os.path.dirname(path):
        os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(data if isinstance(data, bytes) else data.encode())
    if mode is not None:
        os.chmod(path, mode)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def names(package):
    listing = json.loads(expect(0, "", "list", package, "-json"))
    return sorted(entry["name"] for entry in listing["entries"])


def patch(package, target, old, new):
    data = read(package)
    assert data.count(old) == 1 and len(old) == len(new)
    write(target, data.replace(old, new))


@contextlib.contextmanager
def scratch():
    """A fresh current directory that every user may enter."""
    directory = tempfile.mkdtemp(prefix="base-package-tool.")
    os.chmod(directory, 0o755)
    os.chdir(directory)
    try:
        yield
    finally:
        os.chdir("/")
        subprocess.run(["chmod", "-R", "u+rwX", directory])
        shutil.rmtree(directory)


def usage():
    write("d/f", "x")
    expect(0, "", "create", "p", "d")
    for words in ["", "-", "nonsense", "list", "list p p", "list -", "list p -- -", "create p", "create - d", "create q -x d",
                  "create q d -from", "create q d -into x", "verify p -json", "extract p -compress", "remove p",
                  "compact p", "list -json"]:
        expect(2, "usage:", *words.split())
    for words in [["list", ""], ["create", "q", "-from", "", "d"], ["extract", "p", "-into", ""]]:
        expect(2, "usage:", *words)
    check(not os.path.exists("q"), "wrong usage makes no package")
    check("usage:" in expect(0, "", "help"), "help shows the usage")
    for words in ["list p -js", "-json list p", "list --json p", "list -json -- p"]:
        check(json.loads(expect(0, "", *words.split()))["entries"][0]["name"] == "d/f", words)
    for words in [["list", "no"], ["verify", "d"], ["extract", "no"], ["add", "no", "d"], ["remove", "no", "x"],
                  ["compact", "no", "q"], ["create", "p", "d"], ["create", "no/p", "d"], ["compact", "p", "d"],
                  ["add", "d/f", "d"], ["extract", "d/f"], ["list", "/dev/null"]]:
        expect(1, ": ", *words)
    os.mkfifo("fifo")
    for words in [["list", "fifo"], ["add", "fifo", "d"], ["compact", "fifo", "q"], ["compact", "p", "fifo"]]:
        expect(1, "fifo: ", *words)


CONTENTS = {
    "empty": b"", "one": b"1", "with blank/\u00e9t\u00e9 \u6f22\U0001f600": b"unicode", "-dash": b"dash",
    "line\nend": b"name of two lines", "n" * 255: b"long name", "text": b"abc" * 2000000,
    "noise": random.Random(1).randbytes(300000), "d/d/deep": b"deep", ".hidden": b"dot"}


def round_trip():
    for name, data in CONTENTS.items():
        write("src/" + name, data)
    os.utime("src/one", (1, 1000000000))
    for number, (mask, mode) in enumerate([(0o022, 0o644), (0o077, 0o600)]):
        package, out = "p%d" % number, "out%d" % number
        expect(0, "", "create", package, "-compress", "-from", "src", "src", umask=mask)
        check(stat.S_IMODE(os.stat(package).st_mode) == mode, "mode of the package")
        expect(0, "", "verify", package)
        expect(0, "", "extract", package, "-into", out, umask=mask)
        for name, data in CONTENTS.items():
            check(read(out + "/" + name) == data, name)
            check(stat.S_IMODE(os.stat(out + "/" + name).st_mode) == mode, "mode of " + name)
        check(os.stat(out + "/one").st_mtime == 1000000000, "time")
        check(sum(len(files) for _, _, files in os.walk(out)) == len(CONTENTS), "nothing but the entries")
    listing = json.loads(expect(0, "", "list", "p0", "-json"))
    check(list(listing) == ["package", "size", "directory", "entries", "free"], "members of the object")
    check(list(listing["entries"][0]) == ["name", "offset", "size", "time", "compressed"], "members of an entry")
    offsets = [entry["offset"] for entry in listing["entries"]]
    check(offsets == sorted(offsets) and offsets[0] == 85 and listing["free"] == [], "regions in order")
    check(listing["size"] == os.path.getsize("p0") and listing["package"] == "p0", "file")
    check([e["compressed"] for e in listing["entries"] if e["name"] in ("text", "one")] == [False, True], "compressed")
    check("line\\x0aend" in expect(0, "", "list", "p0"), "no name breaks the table")
    expect(1, "nothing: there is no such entry", "extract", "p0", "one", "nothing", "./-dash", "-into", "some")
    check(sorted(os.listdir("some")) == ["-dash", "one"], "the entries that were asked for")

    # names, however the paths are written
    here = os.getcwd()
    for words, wanted in [
            (["src/d"], ["src/d/d/deep"]), (["./src//d/"], ["src/d/d/deep"]), ([here + "/src/d"], [here[1:] + "/src/d/d/deep"]),
            (["-from", ".", here + "/src/d"], ["src/d/d/deep"]), (["-from", here + "/src/d/../", "src/d"], ["d/d/deep"]),
            (["-from", "src/d/d", "src/d"], ["deep"]), (["-from", "src/", "src/one", "src/one", "./src/one"], ["one"]),
            (["--", "src/-dash"], ["src/-dash"])]:
        expect(0, "", "create", "q", *words)
        check(names("q") == wanted, (words, names("q")))
        os.remove("q")
    os.chdir("src")
    expect(0, "", "create", "../q", "--", "-dash", "../src/d/d/deep")
    check(names("../q") == ["-dash", "src/d/d/deep"], "dash and parent")
    os.chdir("..")


def refused_sources():
    write("d/good", "good")
    write("d/con.txt", "reserved")
    write("d/back\\slash", "x")
    write(b"d/bad\xff".decode("utf-8", "surrogateescape"), "x")
    write("other/good", "of the same name")
    os.mkfifo("d/fifo")
    os.symlink("nowhere", "d/dangling")
    os.symlink("../other", "d/folder")
    os.symlink("../other/good", "d/file")
    got, _, err = run("create", "d/p", "-from", "d", "d", "other")
    for text in ["con.txt: ", "back\\slash: ", "fifo: ", "dangling: ", "other/good: this lies outside", "bad"]:
        check(text in err, text)
    check(got == 1 and len(err.splitlines()) == 6, err)
    check(names("d/p") == ["file", "good"], "the rest is stored, links to directories apart")
    write("one/f", "f")
    write("f", "another f")
    os.chdir("one")
    expect(1, "../f: its name in the package is taken: f", "create", "../q", "f", "../f")
    os.chdir("..")
    expect(0, "", "extract", "q", "-into", "out")
    check(read("out/f") == b"f", "the first of two stays")
    before = read("d/p")
    expect(1, "p: this is the package itself", "add", "d/p", "-from", "d", "d/p", "d/good")
    check(names("d/p") == ["file", "good"] and read("d/p") != b"", "package")
    expect(1, "no: there is no such file", "add", "d/p", "no")
    os.symlink("d/p", "link")
    expect(0, "", "remove", "link", "file")
    check(os.path.islink("link") and names("d/p") == ["good"] and read("d/p") != before, "a link is followed")
    check(not [n for n in os.listdir("d") if n.endswith(".tmp")], "no file is left over")


def changes():
    expect(1, "no: there is no such file", "create", "p", "no")
    check(names("p") == [], "an empty package is a package")
    expect(0, "", "verify", "p")
    for name, size in [("a", 10), ("b", 20), ("c", 30)]:
        write(name, name * size)
    expect(0, "", "add", "p", "a", "b", "c")
    expect(1, "zz: there is no such entry", "remove", "p", "zz", "b")
    listing = json.loads(expect(0, "", "list", "p", "-json"))
    check(listing["free"] == [{"offset": 95, "size": 20}], "free space")
    write("b", "B" * 20)
    expect(0, "", "add", "p", "b")  # fills the hole to the byte
    expect(0, "", "extract", "p", "b", "-into", "out")
    check(read("out/b") == b"B" * 20, "what filled a hole is in the directory")
    expect(0, "", "remove", "p", "a", "c")
    os.chmod("p", 0o640)
    expect(0, "", "compact", "p", "p")
    expect(0, "", "compact", "p", "q", umask=0o027)
    check(read("p") == read("q") and names("p") == ["b"], "compact")
    check([stat.S_IMODE(os.stat(n).st_mode) for n in "pq"] == [0o640, 0o640], "modes")
    expect(0, "", "remove", "p", "b")
    check(names("p") == [], "emptied")


def damage():
    write("d/aa", "first " * 50)
    write("d/bb", "".join("%d " % i for i in range(2000)))
    write("d/cc", random.Random(2).randbytes(200))
    expect(0, "", "create", "p", "-compress", "-from", "d", "d")
    good = read("p")
    entry = {e["name"]: e for e in json.loads(expect(0, "", "list", "p", "-json"))["entries"]}
    begin, end = entry["bb"]["offset"], entry["bb"]["offset"] + entry["bb"]["size"]
    dice = random.Random(3)
    for size in dice.sample(range(len(good)), 15):
        write("q", good[:size])
        expect(1, "q: this is no package, or it is damaged", dice.choice(["list", "verify", "extract"]), "q")
    for at in dice.sample(range(begin, end - 2), 30):
        write("q", good[:at] + bytes([good[at] ^ dice.randrange(1, 256)]) + good[at + 1:])
        expect(1, "bb: its bytes are damaged or missing", "verify", "q")
    expect(1, "bb: its bytes are damaged or missing", "extract", "q", "-into", "out")
    check(sorted(os.listdir("out")) == ["aa", "cc"] and read("out/cc") == read("d/cc"), "the rest is extracted")
    write("out/bb", "old")
    expect(1, "bb: ", "extract", "q", "-into", "out")
    check(read("out/bb") == b"old" and len(os.listdir("out")) == 3, "what stood there stays")
    # A stream that ends early and well, with bytes behind its end.
    first = good[entry["aa"]["offset"]:][:entry["aa"]["size"]]
    write("q", good[:begin] + first + good[begin + len(first):])
    expect(1, "bb: its bytes are damaged or missing", "verify", "q")
    statuses = set()
    for at in dice.sample(range(len(good)), 80):
        write("q", good[:at] + bytes([dice.randrange(256)]) + good[at + 1:])
        status = run(dice.choice(["list", "verify", "extract"]), "q", "-into", "x")[0] if at % 2 else run("verify", "q")[0]
        statuses.add(status)
        if at % 5 == 0:
            statuses.add(run("compact", "q", "r")[0])
            statuses.add(run("add", "q", "d/aa")[0])
    check(statuses <= {0, 1, 2}, statuses)


def hostile_names():
    write("d/x/aa", "evil")
    write("d/x/good", "good")
    expect(0, "", "create", "p", "-from", "d", "d")
    os.mkdir("box")
    for name in ["../a", "/x/a", "x/..", "C:/a", "C:aa", "\\x/a", "..\\a", "../.", "/../"]:
        patch("p", "q", b"x/aa", name.encode())
        expect(1, name + ": its name leads out of the target directory", "extract", "q", "-into", "box/out")
        check(read("box/out/x/good") == b"good" and os.listdir("box") == ["out"], name)
        expect(0, "", "verify", "q")
        expect(0, "", "remove", "q", name)
        check(names("q") == ["x/good"], name)
    for name in [b"x///", b"\xff\xfe\x01\x1b", b"x/./"]:
        patch("p", "q", b"x/aa", name)
        check(run("extract", "q", "-into", "box/out")[0] in (0, 1) and os.listdir("box") == ["out"], name)
        check(b"\x1b" not in expect(0, "", "list", "q").encode(), "no control characters")
    patch("p", "q", b"x/aa", b"q\0\0\0")  # and an entry that would replace the package
    for links in [("box", "elsewhere"), ("x", "../box")]:
        shutil.rmtree("box")
        os.makedirs("box/out")
        os.symlink(links[1], "box/out/" + links[0])
        expect(0 if links[0] == "box" else 1, "" if links[0] == "box" else "a link in the target", "extract", "p", "-into", "box/out")
        check(os.listdir("box") == ["out"], "nothing outside")
    write("victim", "victim")
    os.makedirs("out/x/good")
    os.symlink("../../victim", "out/x/aa")
    expect(1, "x/good: a directory of this name is in the way", "extract", "p", "-into", "out")
    check(read("victim") == b"victim" and read("out/x/aa") == b"evil" and not os.path.islink("out/x/aa"), "link replaced")
    expect(0, "", "create", "self", "-from", "d/x", "d/x")
    os.makedirs("same")
    shutil.copy("self", "same/good")
    expect(1, "good: it would take the place of the package", "extract", "same/good", "-into", "same")
    check(names("same/good") == ["aa", "good"], "the package stays")


def places():
    write("big", random.Random(4).randbytes(400000))
    write("small", "small")
    expect(0, "", "create", "p", "small")
    old = read("p")
    # a file system that is full in the middle
    for words in [["create", "q", "big"], ["add", "p", "small", "big"], ["add", "p", "-compress", "big"]]:
        expect(1, "big: ", *words, limit=100000)
    expect(0, "", "create", "r", "big")
    for words in [["compact", "r", "q"], ["remove", "r", "big"], ["extract", "r", "-into", "out"]]:
        expect(1, ": ", *words, limit=100000)
    check(read("p") == old and os.listdir("out") == [], "nothing half done")
    check(set(os.listdir(".")) - {"q"} == {"big", "out", "p", "r", "small"}, "no file is left over")
    # without rights
    nobody = 65534
    os.makedirs("closed", 0o755)
    write("closed/p", old, 0o644)
    write("secret", "secret", 0o600)
    os.chmod("secret", 0 if os.getuid() else 0o600)
    os.chmod("closed", 0o555)
    for words in [["add", "closed/p", "small"], ["remove", "closed/p", "small"], ["compact", "p", "closed/q"],
                  ["create", "closed/q", "small"], ["extract", "p", "-into", "closed"], ["extract", "p", "-into", "closed/new"]]:
        expect(1, ": ", *words, user=nobody)
    os.mkdir("open")
    os.chmod("open", 0o777)
    expect(1, "secret: it cannot be read", "create", "open/p", "secret", "small", user=nobody)
    check(names("open/p") == ["small"], "the rest is stored")
    os.chmod("open/p", 0o444)
    expect(1, "open/p: ", "add", "open/p", "big", user=nobody)
    # nobody listens
    with open("/dev/full", "wb") as full:
        expect(1, "standard output: ", "list", "p", stdout=full)
    reader, writer = os.pipe()
    os.close(reader)
    check(run("list", "p", stdout=writer)[0] in (1, -signal.SIGPIPE), "closed pipe")
    os.close(writer)
    expect(0, "", "create", "q2", "small", "big", stdout=None, stderr=None, closed=True)
    expect(0, "", "verify", "q2")
    # a terminal
    for index in range(300):
        write("many/%d" % index, "x" * 1000)
    for words in [["create", "many.p", "many"], ["verify", "many.p"], ["extract", "many.p", "-into", "many.out"]]:
        master, slave = pty.openpty()
        expect(0, "", *words, stderr=slave)
        os.close(slave)
        shown = b""
        with contextlib.suppress(OSError):
            while piece := os.read(master, 100000):
                shown += piece
        check(b"##] 100%" in shown and shown.endswith(b"\r\x1b[K"), shown[-80:])
        os.close(master)


def kills():
    """Whenever the tool is killed, the old or the new package stands whole, at worst under the backup name."""
    write("src/a", b"a" * 3000000)
    write("src/b", random.Random(5).randbytes(2000000))
    expect(0, "", "create", "p", "src/a", "src/b")
    write("c", random.Random(6).randbytes(3000000))
    begin = time.monotonic()
    expect(0, "", "add", "p", "-compress", "c")
    span = time.monotonic() - begin
    dice = random.Random()
    stop = time.monotonic() + 4
    rounds = 0
    while time.monotonic() < stop or rounds < 10:
        rounds += 1
        words = dice.choice([["add", "p", "-compress", "c"], ["remove", "p", "c"], ["compact", "p", "p"], ["add", "p", "src/b"]])
        tool = subprocess.Popen([TOOL, *words], stderr=subprocess.DEVNULL)
        with contextlib.suppress(subprocess.TimeoutExpired):
            tool.wait(dice.random() * span)
        tool.kill()
        tool.wait()
        if not os.path.exists("p"):
            backups = [n for n in os.listdir(".") if n.endswith(".1.tmp")]
            check(len(backups) == 1, "backups %s" % backups)
            os.rename(backups[0], "p")
        check(names("p") in (["src/a", "src/b"], ["c", "src/a", "src/b"]), words)
        expect(0, "", "verify", "p")
        for name in os.listdir("."):
            if name.endswith(".tmp"):
                os.remove(name)
    print("killed %d times" % rounds)


for group in (usage, round_trip, refused_sources, changes, damage, hostile_names, places, kills):
    begin = time.monotonic()
    with scratch():
        group()
    print("%s: %.1f s" % (group.__name__, time.monotonic() - begin))
finish()
