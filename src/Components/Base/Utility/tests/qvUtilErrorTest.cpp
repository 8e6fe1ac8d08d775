#include "Base/Utility/qvUtilError.h"

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringIString.h"
#include "testing/qvTestAllocations.h"
#include "testing/qvTestStrings.h"

#include <gtest/gtest.h>

using qvString::IString;
using qvUtil::Error;

namespace {

Error fromList(int num, const char* format, ...) {
  va_list args;
  va_start(args, format);
  Error error(qv::VaListTag{}, num, format, args);
  va_end(args);
  return error;
}

Error fromWideList(int num, const qv::WChar* format, ...) {
  va_list args;
  va_start(args, format);
  Error error(qv::VaListTag{}, num, format, args);
  va_end(args);
  return error;
}

} // namespace

TEST(Error, SuccessAllocatesNothing) {
  EXPECT_EQ(qvTest::allocationsOf([] {
              Error error;
              Error copy(error);
              copy = error;
              Error moved(std::move(copy));
              moved = Error();
              swap(error, moved);
              const Error bare(7, "");
              EXPECT_EQ(error == moved, true);
              EXPECT_STREQ(error.message(), "");
              EXPECT_EQ(Error(bare).num(), 7);
            }),
            0);
  EXPECT_GT(qvTest::allocationsOf([] { EXPECT_EQ(Error(1, "text").num(), 1); }), 0); // the count does count
}

TEST(Error, OnlyTheCodeDecides) {
  const struct {
    int line;
    Error error;
    int num;
    const char* message;
  } rows[] = {
      {__LINE__, Error(), 0, ""},
      {__LINE__, Error(0, "text"), 0, "text"},
      {__LINE__, Error(-1, "%s %d", "a", 5), -1, "a 5"},
      {__LINE__, Error(2, "%S", QV_W("wide")), 2, "wide"},
      {__LINE__, Error(2, QV_W("%s and %S"), "narrow", QV_W("wide")), 2, "narrow and wide"},
      {__LINE__, Error(3, IString(QV_W("100%s"))), 3, "100%s"},
      {__LINE__, Error(4, ""), 4, ""},
      {__LINE__, Error(4, static_cast<const char*>(nullptr)), 4, ""},
      {__LINE__, Error(4, static_cast<const qv::WChar*>(nullptr)), 4, ""},
      {__LINE__, Error(4, "%s", ""), 4, ""},
      {__LINE__, fromList(5, "%s", "list"), 5, "list"},
      {__LINE__, fromWideList(6, QV_W("%s"), "list"), 6, "list"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(row.error.num(), row.num);
    EXPECT_EQ(static_cast<bool>(row.error), row.num != 0);
    EXPECT_STREQ(row.error.message(), row.message);
  }
  char buffer[] = "a buffer that is no argument list";
  EXPECT_STREQ(Error(1, "%s", buffer).message(), buffer);
  EXPECT_EQ(std::string(Error(1, "%5000d", 1).message()).size(), 5000u);
}

TEST(Error, EmptyMessageIsNotAnAbsentOne) {
  EXPECT_EQ(Error(1, ""), Error(1, static_cast<const char*>(nullptr)));
  EXPECT_NE(Error(1, ""), Error(1, IString()));
  EXPECT_EQ(Error(1, "%s", ""), Error(1, IString()));
  EXPECT_EQ(Error(1, "a"), Error(1, QV_W("a")));
  EXPECT_NE(Error(1, "a"), Error(1, "b"));
  EXPECT_NE(Error(1, "a"), Error(2, "a"));
}

TEST(Error, CopiesAreDeepAndMovesLeaveSuccess) {
  Error error(1, "one");
  Error copy(error);
  EXPECT_EQ(copy, error);
  EXPECT_NE(copy.message(), error.message());
  error = Error(2, "two");
  EXPECT_STREQ(copy.message(), "one");
  error = *&error;
  error.swap(error);
  EXPECT_EQ(error, Error(2, "two"));
  copy = std::move(error);
  EXPECT_EQ(copy, Error(2, "two"));
  EXPECT_EQ(error, Error()); // NOLINT: what a move leaves is told
  try {
    throw Error(3, "thrown");
  } catch (const Error& caught) {
    EXPECT_STREQ(caught.message(), "thrown");
  }
}

TEST(Error, LiesInVectors) {
  qv::vector<Error> errors;
  for (int i = 0; i < 100; ++i) errors.append(Error(i, "number %d", i));
  EXPECT_EQ(errors[99], Error(99, "number 99"));
  EXPECT_EQ(errors[0], Error(0, "number 0"));
}
