// A scratch directory for one test.
#pragma once

#include "testing/qvTestEnvironment.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace qvTest {

/// Where files stay in memory, so that waiting for the disk takes no time; the temporary directory on a
/// system without such a place.
[[nodiscard]] std::string inMemory();

/// A native path for the standard library, which elsewhere reads narrow paths in an encoding of its own.
[[nodiscard]] std::filesystem::path pathOf(std::string_view native);

/// The bytes of a file, or the text "<missing>" where there is none.
[[nodiscard]] std::string fileBytes(const std::string& path);

/// An empty directory of its own, removed with all it holds when the object goes. Paths are native bytes.
/// Everything goes past the library's platform layer, so scripted failures do not touch it.
class Directory {
public:
  Directory();
  explicit Directory(const std::string& parent);
  ~Directory();
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;

  /// The directory, absolute, without a separator at the end.
  [[nodiscard]] const std::string& path() const { return path_; }
  /// The path of `name` in it.
  [[nodiscard]] std::string path(std::string_view name) const;
  /// Writes a file of that name, and gives its path.
  std::string write(std::string_view name, std::string_view content) const;
  [[nodiscard]] std::string read(std::string_view name) const { return fileBytes(path(name)); }
  /// The same of a text, whose lines end in one character each, whatever the system's end of a line is.
  [[nodiscard]] std::string readText(std::string_view name) const;
  [[nodiscard]] bool exists(std::string_view name) const;
  /// How many entries it has, at any depth.
  [[nodiscard]] int entries() const;

private:
  std::string path_;
};

/// Tells the process another directory for temporary files, until it goes.
class TemporaryPlace {
public:
  explicit TemporaryPlace(const std::string& path) : variable_(temporaryPlaceVariable, path.c_str()) {}

  void set(const std::string& path) { variable_.set(path.c_str()); }

private:
  Environment variable_;
};

} // namespace qvTest
