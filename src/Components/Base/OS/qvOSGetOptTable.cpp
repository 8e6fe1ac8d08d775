#include "Base/OS/qvOSGetOptTable.h"

#include "Base/Utility/qvUtilText.h"

#include <algorithm>
#include <iterator>

namespace qvOS {

using qvString::CString;
using qvString::IString;

namespace {

// In the order of `ArgumentKind`.
constexpr struct {
  std::string_view word;
  const char* label;
} kindTable[] = {
    {"bool", "bool"},      {"int", "integer"},         {"float", "float"},       {"string", "string"},
    {"inputfile", "file"}, {"inputfile-", "file"},     {"outputfile", "file"},   {"outputfile-", "file"},
    {"inoutfile", "file"}, {"directory", "directory"}, {"sequence", "sequence"}, {"?", "?"},
};
static_assert(std::size(kindTable) == static_cast<int>(ArgumentKind::optional) + 1);

qv::vector<ArgumentKind> parseKinds(const char* types) {
  qv::vector<ArgumentKind> kinds;
  for (const CString& word : qvUtil::split(CString(types), ' ', true, false)) {
    const auto* row = std::find_if(std::begin(kindTable), std::end(kindTable),
                                   [&](const auto& each) { return each.word == word.view(); });
    if (row != std::end(kindTable)) kinds.push_back(static_cast<ArgumentKind>(row - kindTable));
  }
  return kinds;
}

} // namespace

CString labelsOf(const GetOpt::option& option) {
  CString text;
  for (const ArgumentKind kind : option.kinds)
    text.append(' ').append(kindTable[static_cast<int>(kind)].label);
  return text;
}

int GetOptNames::child(int node, char character) const noexcept {
  int at = nodes_[node].firstChild;
  while (at != none && nodes_[at].character != character) at = nodes_[at].nextSibling;
  return at;
}

int GetOptNames::makeChild(int node, char character) {
  const int made = static_cast<int>(nodes_.size());
  Node fresh;
  fresh.character = character;
  fresh.nextSibling = nodes_[node].firstChild;
  nodes_.push_back(fresh);
  nodes_[node].firstChild = made;
  return made;
}

// The counts of a name that turns out to be taken stay raised.
bool GetOptNames::insert(std::string_view name, const Option* option) {
  int node = 0;
  ++nodes_[node].passCount;
  for (const char character : name) {
    const int next = child(node, character);
    node = next == none ? makeChild(node, character) : next;
    ++nodes_[node].passCount;
  }
  if (nodes_[node].option) return false;
  nodes_[node].option = option;
  return true;
}

template <class Char>
const GetOptNames::Option* GetOptNames::find(std::basic_string_view<Char> name) const {
  int node = 0;
  for (const Char character : name) {
    node = child(node, static_cast<char>(character));
    if (node == none) return nullptr;
  }
  if (nodes_[node].option) return nodes_[node].option;
  while (nodes_[node].firstChild != none) {
    node = nodes_[node].firstChild;
    if (nodes_[node].nextSibling != none) return nullptr;
  }
  return nodes_[node].option;
}

template const GetOptNames::Option* GetOptNames::find(std::basic_string_view<char>) const;
template const GetOptNames::Option* GetOptNames::find(std::basic_string_view<qv::WChar>) const;

std::string_view GetOptNames::shortest(std::string_view name, const Option* option) const {
  std::size_t length = 0;
  for (int node = 0; length < name.size(); ++length) {
    if (length > 0 && (nodes_[node].option == option || nodes_[node].passCount == 1)) break;
    node = child(node, name[length]);
  }
  return name.substr(0, length);
}

int GetOptTable::add(std::string_view names, const char* types) {
  const std::size_t bar = names.find('|');
  const std::string_view name = bar == names.npos ? names : names.substr(bar + 1);
  auto option = std::make_unique<Option>();
  option->name = CString(name);
  if (types) {
    option->typeString = IString(types, qvString::UTF8Encoding);
    option->kinds = parseKinds(types);
  }
  if (!names_.insert(name, option.get())) return -1;
  option->index = size();
  options_.push_back(std::move(option));
  if (bar != names.npos) names_.insert(names.substr(0, bar), options_.back().get());
  return options_.back()->index;
}

GetOptTable::Option* GetOptTable::at(int index) const noexcept {
  return index >= 0 && index < size() ? options_[index].get() : nullptr;
}

// ASCII, which nearly every name is, needs no conversion.
const GetOptTable::Option* GetOptTable::find(std::basic_string_view<qv::WChar> name) const {
  if (std::all_of(name.begin(), name.end(), [](qv::WChar unit) { return unit < 0x80; }))
    return names_.find(name);
  const IString text(name);
  return names_.find(std::string_view(text.asUTF8()));
}

} // namespace qvOS
