#include "Base/Utility/qvUtilBuild.h"

#include <gtest/gtest.h>

#include <ctime>
#include <regex>
#include <string>

TEST(Build, IdentifiersHaveTheirForms) {
  EXPECT_TRUE(std::regex_match(gBuildDirectory, std::regex("[^:]+:.+")));
  EXPECT_TRUE(std::regex_match(gBuildDate, std::regex("\\d{4} \\d\\d \\d\\d \\d\\d \\d\\d")));
  EXPECT_TRUE(std::regex_match(gBuildChangeSet, std::regex("\\d{6}")));
}

TEST(Build, DateAndTimeAreTheSameMoment) {
  const std::time_t seconds = static_cast<std::time_t>(gBuildTime);
  char text[32];
  std::strftime(text, sizeof text, "%Y %m %d %H %M", std::localtime(&seconds));
  EXPECT_STREQ(text, gBuildDate);
}
