// Variables of the environment that a test changes for itself.
#pragma once

#include <optional>
#include <string>

namespace qvTest {

/// Gives a variable another value, until the object goes. On some systems a variable with an empty value is
/// one that is not there.
class Environment {
public:
  Environment(const char* name, const char* value);
  ~Environment();
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  void set(const char* value);

private:
  const char* name_;
  std::optional<std::string> before_;
};

/// The variable that tells where temporary files go.
extern const char* const temporaryPlaceVariable;

} // namespace qvTest
