#include "package.h"

#include "native.h"
#include "report.h"

#include "Base/IO/ioPackageFile.h"

namespace fs = std::filesystem;
using qvString::IString;

std::string nameText(const IString& name) { return name.asUTF8(); }

IString namedBy(const std::string& word, const ioPackageFile& package) {
  const IString name(word.c_str(), qvString::UTF8Encoding);
  IString cleaned = fromNative(word);
  ioPackageFile::cleanupName(cleaned);
  return !package.getEntry(name) && package.getEntry(cleaned) ? cleaned : name;
}

bool isFile(const std::string& path, const char* what) {
  std::error_code error;
  if (!fs::exists(filePath(path), error)) return fail(path, std::string("there is no such ") + what), false;
  if (!fs::is_regular_file(filePath(path), error)) return fail(path, "this is no file"), false;
  return true;
}

bool openPackage(const std::string& path, ioPackageFile& package) {
  if (!isFile(path, "package")) return false;
  const qvUtil::Error failure = package.open(fromNative(path));
  if (!failure) return true;
  fail(path, failure.num() == 17 ? "this is no package, or it is damaged" : "it cannot be read");
  return false;
}
