#include "Base/OS/qvOSGetOpt.h"

#include "Base/OS/qvOSGetOptTable.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Utility/qvUtilText.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <vector>

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

constexpr qv::WChar dash = QV_W('-');

bool isDigit(qv::WChar unit) noexcept { return unit >= QV_W('0') && unit <= QV_W('9'); }

bool is(const IString& word, qv::WChar unit) { return word.length() == 1 && word[0] == unit; }

bool startsWithDash(const IString& word) { return word.length() > 0 && word[0] == dash; }

bool isOneOf(const IString& word, std::initializer_list<std::basic_string_view<qv::WChar>> texts) {
  return std::find(texts.begin(), texts.end(), word.view()) != texts.end();
}

// Only the start is looked at: "12ab" is an integer.
bool looksLikeInteger(const IString& word) {
  const auto text = word.view();
  return text.size() > 0 && (isDigit(text[0]) || (text.size() > 1 && text[0] == dash && isDigit(text[1])));
}

bool looksLikeFloat(const IString& word) {
  auto text = word.view();
  if (!text.empty() && text[0] == dash) text.remove_prefix(1);
  if (text.size() >= 2 && text[0] == QV_W('.')) text.remove_prefix(1);
  return !text.empty() && isDigit(text[0]);
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
  qv::vector<IString> words;
  int next = 0; // the first of `words` that is not read
  GetOpt::result current;

  const GetOpt::result* read();
  [[nodiscard]] const char* dashText() const noexcept { return needDash ? "-" : ""; }

private:
  using Validator = Error (GetOpt::*)(const IString&);

  [[nodiscard]] bool hasWord() const noexcept { return next < words.size(); }
  template <class... Args>
  void fail(const char* format, Args... args) {
    hasError = true;
    errorText.format(format, args...);
  }
  [[nodiscard]] const char* name() const { return current.option->name.asChar(); }

  bool findOption();
  void readArguments();
  void readArgument(ArgumentKind kind);
  void take() { current.arguments.emplace_back() = std::move(words[next++]); }
  void readBool();
  void readMatching(bool (*matches)(const IString&), const char* format);
  void readFile(bool dashIsStream, bool dashIsName, Validator validator, const char* label);
  void readSequence();
};

const GetOpt::result* GetOptImpl::read() {
  current.option = nullptr;
  current.arguments.clear();
  if (hasError || atEnd) return nullptr;
  errorText.erase();
  if (!hasWord() || !findOption()) return nullptr;
  readArguments();
  return hasError ? nullptr : &current;
}

// Takes one word. False at the end of the options, and on an error.
bool GetOptImpl::findOption() {
  const IString& typed = words[next++];
  const bool dashed = startsWithDash(typed);
  if (!typed.isEmpty() && !dashed && needDash) {
    if (is(typed, QV_W('[')) || is(typed, QV_W(']')))
      fail("%C encountered outside of a sequence.", typed[0]);
    else
      fail("Malformed option: no leading dash: %S", typed.asWChar());
    return false;
  }
  unsigned int skip = dashed ? 1 : 0;
  if (typed.length() == skip) {
    fail("Malformed option: no option specified: %S", typed.asWChar());
    return false;
  }
  if (typed[skip] == dash) {
    ++skip;
    atEnd = typed.length() == skip;
    if (atEnd) return false;
  }
  current.option = table.find(typed, skip);
  if (!current.option) fail("Option does not exist or is ambiguous: %S", typed.asWChar());
  return current.option != nullptr;
}

