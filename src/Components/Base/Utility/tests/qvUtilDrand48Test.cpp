// The numbers stand here as a C library gives them that has these functions, so that each platform's are
// compared with the same table, wherever they come from.
#include "Base/Utility/qvUtilDrand48.h"

#include <gtest/gtest.h>

#include <cstdint>

TEST(Drand48, GivesTheSameNumbersEverywhere) {
  const struct {
    int line;
    long seed;
    double fraction;
    long positive, either;
  } rows[] = {
      {__LINE__, 0, 0x1.5ddb16e28808p-3, 1610402240, 413913109},
      {__LINE__, 1, 0x1.5509292a202p-5, 976015093, -709454646},
      {__LINE__, -1, 0x1.3339f1bd4404p-2, 97305740, 1537280864},
      {__LINE__, 2147483647, 0x1.999cf8dea202p-1, 1171047564, -610202784},
      {__LINE__, -2147483647 - 1, 0x1.5776c5b8a202p-1, 536660416, -1733570539},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    srand48(row.seed);
    EXPECT_EQ(drand48(), row.fraction);
    EXPECT_EQ(lrand48(), row.positive);
    EXPECT_EQ(mrand48(), row.either);
  }
  srand48(7);
  std::uint32_t sum = 0;
  for (int i = 0; i < 100000; ++i) sum = sum * 31 + static_cast<std::uint32_t>(mrand48());
  EXPECT_EQ(sum, 0x320F4D19u);
}

TEST(Drand48, KeepsStatesApartAndTakesParameters) {
  unsigned short own[3] = {1, 2, 3};
  srand48(5); // for the usual parameters
  EXPECT_EQ(erand48(own), 0x1.c49aaf1b99ep-2);
  EXPECT_EQ(nrand48(own), 565063343);
  EXPECT_EQ(jrand48(own), -1485464893);
  EXPECT_TRUE(own[0] == 0x1DF2 && own[1] == 0x9AC3 && own[2] == 0xA775);

  (void)drand48();
  unsigned short given[3] = {0x1234, 0xABCD, 0xFFFF};
  const unsigned short* const before = seed48(given);
  EXPECT_TRUE(before[0] == 0x5101 && before[1] == 0xE2FD && before[2] == 0x865B);
  EXPECT_EQ(lrand48(), 587735629);

  unsigned short parameters[7] = {1, 2, 3, 0xFFFB, 0xFFFF, 0xFFFF, 0xFFFF};
  lcong48(parameters);
  EXPECT_EQ(drand48(), 0x1.ffe1ffedfff4p-1);
  EXPECT_EQ(lrand48(), 2457623);
  EXPECT_EQ(mrand48(), -24576230);
  unsigned short other[3] = {9, 8, 7};
  EXPECT_EQ(nrand48(other), 2146336748);
}
