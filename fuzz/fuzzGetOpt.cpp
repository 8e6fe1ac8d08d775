// A command line, one word a line, read against options of every kind.
#include "Base/OS/qvOSGetOpt.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

// File arguments are accepted by their names alone, so that no input reaches the disk.
class Options : public qvOS::GetOpt {
public:
  Options() {
    for (const char* types : {"bool", "int", "float", "string", "inputfile-", "outputfile-", "inoutfile",
                              "directory", "sequence", "? int string", "string ? sequence"})
      addOption((std::string(types).substr(0, 3) + "|" + types).c_str(), types);
  }
  qvUtil::Error validInputFile(const qvString::IString& name) override { return validFileName(name); }
  qvUtil::Error validOutputFile(const qvString::IString& name) override { return validFileName(name); }
  qvUtil::Error validDirectory(const qvString::IString& name) override { return validFileName(name); }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> words(1);
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] == '\n')
      words.emplace_back();
    else
      words.back() += static_cast<char>(data[i]);
  }
  std::vector<const char*> pointers;
  for (const std::string& word : words) pointers.push_back(word.c_str());
  Options options;
  options.needLeadingDash(size % 2 == 0);
  options.initialize(static_cast<int>(pointers.size()), pointers.data());
  qv::vector<qvString::IString> left;
  // Each call takes a word or tells the end.
  for (std::size_t calls = 0; options.getOpt() || options.hasErrors(); ++calls) {
    if (calls > words.size()) std::abort();
    options.resetError();
  }
  options.remaining(left);
  return left.size() <= static_cast<int>(words.size()) ? 0 : (std::abort(), 0);
}
