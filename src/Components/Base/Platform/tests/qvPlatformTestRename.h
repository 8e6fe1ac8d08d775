// What renaming may and may not do, in whatever way the platform renames.
#pragma once

#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "testing/qvTestDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qvTest {

struct RenameRow {
  int line;
  const char* source;
  const char* target;
  qvPlatform::ErrorKind result;
};

/// Renames in a directory of files and directories, to which `furnish` adds. `prepare` makes what lives while
/// the call is made.
template <class Furnish, class Prepare>
void expectRename(const RenameRow& row, Furnish furnish, Prepare prepare) {
  SCOPED_TRACE(row.line);
  const Directory directory;
  directory.write("file", "content");
  directory.write("other", "precious");
  std::filesystem::create_directory(directory.path("empty"));
  std::filesystem::create_directory(directory.path("full"));
  directory.write("full/entry", "entry");
  furnish(directory);
  const int entries = directory.entries();
  const std::string from = directory.path(row.source), to = directory.path(row.target);
  const auto kind = std::filesystem::symlink_status(from).type();
  int error = 0;
  {
    [[maybe_unused]] const auto during = prepare();
    error = qvPlatform::renameFile(from.c_str(), to.c_str());
  }
  EXPECT_EQ(qvPlatform::errorKind(error), row.result) << qvPlatform::systemErrorText(error);
  EXPECT_EQ(directory.entries(), entries);
  EXPECT_EQ(directory.read("other"), "precious");
  EXPECT_EQ(std::filesystem::symlink_status(error ? from : to).type(), kind);
  EXPECT_EQ(directory.exists(row.source), error ? kind != std::filesystem::file_type::not_found : from == to);
}

} // namespace qvTest
