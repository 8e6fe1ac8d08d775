#include "Base/IO/ioPackageFile.h"

#include "testing/qvTestDirectory.h"
#include "testing/qvTestPacketFile.h"
#include "testing/qvTestPlatform.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <set>

using qvString::IString;

namespace {

IString wide(const std::string& utf8) { return IString(utf8.c_str(), qvString::UTF8Encoding); }

std::string randomBytes(qvTest::Random& random, std::size_t size, bool compressible) {
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>(compressible ? 'a' + random.below(3) : random.bits());
  return bytes;
}

/// The content of an entry, through its filters.
std::string contentOf(const ioPackageFileEntry* entry) {
  if (!entry) return "(no entry)";
  ioBufferedStreamInput input;
  input.openPackageFileEntry(entry);
  if (entry->getCompressed()) {
    input.compress(true);
    input.checksum(true);
  }
  std::string bytes;
  char block[5000];
  while (input.good()) bytes.append(block, static_cast<std::size_t>(input.readData(block, sizeof block)));
  return bytes;
}
std::string contentOf(const ioPackageFile& package, const std::string& name) {
  return contentOf(package.getEntry(wide(name)));
}

/// Makes every write fail as on a full disk.
struct FullDisk : qvTest::PlatformScript {
  FullDisk() { failCall(0, ENOSPC, "write", 1000); }
};

class PackageFile : public testing::Test {
protected:
  [[nodiscard]] IString name(const std::string& file) const { return wide(scratch_.path(file)); }

  /// Stores `bytes` under `entry`.
  qvUtil::Error add(ioPackageFile& package, const std::string& entry, const std::string& bytes,
                    bool compress = false) {
    scratch_.write("source", bytes);
    return package.addEntry(name("source"), wide(entry), compress);
  }
  void open(ioPackageFile& package, const std::string& file = "p.package") {
    const qvUtil::Error error = package.open(name(file));
    ASSERT_EQ(error.num(), 0) << error.message();
  }

  qvTest::Directory scratch_{qvTest::inMemory()}; // emptying a file elsewhere may wait for the disk
};

/// The plain picture of a package: regions in order, found first fit.
class Model {
public:
  struct Region {
    std::int64_t offset;
    std::int64_t size;
    std::string name; // empty where free
    bool operator==(const Region&) const = default;
  };

  void add(const std::string& name, std::int64_t size) {
    remove(name);
    const auto fits = [&](const Region& r) { return r.name.empty() && r.size >= size; };
    auto place = std::find_if(regions.begin(), regions.end(), fits);
    if (place == regions.end()) place = regions.insert(place, {end(), INT64_MAX, ""});
    const Region hole = std::exchange(*place, {place->offset, size, name});
    if (hole.size == size) return;
    dirty = true;
    if (hole.size != INT64_MAX) regions.insert(place + 1, {hole.offset + size, hole.size - size, ""});
  }

  bool remove(const std::string& name) {
    const auto place =
        std::find_if(regions.begin(), regions.end(), [&](const Region& r) { return r.name == name; });
    if (place == regions.end()) return false;
    place->name.clear();
    dirty = true;
    joinFree();
    return true;
  }

  [[nodiscard]] std::int64_t end() const {
    return regions.empty() ? 85 : regions.back().offset + regions.back().size;
  }

