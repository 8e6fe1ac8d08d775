#include "Base/Utility/qvUtilBuild.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <string>

namespace {

/// The text with every digit as a "0".
std::string shape(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; }, '0');
  return text;
}

} // namespace

TEST(Build, IdentifiersHaveTheirForms) {
  const std::string directory = gBuildDirectory;
  EXPECT_GT(directory.find(':'), 0U);
  EXPECT_LT(directory.find(':'), directory.size() - 1);
  EXPECT_EQ(shape(gBuildDate), "0000 00 00 00 00");
  EXPECT_EQ(shape(gBuildChangeSet), "000000");
}

TEST(Build, DateAndTimeAreTheSameMoment) {
  const std::time_t seconds = static_cast<std::time_t>(gBuildTime);
  char text[32];
  std::strftime(text, sizeof text, "%Y %m %d %H %M", std::localtime(&seconds));
  EXPECT_STREQ(text, gBuildDate);
}
