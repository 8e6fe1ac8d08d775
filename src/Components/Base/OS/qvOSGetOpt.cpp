#include "Base/OS/qvOSGetOpt.h"

#include "Base/OS/qvOSGetOptTable.h"
#include "Base/OS/qvOSGetOptWords.h"
#include "Base/Utility/qvUtilText.h"

#include <algorithm>
#include <initializer_list>

namespace qvOS {

using qvString::CString;
using qvString::IString;
using qvUtil::Error;

static_assert(sizeof(GetOpt) == 2 * sizeof(void*));

struct GetOpt::result {
  const GetOpt::option* option = nullptr;
  qv::vector<IString> arguments;
};

namespace {

using Word = GetOptWords::Word;

constexpr qv::WChar dash = QV_W('-');

bool isDigit(qv::WChar unit) noexcept { return unit >= QV_W('0') && unit <= QV_W('9'); }

bool is(Word word, qv::WChar unit) noexcept { return word.size() == 1 && word[0] == unit; }

bool startsWithDash(Word word) noexcept { return !word.empty() && word[0] == dash; }

bool isOneOf(Word word, std::initializer_list<Word> texts) {
  return std::find(texts.begin(), texts.end(), word) != texts.end();
}

// Only the start is looked at: "12ab" is an integer.
bool looksLikeInteger(Word word) noexcept {
  if (word.size() > 1 && word[0] == dash) word.remove_prefix(1);
  return !word.empty() && isDigit(word[0]);
}

bool looksLikeFloat(Word word) noexcept {
  if (startsWithDash(word)) word.remove_prefix(1);
  if (word.size() >= 2 && word[0] == QV_W('.')) word.remove_prefix(1);
  return !word.empty() && isDigit(word[0]);
}

const IString& emptyText() {
  static const IString text;
  return text;
}

const CString& emptyName() {
  static const CString name;
  return name;
}

} // namespace

// The words, the table, and where the reading stands.
class GetOptImpl {
public:
  explicit GetOptImpl(GetOpt* client) : owner(client) {}

  GetOpt* owner;
  bool hasError = false;
  bool atEnd = false; // once "--" was read; nothing clears it
  bool needDash = true;
  GetOptTable table;
  IString errorText;
  GetOptWords words;
  GetOpt::result current;

  const GetOpt::result* read();
  [[nodiscard]] const char* dashText() const noexcept { return needDash ? "-" : ""; }

private:
  using Validator = Error (GetOpt::*)(const IString&);

  template <class... Args>
  void fail(const char* format, Args... args) {
    hasError = true;
    errorText.format(format, args...);
  }
  [[nodiscard]] const char* name() const { return current.option->name.asChar(); }

