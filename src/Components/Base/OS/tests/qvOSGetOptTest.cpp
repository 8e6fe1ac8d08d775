#include "Base/OS/qvOSGetOpt.h"

#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

namespace {

using qvOS::GetOpt;
using qvString::CString;
using qvString::IString;
using qvUtil::Error;

qv::vector<IString> wordsOf(const std::string& text) {
  qv::vector<IString> words;
  std::istringstream in(text);
  for (std::string word; in >> word;)
    words.push_back(IString(word == "''" ? "" : word.c_str(), qvString::UTF8Encoding));
  return words;
}

// Reads all options: "name(arguments) ... !error +words that are left".
std::string readAll(GetOpt& options) {
  std::string told;
  qv::vector<IString> texts;
  while (const GetOpt::result* result = options.getOpt()) {
    told += std::string(options.getResultName(result).asChar()) + "(";
    options.getResultArgs(result, texts);
    for (int i = 0; i < texts.size(); ++i) told += std::string(i ? "," : "") + texts[i].asUTF8();
    told += ") ";
  }
  if (options.hasErrors()) told += std::string("!") + options.getError().asUTF8() + " ";
  options.remaining(texts);
  for (const IString& text : texts) told += std::string("+") + text.asUTF8() + " ";
  if (!told.empty()) told.pop_back();
  return told;
}

std::string readAll(GetOpt& options, const std::string& words) {
  options.initialize(wordsOf(words));
  return readAll(options);
}

// Options of every kind, with file checks that only look at the name.
class Options : public GetOpt {
public:
  Options() {
    using Names = std::initializer_list<const char*>;
    for (const char* name : Names{"open", "outer", "out", "\xc3\xa9t\xc3\xa9"}) addOption(name, "");
    for (const char* type : Names{"sequence", "bool", "int", "float", "inputfile", "inputfile-", "outputfile",
                                  "outputfile-", "inoutfile", "directory"})
      addOption(type, type);
    addOption("size", "int ? int");
    addOption("text", "string string");
    addOption("many", "? string float");
    addOption("j|jobs", "integer  int");
  }
  Error validInputFile(const IString& name) override { return check("input", name); }
  Error validOutputFile(const IString& name) override { return check("output", name); }
  Error validDirectory(const IString& name) override { return check("directory", name); }

private:
  static Error check(const char* what, const IString& name) {
    return name.find(IString(what)) == IString::npos ? Error() : Error(7, "no %s %S", what, name.asWChar());
  }
};

TEST(GetOpt, ReadsCommandLines) {
  const std::string unknown = "!Option does not exist or is ambiguous: ";
  const std::string processing = "!While processing option: -";
  const struct {
    int line;
    std::string words;
    std::string told;
  } rows[] = {
      {__LINE__, "", ""},
      {__LINE__, "-op --open -out -oute", "open() open() out() outer()"},
      {__LINE__, "-o x", unknown + "-o +x"},
      {__LINE__, "--zzz", unknown + "--zzz"},
      {__LINE__, "-\xc3\xa9 -\xc3\xa9t", "\xc3\xa9t\xc3\xa9() \xc3\xa9t\xc3\xa9()"},
      {__LINE__, "- x", "!Malformed option: no option specified: - +x"},
      {__LINE__, "'' x", "!Malformed option: no option specified:  +x"},
      {__LINE__, "open", "!Malformed option: no leading dash: open"},
      {__LINE__, "[ -open", "![ encountered outside of a sequence. +-open"},
      {__LINE__, "]", "!] encountered outside of a sequence."},
      {__LINE__, "-open -- -out x", "open() +-out +x"},
      {__LINE__, "-size 3 4 -open", "size(3,4) open()"},
      {__LINE__, "-size 3 -open", "size(3) open()"},
      {__LINE__, "-size 3 -4", "size(3) " + unknown + "-4"},
      {__LINE__, "-size 3 . -open", "size(3) !Malformed option: no leading dash: . +-open"},
      {__LINE__, "-size",
       "!Insufficient arguments when processing option: size\nUsage:\n  -size integer ? integer\n"},
      {__LINE__, "-text -open -- -many", "text(-open,--) many()"},
      {__LINE__, "-many a x", processing + "many\n  Expected a floating point value, got: x"},
      {__LINE__, "-jobs 4 -j -12ab", "jobs(4) jobs(-12ab)"}, // an unknown kind is dropped
      {__LINE__, "-int - -open", processing + "int\n  Expected an integer, got: - +-open"},
      {__LINE__, "-int +3", processing + "int\n  Expected an integer, got: +3"},
      {__LINE__, "-float 1 -float -.5x -float -1", "float(1) float(-.5x) float(-1)"},
      {__LINE__, "-float -.", processing + "float\n  Expected a floating point value, got: -."},
      {__LINE__, "-bool yes -bool on -bool true -bool 1", "bool(1) bool(1) bool(1) bool(1)"},
      {__LINE__, "-bool no -bool off -bool false -bool 0", "bool(0) bool(0) bool(0) bool(0)"},
      {__LINE__, "-bool TRUE",
       processing + "bool\n  Expected a boolean type, got: TRUE\n"
                    "    valid boolean types are: 1, 0, true,  false, yes, no, on, off."},
      {__LINE__, "-sequence [ a [ b ] c ] -open", "sequence(a,[,b,],c) open()"},
      {__LINE__, "-sequence a -b [ c ] -open", "sequence(a,-b,c) open()"},
      {__LINE__, "-sequence [ a [ . -open", "sequence(a,[) open()"},
      {__LINE__, "-sequence ] [ [ x", "sequence(],[,x)"},
      {__LINE__, "-sequence a ] ] b", processing + "sequence\n  Too many ']' characters"},
      {__LINE__, "-inputfile a -inputfile- -", "inputfile(a) inputfile-(-)"},
      {__LINE__, "-inputfile - b",
       processing + "inputfile  (InputFile)\n  The filename \"-\" is not valid +b"},
      {__LINE__, "-inputfile- input", processing + "inputfile-  (InputFile)\n  no input input"},
      {__LINE__, "-outputfile a -outputfile- -", "outputfile(a) outputfile-(-)"},
      {__LINE__, "-outputfile -", processing + "outputfile  (OutputFile)\n  The filename \"-\" is not valid"},
      {__LINE__, "-outputfile- output", processing + "outputfile-  (OutputFile)\n  no output output"},
      {__LINE__, "-inout - -directory -", "inoutfile(-) directory(-)"},
      {__LINE__, "-inout inputoutput", processing + "inoutfile  (InputOutputFile)\n  no input inputoutput"},
      {__LINE__, "-inout output", processing + "inoutfile  (InputOutputFile)\n  no output output"},
      {__LINE__, "-directory directory", processing + "directory  (Directory)\n  no directory directory"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    Options options;
    EXPECT_EQ(readAll(options, row.words), row.told);
  }
}

TEST(GetOpt, GoesOnAsItIsTold) {
  Options options;
  EXPECT_EQ(readAll(options, "-int x -open"),
            "!While processing option: -int\n  Expected an integer, got: x +-open");
  EXPECT_EQ(options.getResultName(options.getCurrentResult()), "int");
  EXPECT_EQ(options.getOpt(), nullptr);
  EXPECT_EQ(options.getCurrentResult(), nullptr);
  options.resetError();
  EXPECT_EQ(readAll(options), "open()");
  options.initialize(wordsOf("-open -out"));
  const GetOpt::result* result = options.getOpt();
  EXPECT_EQ(options.getResultOption(result), options.getOption(options.getResultIndex(result)));
  options.abort();
  EXPECT_EQ(readAll(options), "! +-out");
  options.resetError();
  options.needLeadingDash(false);
  EXPECT_EQ(readAll(options, "out -out --out"), "out() out() out()");
  EXPECT_EQ(readAll(options, "--"), "");
  EXPECT_EQ(readAll(options, "open"), "+open"); // the end stays

  Options narrow;
  const char* const bytes[] = {"-text", "h\xc3\xa9", "a\xff"};
  narrow.initialize(3, bytes);
  const GetOpt::result* text = narrow.getOpt();
  EXPECT_EQ(narrow.getResultArg(text, 0), IString(QV_W("h\u00e9")));
  EXPECT_EQ(narrow.getResultArg(text, 1), qvOS::fromNativePath("a\xff")) << "no byte is lost";
  for (const int index : {2, -1}) EXPECT_EQ(narrow.getResultArg(text, index), IString());
  EXPECT_EQ(narrow.getNumArguments(nullptr), 0);
  const qv::WChar* const wide[] = {QV_W("-o"), QV_W("-open")};
  narrow.initialize(2, wide);
  EXPECT_EQ(readAll(narrow), "!Option does not exist or is ambiguous: -o +-open");
  narrow.initialize(0, bytes);
  EXPECT_EQ(readAll(narrow), "!Option does not exist or is ambiguous: -o");
}

TEST(GetOpt, ExplainsItsTable) {
  GetOpt options;
  EXPECT_EQ(options.addOption("zoom", "float ? sequence inputfile- outputfile- directory"), 0);
  EXPECT_EQ(options.addOption("q|quiet", nullptr), 1);
  EXPECT_EQ(options.addOption("quiet", "int"), -1);
  EXPECT_EQ(options.addOption("zoom|quick", "bool nothing"), 2); // the second name is taken and left out
  EXPECT_EQ(options.addOption("quicker", nullptr), 3);
  EXPECT_EQ(options.addOption(nullptr, nullptr), 4);
  EXPECT_TRUE(!options.getOption(5) && !options.getOption(-1));
  EXPECT_EQ(options.getOptionIndex(nullptr), -1);
  EXPECT_EQ(options.findOption("quick"), 2);
  EXPECT_EQ(options.findOption(""), 4);
  const GetOpt::option* zoom = options.getOption(0);
  EXPECT_STREQ(options.getOptionTitle(zoom).asUTF8(), "-zoom float ? sequence file file directory\n");
  // Both attempts to name something "zoom" count, so no shorter prefix is its own.
  const char* const shortest[] = {"zoom", "q", "quick", "quicke", ""};
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(options.getOptionShortestName(options.getOption(i)), shortest[i]) << i;

  options.addOptionUsage(1, QV_W("  Says nothing. \n\nReally\r\n"));
  const IString usage = options.getOptionUsage(options.getOption(1), true);
  EXPECT_STREQ(usage.asUTF8(), "  -q\n  -quiet\n    Says nothing.\n    \n    Really\n");
  options.addOptionUsage(1, QV_W("Short"));
  options.needLeadingDash(false);
  EXPECT_STREQ(options.getOptionUsage(options.getOption(1), false).asUTF8(), "  quiet\n    Short\n");

  options.markOptionDeprecated(3);
  options.markOptionDeprecated(77); // As the usage of 9, for nobody.
  options.addOptionUsage(9, QV_W("ignored"));
  for (int i = -1; i < 5; ++i) EXPECT_EQ(options.isOptionDeprecated(i), i == 3);
  qv::vector<int> sorted;
  options.getSortedOptions(sorted);
  EXPECT_EQ(sorted, (qv::vector<int>{4, 2, 3, 1, 0}));
}

TEST(GetOpt, ChecksFilesOnTheDisk) {
  const qvTest::Directory scratch;
  scratch.write("file", "x");
  GetOpt options;
  using Check = Error (GetOpt::*)(const IString&);
  constexpr Check in = &GetOpt::validInputFile, out = &GetOpt::validOutputFile,
                  both = &GetOpt::validInOutFile, directory = &GetOpt::validDirectory;
  const struct {
    int line;
    Check check;
    const char* name;
    int right; // the call for a right that fails: 0 reading, 1 writing
    const char* error;
  } rows[] = {
      {__LINE__, in, "file", -1, ""},
      {__LINE__, in, "none", -1, "%s does not exist."},
      {__LINE__, in, ".", -1, "%s exists but is not a file."},
      {__LINE__, in, "file", 0, "%s is not readable."},
      {__LINE__, in, "aux.txt", -1, "aux is a reserved device name.  Please choose another name."},
      {__LINE__, out, "file", -1, ""},
      {__LINE__, out, "fresh", -1, ""},
      {__LINE__, out, "file", 1, "%s is not writable."},
      {__LINE__, out, "none/fresh", -1, "Directory for %s does not exist."},
      {__LINE__, out, "file/fresh", -1, "%s is not a valid path."},
      {__LINE__, out, "fresh", 1, "Directory is not writable: %d"},
      {__LINE__, both, "file", -1, ""},
      {__LINE__, both, "file", 3, "%s is not writable."},
      {__LINE__, directory, ".", -1, ""},
      {__LINE__, directory, "none", -1, "%s does not exist."},
      {__LINE__, directory, "file", -1, "%s exists but is not a directory."},
  };
  const IString base = qvOS::fromNativePath(CString(scratch.path().c_str()));
  const int denied = qvPlatform::errorNumber(qvPlatform::ErrorKind::denied);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const IString name = std::string(row.name) == "."
                             ? base
                             : base + IString(QV_W("\\")) + qvOS::fromNativePath(CString(row.name));
    qvTest::PlatformScript script;
    if (row.right >= 0) script.failCall(row.right, denied, "access");
    IString error(row.error);
    error.replace(IString("%s"), name);
    error.replace(IString("%d"), base);
    const Error told = (options.*row.check)(name);
    EXPECT_STREQ(told.message(), error.asMultibyte());
    EXPECT_EQ(told.num(), *row.error ? 1 : 0);
  }
  qvTest::PlatformScript script;
  script.failCall(1, denied, "access");
  EXPECT_STREQ(options.validOutputFile("no-such-file-here").message(),
               "The current directory is not writable.");
}

// What the search is to find, told by going through all the names.
int naiveFind(const std::map<std::string, int>& names, std::string word) {
  if (const auto exact = names.find(word); exact != names.end()) return exact->second;
  for (;;) {
    std::string next;
    for (const auto& [name, index] : names)
      if (name.size() > word.size() && name.starts_with(word) && next.find(name[word.size()]) == next.npos)
        next += name[word.size()];
    if (next.size() != 1) return next.empty() && names.contains(word) ? names.at(word) : -1;
    word += next;
  }
}

TEST(GetOpt, FindsWhatTheNaiveSearchFinds) {
  qvTest::Random random(45);
  const auto word = [&](int longest) {
    std::string text;
    for (int i = random.between(0, longest); i > 0; --i) text += static_cast<char>('a' + random.below(3));
    return text;
  };
  int found = 0;
  for (int round = 0; round < 200; ++round) {
    GetOpt options;
    std::map<std::string, int> names;
    for (int i = random.between(1, 12); i > 0; --i) {
      const std::string name = word(6);
      const int index = options.addOption(name.c_str(), nullptr);
      EXPECT_EQ(index >= 0, !names.contains(name));
      names.emplace(name, index);
    }
    for (int i = 0; i < 100; ++i) {
      const std::string typed = word(6);
      const int index = naiveFind(names, typed);
      ASSERT_EQ(options.findOption(typed.c_str()), index) << typed;
      found += index >= 0;
    }
  }
  EXPECT_GT(found, 1000);
}

} // namespace