void GetOptImpl::readArguments() {
  bool optional = false;
  for (const ArgumentKind kind : current.option->kinds) {
    if (kind == ArgumentKind::optional) optional = true;
    if (!hasWord()) {
      if (!optional)
        fail("Insufficient arguments when processing option: %s\nUsage:\n%S", name(),
             owner->getOptionUsage(current.option, false).asWChar());
      return;
    }
    if (optional && (startsWithDash(words[next]) || is(words[next], QV_W('.')))) return;
    readArgument(kind);
    if (hasError) return;
  }
}

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
    return take();
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
  const IString& word = words[next++];
  const bool off = isOneOf(word, {QV_W("0"), QV_W("false"), QV_W("no"), QV_W("off")});
  const bool on = isOneOf(word, {QV_W("1"), QV_W("true"), QV_W("yes"), QV_W("on")});
  if (off || on)
    current.arguments.push_back(IString(on ? QV_W('1') : QV_W('0')));
  else
    fail("While processing option: -%s\n  Expected a boolean type, got: %S\n"
         "    valid boolean types are: 1, 0, true,  false, yes, no, on, off.",
         name(), word.asWChar());
}

void GetOptImpl::readMatching(bool (*matches)(const IString&), const char* format) {
  if (matches(words[next]))
    take();
  else
    fail(format, name(), words[next++].asWChar());
}

void GetOptImpl::readFile(bool dashIsStream, bool dashIsName, Validator validator, const char* label) {
  const bool isDash = is(words[next], dash);
  Error error;
  if (isDash && !dashIsStream && !dashIsName)
    error = Error(1, "The filename \"-\" is not valid");
  else if (!isDash || !dashIsStream)
    error = (owner->*validator)(words[next]);
  if (!error) return take();
  ++next;
  fail("While processing option: -%s  (%s)\n  %s", name(), label, error.message());
}

// Up to the bracket that closes the outermost one, to a dot, or to the last word. Inner brackets are kept.
void GetOptImpl::readSequence() {
  int depth = 0;
  while (hasWord()) {
    const IString& word = words[next];
    const bool opensOutermost = is(word, QV_W('[')) && depth++ == 0;
    const bool closesOutermost = is(word, QV_W(']')) && --depth == 0;
    const bool ends = closesOutermost || is(word, QV_W('.'));
    if (opensOutermost || ends)
      ++next;
    else
      take();
    if (ends) break;
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

CString GetOpt::getOptionName(const option* which) const { return which ? which->name : CString(); }

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
  impl_->words = words;
  impl_->next = 0;
}

void GetOpt::initialize(int count, const qv::WChar* const* words) {
  impl_->words.clear();
  impl_->next = 0;
  for (int i = 0; i < count; ++i) impl_->words.push_back(IString(words[i]));
}

void GetOpt::initialize(int count, const char* const* words) {
  impl_->words.clear();
  impl_->next = 0;
  for (int i = 0; i < count; ++i) impl_->words.push_back(fromNativePath(CString(words[i])));
}

const GetOpt::result* GetOpt::getOpt() { return impl_->read(); }

const GetOpt::result* GetOpt::getCurrentResult() const {
  return impl_->current.option ? &impl_->current : nullptr;
}

bool GetOpt::hasErrors() const { return impl_->hasError; }

const IString& GetOpt::getError() const { return impl_->errorText; }

void GetOpt::resetError() { impl_->hasError = false; }

void GetOpt::abort() { impl_->hasError = true; }

void GetOpt::remaining(qv::vector<IString>& words) const {
  words.assign(impl_->words.begin() + impl_->next, impl_->words.end());
}

// ---- What was read ----

const GetOpt::option* GetOpt::getResultOption(const result* which) const {
  return which ? which->option : nullptr;
}

CString GetOpt::getResultName(const result* which) const { return getOptionName(getResultOption(which)); }

int GetOpt::getResultIndex(const result* which) const { return getOptionIndex(getResultOption(which)); }

int GetOpt::getNumArguments(const result* which) const { return which ? which->arguments.size() : 0; }

IString GetOpt::getResultArg(const result* which, int index) const {
  return index >= 0 && index < getNumArguments(which) ? which->arguments[index] : IString();
}

void GetOpt::getResultArgs(const result* which, qv::vector<IString>& arguments) const {
  arguments.clear();
  if (which) arguments = which->arguments;
}

} // namespace qvOS