  std::vector<Region> regions;
  bool dirty = false;

private:
  void joinFree() {
    for (std::size_t i = regions.size() - 1; i > 0; --i) {
      if (!regions[i].name.empty() || !regions[i - 1].name.empty()) continue;
      regions[i - 1].size += regions[i].size;
      regions.erase(regions.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
};

/// Walks the records: contiguous from the header on, no two free neighbours, the directory last.
void expectLayout(const ioPackageFile& package, const Model& model, std::size_t staleNames) {
  std::vector<Model::Region> named;
  for (const Model::Region& region : model.regions)
    if (!region.name.empty()) named.push_back(region);
  std::vector<Model::Region> found;
  std::int64_t end = 85;
  bool free = false;
  for (int i = 0;; ++i) {
    const ioPackageFileEntry* entry = package.getEntry(i);
    if (!entry) {
      ASSERT_FALSE(free) << "two free neighbours at record " << i;
      free = true;
      continue;
    }
    ASSERT_TRUE(free || entry->getOffset() == end);
    free = false;
    if (entry->getName() == IString(".")) {
      ASSERT_EQ(entry->getOffset(), model.end());
      ASSERT_EQ(package.getEntry(i + 1), nullptr);
      break;
    }
    found.push_back({entry->getOffset(), entry->getSize(), entry->getName().asUTF8()});
    end = entry->getOffset() + entry->getSize();
  }
  ASSERT_EQ(found, named);
  ASSERT_EQ(package.size(), static_cast<int>(named.size() + staleNames));
}

// ---- a package laid out by hand ----

struct Record {
  const char* name;
  std::int64_t offset;
  std::int64_t size;
};
constexpr std::int64_t handDirectory = 185;
const Record end = {".", handDirectory, -1};

struct HandMade {
  std::vector<Record> records;
  int referenceAt = -1; // the packet of that record gets a reference
  bool strings = false; // a packet that no directory holds
  const char* firstByte = "\x8F";
  const char* endOfHeader = "@\n";
  std::int64_t directory = handDirectory;
  ioWriteMethod method = ioWriteBinary;
};

const std::string names = "KestrovaPortablePackageFile\neliFegakcaPelbatroPavortseK\n1\n";

std::string bytesOf(const HandMade& made) {
  std::string pointer = std::to_string(made.directory);
  pointer.resize(23, ' ');
  std::string bytes = made.firstByte + names + made.endOfHeader + pointer + "\n";
  bytes.resize(static_cast<std::size_t>(made.directory), 'x');
  return bytes + qvTest::writePackets(made.method, {"package.entry"}, [&](ioWriteContext& out) {
           for (const Record& record : made.records) {
             const bool isNamed = &record - made.records.data() == made.referenceAt;
             out.startPacket("package.entry", isNamed ? &record : nullptr);
             out.writeCString(record.name);
             for (const std::int64_t value : {record.offset, record.size, std::int64_t(7)})
               out.writeInt64(value);
             out.writeBool(false);
             out.endPacket();
           }
           if (made.strings) out.writeCStringPacket("astray");
         });
}

} // namespace

TEST_F(PackageFile, BytesOfANewPackage) {
  ioPackageFile package, again;
  open(package);
  ASSERT_FALSE(package.update()); // nothing has changed, so nothing is written
  const std::string header = "\x8F" + names + "@\n";
  EXPECT_EQ(scratch_.read("p.package"), header + "-1                     \n");
  const qvUtil::Error error = again.open(name("p.package"));
  EXPECT_EQ(error.num(), 17);
  EXPECT_EQ(std::string(error.message()).find("The file is not a package file: "), 0U);
  EXPECT_FALSE(ioPackageFile::isFilePackageFile(name("p.package")));
  ASSERT_FALSE(add(package, "a", "hello"));
  ASSERT_FALSE(package.update());
  const std::string bytes = scratch_.read("p.package");
  EXPECT_EQ(bytes.substr(0, 90), header + "90                     \nhello");
  const std::string types = "   0 packetFile_string\n   1 packetFile_EOF\n   2 package.entry\n@\n";
  EXPECT_EQ(bytes.substr(90 + 27, types.size()), types);
}

TEST_F(PackageFile, RandomOperationsAgreeWithAModel) {
  qvTest::Random random(20240131);
  const std::string entries[] = {"a", "b/c", "with blank", "\xC3\xA9", "\xF0\x9F\x98\x80", "x.txt", "y", "z"};
  const std::size_t sizes[] = {0, 1, 10, 100, 4095, 4096, 4097, 20000};
  auto package = std::make_unique<ioPackageFile>();
  open(*package);
  std::string file = "p.package";
  Model model;
  std::map<std::string, std::string> contents;
  std::set<std::string> stale; // names whose entry a failed copy has taken away
  int copies = 0;
  int reopened = 0;
  for (int step = 0; step < 3000 && !HasFatalFailure(); ++step) {
    SCOPED_TRACE("step " + std::to_string(step));
    const std::string& entry = entries[random.below(std::size(entries))];
    const std::uint64_t choice = random.below(20);
    const std::size_t size = sizes[random.below(std::size(sizes))];
    if (choice == 0 && size > 0) {
      const FullDisk full;
      ASSERT_EQ(add(*package, entry, std::string(size, 'x')).num(), 10);
      if (contents.erase(entry)) stale.insert(entry);
      model.add(entry, static_cast<std::int64_t>(size));
      model.remove(entry);
    } else if (choice < 13) {
      const std::string bytes = randomBytes(random, size, random.oneIn(2));
      const qvUtil::Error error = add(*package, entry, bytes, random.oneIn(3));
      ASSERT_EQ(error.num(), 0) << error.message();
      model.add(entry, package->getEntry(wide(entry))->getSize());
      contents[entry] = bytes;
      stale.erase(entry);
    } else if (choice < 18) {
      const bool isThere = model.remove(entry) || stale.erase(entry) > 0;
      ASSERT_EQ(package->deleteEntry(wide(entry)).num(), isThere ? 0 : 13);
      contents.erase(entry);
    } else if (choice == 18 && model.dirty) {
      // Without a mark, a name that only filled an exact hole would not be in the file.
      ASSERT_FALSE(package->update());
      package = std::make_unique<ioPackageFile>();
      open(*package, file);
      model.dirty = false;
      stale.clear();
      ++reopened;
    } else if (choice == 19 && !contents.empty()) {
      file = std::to_string(++copies) + ".package";
      ASSERT_FALSE(package->write(name(file)));
      model = Model();
      stale.clear();
      for (const auto& [sorted, index] : package->getDirectory())
        model.add(sorted.asUTF8(), package->getEntry(index)->getSize());
    }
    expectLayout(*package, model, stale.size());
    for (const std::string& lost : stale) ASSERT_EQ(package->getEntry(wide(lost)), nullptr) << lost;
    if (contents.empty() || !random.oneIn(4)) continue;
    const auto some = std::next(contents.begin(), static_cast<std::ptrdiff_t>(random.below(contents.size())));
    ASSERT_TRUE(contentOf(*package, some->first) == some->second) << some->first;
  }
  for (const auto& [entry, bytes] : contents) EXPECT_TRUE(contentOf(*package, entry) == bytes) << entry;
  EXPECT_GT(copies, 10);
  EXPECT_GT(reopened, 10);
}

TEST_F(PackageFile, SizesComeBackCompressedAndNot) {
  qvTest::Random random(4097);
  ioPackageFile package, again;
  open(package);
  std::map<std::string, std::string> contents;
  for (const std::size_t size : {0, 1, 4095, 4096, 4097, 262144, 5000000})
    for (const bool compress : {false, true}) {
      const std::string entry = std::to_string(size) + (compress ? "c" : "");
      contents[entry] = randomBytes(random, size, true);
      ASSERT_FALSE(add(package, entry, contents[entry], compress));
      EXPECT_EQ(package.getEntry(wide(entry))->getCompressed(), compress && size > 1) << entry;
    }
  ASSERT_FALSE(package.update());
  open(again);
  ASSERT_FALSE(again.expand(name("all")));
  ASSERT_FALSE(again.extractEntry(again.getEntry(wide("4097c")), name("new/directory/4097c")));
  EXPECT_TRUE(scratch_.read("new/directory/4097c") == contents["4097c"]);
  for (const auto& [entry, bytes] : contents) {
    EXPECT_TRUE(contentOf(again, entry) == bytes) << entry;
    EXPECT_TRUE(scratch_.read("all/" + entry) == bytes) << entry;
  }
}

TEST_F(PackageFile, NamesAreCleanedUp) {
  const std::pair<const char*, const char*> rows[] = {
      {"a\\b", "a/b"},     {"C:\\x", "x"},       {"C:", ""},       {"./a", "a"},
      {"../a", "a"},       {"//a", "a"},         {"./", "./"},     {"../", "../"},
      {"/../.././x", "x"}, {"a/../b", "a/../b"}, {"C:D:x", "D:x"}, {"..", ".."},
  };
  for (const auto& [in, out] : rows) {
    IString entry(in);
    ioPackageFile::cleanupName(entry);
    EXPECT_STREQ(entry.asUTF8(), out) << in;
  }
}

TEST_F(PackageFile, FailuresHaveTheirCodesAndTexts) {
  ioPackageFile package;
  const IString source = name("source");
  const IString x("x");
  EXPECT_STREQ(package.update().message(), "The package file has not been opened yet.");
  EXPECT_EQ(package.addEntry(source, x, false).num(), 3);
  EXPECT_EQ(package.deleteEntry(x).num(), 3);
  EXPECT_EQ(package.open(name("no/such/directory")).num(), 2);

  open(package);
  ASSERT_FALSE(add(package, "a", "one"));
  ioPackageFile other;
  open(other, "other.package");
  ASSERT_FALSE(add(other, "theirs", "two"));
  const ioPackageFileEntry* theirs = other.getEntry(IString("theirs"));
  const struct {
    int line;
    qvUtil::Error error;
    int code;
    std::string text;
  } rows[] = {
      {__LINE__, package.addEntry(source, IString("dir/con.txt"), false), 11,
       "File is using a windows reserved device name.  Please choose another name: dir/con.txt"},
      {__LINE__, package.addEntry(source, IString(".."), false), 12,
       "File is using a name which is not allowed: .."},
      {__LINE__, package.addEntry(source, IString("/"), false), 11, "The name can not be empty."},
      {__LINE__, package.addEntry(IString("no-such-file"), x, false), 6,
       "File does not exist: no-such-file\n"},
      {__LINE__, package.addEntry(nullptr, x), 7, "The given package file entry is NULL."},
      {__LINE__, package.addEntry(package.getEntry(IString("a")), x), 15,
       "The source entry can not be in the package."},
      {__LINE__, package.addEntry(theirs, IString("a")), 14,
       "The entry is already present in the package: a"},
      {__LINE__, package.deleteEntry(x), 13, "Can not delete named entry as it does not exist: x"},
      {__LINE__, package.extractEntry(nullptr, x), 0, ""},
      {__LINE__, package.write(package.getPackageFileName()), 4, "The package file is not writable."},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.error.num(), row.code) << row.line;
    EXPECT_EQ(row.error.message(), row.text) << row.line;
  }
  EXPECT_EQ(package.extractEntry(theirs, name("source/below")).num(), 5);
  std::filesystem::create_hard_link(scratch_.path("p.package"), scratch_.path("link"));
  for (const char* own : {"./p.package", "link"}) EXPECT_EQ(package.write(name(own)).num(), 4) << own;
  ASSERT_FALSE(package.addEntry(theirs, IString("b")));
  ASSERT_FALSE(package.update());
  ASSERT_FALSE(package.open(package.getPackageFileName()));
  EXPECT_EQ(contentOf(package, "b"), "two");
  EXPECT_EQ(package.getEntry(-1), nullptr);
  EXPECT_EQ(package.getEntry(100), nullptr);
}

TEST_F(PackageFile, APackageThatCannotBeWrittenSaysSo) {
  ioPackageFile package;
  open(package);
  ASSERT_FALSE(add(package, "a", "one"));
  ASSERT_FALSE(package.update());
  package.close();
  const IString a("a"), file = name("p.package"), source = name("source");
  const std::string path = scratch_.path("");
  {
    qvTest::PlatformScript script;
    script.failCall(0, EACCES, "open", 1000);
    EXPECT_EQ(package.deleteEntry(a).num(), 0);
    EXPECT_EQ(package.update().message(), "Could not open package for write: " + path + "p.package");
    EXPECT_EQ(package.addEntry(source, a, true).message(), "Error reading file: " + path + "source");
    EXPECT_EQ(package.addEntry(source, a, false).message(), "Could not read file: " + path + "source\n");
    EXPECT_EQ(package.open(file).message(), "Could not read the package file: " + path + "p.package");
    EXPECT_EQ(package.open(name("new")).message(), "Can not create file: " + path + "new");
  }
  {
    qvTest::PlatformScript script;
    script.failCall(0, EACCES, "access", 1000);
    open(package);
  }
  const char* const text = "This package file can not be modified as it is not writable.";
  EXPECT_STREQ(package.addEntry(source, a, false).message(), text);
  EXPECT_STREQ(package.deleteEntry(a).message(), text);
  EXPECT_EQ(package.deleteEntry(a).num(), 4);
  EXPECT_STREQ(package.update().message(), "The package file is not writable.");
  EXPECT_EQ(contentOf(package, "a"), "one");
}

TEST_F(PackageFile, AnExactHoleIsNotWrittenAndAFullDiskLeavesThePackageUsable) {
  ioPackageFile package, again, last;
  open(package);
  ASSERT_FALSE(add(package, "hole", "12345"));
  ASSERT_FALSE(add(package, "rest", "678"));
  {
    const FullDisk full; // before the end of the copy
    EXPECT_EQ(add(package, "large", std::string(600000, 'c')).num(), 16);
  }
  ASSERT_FALSE(package.deleteEntry(IString("hole")));
  ASSERT_FALSE(package.update());
  open(again);
  ASSERT_FALSE(add(again, "new", "abcde"));
  ASSERT_FALSE(again.update());
  EXPECT_EQ(contentOf(again, "new"), "abcde");
  open(last);
  EXPECT_EQ(last.getEntry(IString("new")), nullptr);
  EXPECT_EQ(contentOf(last, "rest"), "678");
}

TEST_F(PackageFile, HostileDirectoriesAreDamage) {
  const struct {
    int line;
    HandMade made;
    int code;
  } rows[] = {
      {__LINE__, {{{"a", 85, 50}, {"", 135, 50}, end}}, 0},
      {__LINE__, {{end}}, 0},
      {__LINE__, {{{"a", 85, 0}, {"b", 85, 0}, end}}, 0},
      {__LINE__, {{}}, 17},
      {__LINE__, {{{"a", 85, 50}}}, 17},
      {__LINE__, {{{"a", 85, 50}, {"b", 134, 10}, end}}, 17},
      {__LINE__, {{{"a", 85, -1}, end}}, 17},
      {__LINE__, {{{"a", -5, 10}, end}}, 17},
      {__LINE__, {{{"a", 84, 10}, end}}, 17},
      {__LINE__, {{{"a", 85, 101}, end}}, 17},
      {__LINE__, {{{"a", 86, INT64_MAX}, end}}, 17},
      {__LINE__, {{{"a", INT64_MAX, INT64_MAX}, end}}, 17},
      {__LINE__, {{{".", 85, 10}, end}}, 17},
      {__LINE__, {{{"a", 85, 10}, {".", handDirectory + 1, -1}}}, 17},
      {__LINE__, {{{"a", 85, 10}, end}, 0}, 17},
      {__LINE__, {{{"a", 85, 10}, end}, -1, true}, 17},
      {__LINE__, {{{".", 63, -1}}, -1, false, "\x8F", "@\n", 63}, 17}, // inside the pointer to it
      {__LINE__, {{end}, -1, false, "\x8F", "@\n", handDirectory, ioWriteBinaryDebug}, 17},
  };
  for (const auto& row : rows) {
    scratch_.write("p.package", bytesOf(row.made));
    ioPackageFile package;
    const qvUtil::Error error = package.open(name("p.package"));
    EXPECT_EQ(error.num(), row.code) << row.line;
    EXPECT_EQ(package.getPackageFileName().isEmpty(), row.code != 0) << row.line;
    const std::string text = row.code ? "Error reading directory: " + scratch_.path("p.package") : "";
    EXPECT_EQ(error.message(), text) << row.line;
  }
}

TEST_F(PackageFile, OtherFrontsAndNamesThatLeadOut) {
  scratch_.write("p.package", bytesOf({{{"a", 100, 5}, end}, -1, false, ".", "more text @\n"}));
  ioPackageFile package;
  ASSERT_FALSE(package.open(name("p.package")));
  EXPECT_EQ(contentOf(package, "a"), "xxxxx");
  EXPECT_TRUE(ioPackageFile::isFilePackageFile(name("p.package")));
  for (const char* entry : {"../a", "x/../../a", "/a", "\\a", "C:a", "x\\..\\..\\a"}) {
    scratch_.write("p.package", bytesOf({{{entry, 85, 5}, end}}));
    ASSERT_FALSE(package.open(name("p.package")));
    EXPECT_EQ(package.expand(name("out")).num(), 12) << entry;
  }
  EXPECT_FALSE(scratch_.exists("a"));
}

TEST_F(PackageFile, EveryPrefixAndEveryFlippedByteEndsInAStatus) {
  ioPackageFile whole;
  open(whole);
  ASSERT_FALSE(add(whole, "a", "hello"));
  ASSERT_FALSE(add(whole, "b", std::string(500, 'b'), true));
  ASSERT_FALSE(whole.update());
  const std::string good = scratch_.read("p.package");
  int opened = 0;
  const auto tryOpen = [&](const std::string& bytes) {
    scratch_.write("q.package", bytes);
    ioPackageFile package;
    if (package.open(name("q.package"))) return;
    ++opened;
    for (const auto& [entry, index] : package.getDirectory()) (void)contentOf(package.getEntry(index));
  };
  for (std::size_t size = 0; size < good.size(); ++size) tryOpen(good.substr(0, size));
  EXPECT_EQ(opened, 0);
  for (std::size_t i = 0; i < good.size(); ++i) {
    std::string flipped = good;
    flipped[i] = static_cast<char>(flipped[i] ^ 0x55);
    tryOpen(flipped);
  }
  EXPECT_GT(opened, 0);
}
