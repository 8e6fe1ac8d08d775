// Catalogs: text files that fill the process's string table. docs/formats.md describes them.
#pragma once

#include "Base/OS/qvOSFilename.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/qvBase.h"

namespace qvStringTable {

/// Reads catalogs.
class FileUtil {
public:
  /// Adds the entries of a file to `appStringTable()`; one with a key that is there takes the other's place.
  /// Reading stops at the first failure, and the table keeps what came before it. Linear in the file's size.
  /// @return no error; code 1 where the file cannot be opened, 2 where it cannot be read, 3 for a line that
  /// is no entry, 4 where an entry cannot be stored, 5 for a line that is not UTF-8. The messages end with a
  /// newline; those of 3 and 5 tell the line's number, counted from 1, and its text.
  static QV_BASE_API qvUtil::Error readCatalogFile(const qvOS::Filename& file);
};

/// What programs load catalogs with.
class Manager {
public:
  /// `FileUtil::readCatalogFile`.
  static qvUtil::Error loadCatalog(const qvOS::Filename& file) { return FileUtil::readCatalogFile(file); }
  static qvUtil::Error loadCatalog(const qvString::IString& file) {
    return loadCatalog(qvOS::Filename(file));
  }
};

} // namespace qvStringTable