  bool readOption();
  void readArguments();
  void readArgument(ArgumentKind kind);
  void store(Word word) { current.arguments.emplace_back().assign(word.data()); }
  void readBool();
  void readMatching(bool (*matches)(Word) noexcept, const char* format);
  void readFile(bool dashIsStream, bool dashIsName, Validator validator, const char* label);
  void readSequence();
};

const GetOpt::result* GetOptImpl::read() {
  current.option = nullptr;
  current.arguments.clear();
  if (hasError || atEnd) return nullptr;
  errorText.erase();
  if (words.empty() || !readOption()) return nullptr;
  readArguments();
  return hasError ? nullptr : &current;
}

// Takes one word. False at the end of the options, and on an error.
bool GetOptImpl::readOption() {
  const Word typed = words.take();
  Word rest = typed;
  if (startsWithDash(rest)) {
    rest.remove_prefix(1);
  } else if (!typed.empty() && needDash) {
    if (is(typed, QV_W('[')) || is(typed, QV_W(']')))
      fail("%C encountered outside of a sequence.", typed[0]);
    else
      fail("Malformed option: no leading dash: %S", typed.data());
    return false;
  }
  if (rest.empty()) {
    fail("Malformed option: no option specified: %S", typed.data());
    return false;
  }
  if (startsWithDash(rest)) rest.remove_prefix(1);
  atEnd = rest.empty();
  if (atEnd) return false;
  current.option = table.find(rest);
  if (!current.option) fail("Option does not exist or is ambiguous: %S", typed.data());
  return current.option != nullptr;
}

void GetOptImpl::readArguments() {
  bool optional = false;
  for (const ArgumentKind kind : current.option->kinds) {
    if (kind == ArgumentKind::optional) optional = true;
    if (words.empty()) {
      if (!optional)
        fail("Insufficient arguments when processing option: %s\nUsage:\n%S", name(),
             owner->getOptionUsage(current.option, false).asWChar());
      return;
    }
    if (optional && (startsWithDash(words.front()) || is(words.front(), QV_W('.')))) return;
    readArgument(kind);
    if (hasError) return;
  }
}

// Takes one word, or a sequence of them, whether it is right or not.
void GetOptImpl::readArgument(ArgumentKind kind) {
  switch (kind) {
  case ArgumentKind::boolean:
    return readBool();
  case ArgumentKind::integer:
    return readMatching(looksLikeInteger, "While processing option: -%s\n  Expected an integer, got: %S");
  case ArgumentKind::floating:
    return readMatching(looksLikeFloat,
                        "While processing option: -%s\n  Expected a floating point value, got: %S");
  case ArgumentKind::string:
    return store(words.take());
  case ArgumentKind::inputFile:
    return readFile(false, false, &GetOpt::validInputFile, "InputFile");
  case ArgumentKind::inputFileOrDash:
    return readFile(true, false, &GetOpt::validInputFile, "InputFile");
  case ArgumentKind::outputFile:
    return readFile(false, false, &GetOpt::validOutputFile, "OutputFile");
  case ArgumentKind::outputFileOrDash:
    return readFile(true, false, &GetOpt::validOutputFile, "OutputFile");
  case ArgumentKind::inOutFile:
    return readFile(false, true, &GetOpt::validInOutFile, "InputOutputFile");
  case ArgumentKind::directory:
    return readFile(false, true, &GetOpt::validDirectory, "Directory");
  case ArgumentKind::sequence:
    return readSequence();
  case ArgumentKind::optional:
    return;
  }
}

void GetOptImpl::readBool() {
  const Word word = words.take();
  if (isOneOf(word, {QV_W("0"), QV_W("false"), QV_W("no"), QV_W("off")})) return store(QV_W("0"));
  if (isOneOf(word, {QV_W("1"), QV_W("true"), QV_W("yes"), QV_W("on")})) return store(QV_W("1"));
  fail("While processing option: -%s\n  Expected a boolean type, got: %S\n"
       "    valid boolean types are: 1, 0, true,  false, yes, no, on, off.",
       name(), word.data());
}

void GetOptImpl::readMatching(bool (*matches)(Word) noexcept, const char* format) {
  const Word word = words.take();
  if (matches(word))
    store(word);
  else
    fail(format, name(), word.data());
}

void GetOptImpl::readFile(bool dashIsStream, bool dashIsName, Validator validator, const char* label) {
  const Word word = words.take();
  if (is(word, dash) && dashIsStream) return store(word);
  IString file(word.data());
  Error error =
      is(word, dash) && !dashIsName ? Error(1, "The filename \"-\" is not valid") : (owner->*validator)(file);
  if (error)
    fail("While processing option: -%s  (%s)\n  %s", name(), label, error.message());
  else
    current.arguments.emplace_back() = std::move(file);
}

// Up to the bracket that closes the outermost one, to a dot, or to the last word. Inner brackets are kept.
void GetOptImpl::readSequence() {
  int depth = 0;
  bool ended = false;
  while (!ended && !words.empty()) {
    const Word word = words.take();
    const bool opensOutermost = is(word, QV_W('[')) && depth++ == 0;
    const bool closesOutermost = is(word, QV_W(']')) && --depth == 0;
    ended = closesOutermost || is(word, QV_W('.'));
    if (!opensOutermost && !ended) store(word);
  }
  if (depth < 0) fail("While processing option: -%s\n  Too many ']' characters", name());
}

GetOpt::GetOpt() : impl_(new GetOptImpl(this)) {}

GetOpt::~GetOpt() { delete impl_; }

// ---- The table ----

int GetOpt::addOption(const char* name, const char* types) {
  return impl_->table.add(name ? name : "", types);
}

void GetOpt::addOptionUsage(int index, const qv::WChar* text) {
  if (option* which = impl_->table.at(index)) which->usage.assign(text);
}

void GetOpt::markOptionDeprecated(int index) {
  if (option* which = impl_->table.at(index)) which->deprecated = true;
}

bool GetOpt::isOptionDeprecated(int index) const { return isOptionDeprecated(getOption(index)); }

bool GetOpt::isOptionDeprecated(const option* which) const { return which && which->deprecated; }

void GetOpt::needLeadingDash(bool need) { impl_->needDash = need; }

bool GetOpt::getNeedLeadingDash() const { return impl_->needDash; }

int GetOpt::getNumOptions() const { return impl_->table.size(); }

const GetOpt::option* GetOpt::getOption(int index) const { return impl_->table.at(index); }

int GetOpt::findOption(const char* name) const {
  return getOptionIndex(impl_->table.names().find(std::string_view(name ? name : "")));
}

const CString& GetOpt::getOptionName(const option* which) const { return which ? which->name : emptyName(); }

int GetOpt::getOptionIndex(const option* which) const { return which ? which->index : -1; }

IString GetOpt::getOptionTitle(const option* which) const {
  IString title;
  if (which) title.format("%s%s%s\n", impl_->dashText(), which->name.asChar(), labelsOf(*which).asChar());
  return title;
}

CString GetOpt::getOptionShortestName(const option* which) const {
  return which ? CString(impl_->table.names().shortest(which->name.view(), which)) : CString();
}

IString GetOpt::getOptionUsage(const option* which, bool withShortest) const {
  IString usage;
  if (!which) return usage;
  IString line;
  const CString labels = labelsOf(*which);
  const auto addLine = [&](const CString& name) {
    line.format("  %s%s%s\n", impl_->dashText(), name.asChar(), labels.asChar());
    usage.append(line);
  };
  const CString shortest = getOptionShortestName(which);
  if (withShortest && shortest != which->name) addLine(shortest);
  addLine(which->name);
  for (IString& text : qvUtil::split(which->usage, QV_W('\n'), false, false)) {
    line.format("    %S\n", text.stripSpaces().rstripSpaces().asWChar());
    usage.append(line);
  }
  return usage;
}

void GetOpt::getSortedOptions(qv::vector<int>& indices) const {
  indices.clear();
  for (int i = 0; i < impl_->table.size(); ++i) indices.push_back(i);
  std::sort(indices.begin(), indices.end(),
            [&](int a, int b) { return impl_->table.at(a)->name < impl_->table.at(b)->name; });
}

// ---- Reading ----

void GetOpt::initialize(const qv::vector<IString>& words) {
  impl_->words.clear();
  for (const IString& word : words) impl_->words.add(word.asWChar());
}

void GetOpt::initialize(int count, const qv::WChar* const* words) {
  impl_->words.clear();
  for (int i = 0; i < count; ++i) impl_->words.add(words[i] ? words[i] : QV_W(""));
}

void GetOpt::initialize(int count, const char* const* words) {
  impl_->words.clear();
  for (int i = 0; i < count; ++i) impl_->words.addNative(words[i] ? words[i] : "");
}

const GetOpt::result* GetOpt::getOpt() { return impl_->read(); }

const GetOpt::result* GetOpt::getCurrentResult() const {
  return impl_->current.option ? &impl_->current : nullptr;
}

bool GetOpt::hasErrors() const { return impl_->hasError; }

const IString& GetOpt::getError() const { return impl_->errorText; }

void GetOpt::resetError() { impl_->hasError = false; }

void GetOpt::abort() { impl_->hasError = true; }

void GetOpt::remaining(qv::vector<IString>& words) const { impl_->words.copyTo(words); }

// ---- What was read ----

const GetOpt::option* GetOpt::getResultOption(const result* which) const {
  return which ? which->option : nullptr;
}

const CString& GetOpt::getResultName(const result* which) const {
  return getOptionName(getResultOption(which));
}

int GetOpt::getResultIndex(const result* which) const { return getOptionIndex(getResultOption(which)); }

int GetOpt::getNumArguments(const result* which) const { return which ? which->arguments.size() : 0; }

const IString& GetOpt::getResultArg(const result* which, int index) const {
  return index >= 0 && index < getNumArguments(which) ? which->arguments[index] : emptyText();
}

void GetOpt::getResultArgs(const result* which, qv::vector<IString>& arguments) const {
  arguments.clear();
  if (which) arguments = which->arguments;
}

} // namespace qvOS
