// The declared options and the search for a name among them. Not installed.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/OS/qvOSGetOpt.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"

#include <memory>
#include <string_view>
#include <vector>

namespace qvOS {

/// What an argument may be; the numbers are the rows of the table of words and labels.
enum class ArgumentKind {
  boolean,
  integer,
  floating,
  string,
  inputFile,
  inputFileOrDash,
  outputFile,
  outputFileOrDash,
  inOutFile,
  directory,
  sequence,
  optional, ///< Takes no argument; all that follow may be left out.
};

struct GetOpt::option {
  int index = -1; // until it is added
  qvString::CString name;
  qvString::IString typeString;
  qvString::IString usage;
  qv::vector<ArgumentKind> kinds;
  bool deprecated = false;
};

/// A blank and a label for each kind of argument.
[[nodiscard]] qvString::CString labelsOf(const GetOpt::option& option);

/// All names as a tree of characters. Nodes lie in one block; a node's children are a chain of siblings.
class GetOptNames {
public:
  using Option = GetOpt::option;

  GetOptNames() : nodes_(1) {}

  /// Adds a name; false where it is taken.
  bool insert(std::string_view name, const Option* option);

  /// The option of exactly that name, else the one that the name completes to: where each node on has one
  /// child, the option at the last. An option in between is passed over, so `a` finds `abc` beside `ab`. Null
  /// where there is none or the name is ambiguous. `Char` is a narrow or wide character; wide names must be
  /// ASCII.
  template <class Char>
  [[nodiscard]] const Option* find(std::basic_string_view<Char> name) const;

  /// What is to be typed at least to name the option, one character or more.
  [[nodiscard]] std::string_view shortest(std::string_view name, const Option* option) const;

private:
  static constexpr int none = -1;
  struct Node {
    char character = 0;
    int passCount = 0; // how many names lead through here
    const Option* option = nullptr;
    int firstChild = none;
    int nextSibling = none;
  };

  [[nodiscard]] int child(int node, char character) const noexcept;
  int makeChild(int node, char character);

  std::vector<Node> nodes_; // the first is the root
};

/// The options in the order in which they were added.
class GetOptTable {
public:
  using Option = GetOpt::option;

  int add(std::string_view names, const char* types);
  [[nodiscard]] int size() const noexcept { return static_cast<int>(options_.size()); }
  [[nodiscard]] Option* at(int index) const noexcept;
  [[nodiscard]] const Option* find(std::basic_string_view<qv::WChar> name) const;
  [[nodiscard]] const GetOptNames& names() const noexcept { return names_; }

private:
  std::vector<std::unique_ptr<Option>> options_;
  GetOptNames names_;
};

} // namespace qvOS
