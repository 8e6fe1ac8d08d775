// A directory whose files have odd names, walked, listed, opened and emptied through the library.
#pragma once

#include "Base/OS/qvOSDirectoryIterator.h"
#include "Base/OS/tests/qvOSTestName.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace qvTest {

/// Expects that files of all these native names can be told, opened and deleted.
inline void expectReaches(std::set<std::string> names) {
  const Directory directory;
  for (const std::string& name : names) directory.write(name, name);

  const qvOS::Filename scratch(wide(directory.path()));
  std::set<std::string> seen, listed;
  for (qvOS::DirectoryIterator it(scratch); it.next();) {
    const std::string name = native(it.name());
    seen.insert(name);
    EXPECT_EQ(native(it.path().name()), directory.path(name));
    EXPECT_EQ(it.path().basename(), it.name());
    EXPECT_EQ(directory.read(native(qvOS::Filename(it.path().name(), '/').basename())), name);
    qvOS::File file(it.path().name());
    std::string text(name.size(), ' ');
    EXPECT_FALSE(file.open(qvOS::FileTransport::openRead));
    EXPECT_FALSE(file.read(text.data(), text.size(), nullptr) || file.close());
    EXPECT_EQ(text, name);
  }
  EXPECT_EQ(seen, names);
  qv::vector<qvString::IString> entries;
  EXPECT_FALSE(qvOS::File(scratch.name()).readDir(entries, true));
  for (const qvString::IString& entry : entries) {
    listed.insert(native(entry).substr(directory.path().size() + 1));
    static_cast<void>(qvOS::File(entry).deleteSelf(qvOS::FileTransport::deleteEntryOnly));
  }
  names.insert({".", ".."});
  EXPECT_EQ(listed, names);
  EXPECT_EQ(directory.entries(), 0);
}

} // namespace qvTest
