// Command lines, read against a table of typed options that the program declares as it runs. A program loops
// on `getOpt`, which returns one option with its arguments at a time.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/qvBase.h"

namespace qvOS {

class GetOptImpl;

/// A command line and its table of options. An option may be shortened to any prefix that stays unique;
/// `-name` and `--name` are the same; `--` alone ends the options. Nothing is printed and nothing is thrown.
/// Belongs to one thread. Virtual order is part of the interface.
class QV_BASE_API GetOpt {
public:
  /// An option of the table, valid as long as this object.
  struct option;
  /// An option that was read, valid until the next `getOpt`.
  struct result;

  GetOpt();
  GetOpt(const GetOpt&) = delete;
  GetOpt& operator=(const GetOpt&) = delete;
  virtual ~GetOpt();

  // The checks of file arguments, for a program to override. Each returns no error, or code 1 with a text
  // that names what is wrong.

  /// An existing, readable file.
  virtual qvUtil::Error validInputFile(const qvString::IString& name);
  /// A writable file, or a new one in a writable directory.
  virtual qvUtil::Error validOutputFile(const qvString::IString& name);
  /// Both of the above, the input first, each as overridden.
  virtual qvUtil::Error validInOutFile(const qvString::IString& name);
  /// An existing directory.
  virtual qvUtil::Error validDirectory(const qvString::IString& name);
  /// Not a name that Windows keeps for a device, else code 1.
  qvUtil::Error validFileName(const qvString::IString& name);

  // ---- The table ----

  /// Adds an option. `name` is its name, or "other|name" with a second name in front. `types` (may be null)
  /// lists the kinds of its arguments, separated by blanks:
  ///
  ///     bool  int  float  string  inputfile  inputfile-  outputfile  outputfile-  inoutfile  directory
  ///     sequence  ?
  ///
  /// A "-" at the end lets the word `-` stand for a standard stream; "?" makes every argument after it
  /// optional. Any other word is skipped without a message.
  /// @return the option's index, or -1 where its name is taken; a second name that is taken is left out.
  int addOption(const char* name, const char* types);
  /// Replaces the text that the usage of an option ends with. An unknown index is ignored, here and below.
  void addOptionUsage(int index, const qv::WChar* text);
  void markOptionDeprecated(int index);
  [[nodiscard]] bool isOptionDeprecated(int index) const;
  [[nodiscard]] bool isOptionDeprecated(const option* which) const;
  /// Whether an option must start with a dash, as it must unless told otherwise. One that starts with a dash
  /// always is one.
  void needLeadingDash(bool need);
  [[nodiscard]] bool getNeedLeadingDash() const;

  [[nodiscard]] int getNumOptions() const;
  /// Null for an unknown index.
  [[nodiscard]] const option* getOption(int index) const;
  /// The index of the option that `name` names or shortens, or -1 where there is none or more than one.
  [[nodiscard]] int findOption(const char* name) const;
  [[nodiscard]] const qvString::CString& getOptionName(const option* which) const;
  /// -1 for null.
  [[nodiscard]] int getOptionIndex(const option* which) const;
  /// A line with the option's name and the kinds of its arguments.
  [[nodiscard]] qvString::IString getOptionTitle(const option* which) const;
  /// The shortest prefix of the name that no other name shares, a second name of the option's own included.
  [[nodiscard]] qvString::CString getOptionShortestName(const option* which) const;
  /// The lines that explain an option; with `withShortest` also one for its shortest name where that differs.
  [[nodiscard]] qvString::IString getOptionUsage(const option* which, bool withShortest) const;
  /// Replaces `indices` by those of all options, in the order of their names.
  void getSortedOptions(qv::vector<int>& indices) const;

  // ---- Reading ----

  /// Takes the words to read in place of those left; the first word is the first option, so a program leaves
  /// out its own name (`argc - 1`, `argv + 1`). Narrow words are read as `fromNativePath` reads a path.
  void initialize(const qv::vector<qvString::IString>& words);
  void initialize(int count, const qv::WChar* const* words);
  void initialize(int count, const char* const* words);

  /// Reads the next option and its arguments. The words that it takes are gone even where it fails.
  /// @return null when there is nothing more, and after an error until `resetError`; `hasErrors` tells which.
  const result* getOpt();
  /// The option that was read last, or in which reading failed; null where there is none.
  [[nodiscard]] const result* getCurrentResult() const;
  [[nodiscard]] bool hasErrors() const;
  /// What went wrong in the last `getOpt`; empty if nothing did.
  [[nodiscard]] const qvString::IString& getError() const;
  /// Lets reading go on with the words that are left.
  void resetError();
  /// Makes `getOpt` return null, as after an error without a text.
  void abort();
  /// Replaces `words` by those that were not read, in order.
  void remaining(qv::vector<qvString::IString>& words) const;

  // ---- What was read. Null, and an index out of range, give null, empty or -1. ----

  [[nodiscard]] const option* getResultOption(const result* which) const;
  /// The option's name, in full.
  [[nodiscard]] const qvString::CString& getResultName(const result* which) const;
  [[nodiscard]] int getResultIndex(const result* which) const;
  [[nodiscard]] int getNumArguments(const result* which) const;
  [[nodiscard]] const qvString::IString& getResultArg(const result* which, int index) const;
  /// Replaces `arguments` by those of the result.
  void getResultArgs(const result* which, qv::vector<qvString::IString>& arguments) const;

private:
  GetOptImpl* impl_;
};

} // namespace qvOS
