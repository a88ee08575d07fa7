#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "jobs/mdlSize.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeRegional.h"

namespace zq {
namespace {

using test::ExpectRaises;

TEST(FormatFileSize, ChoosesTheUnitBeforeRounding) {
  struct Case {
    double size;
    const char* text;
  };
  constexpr Case kCases[] = {
      {0, "0 Bytes"},
      {0.9, "0 Bytes"},
      {1, "1 Bytes"},
      {999, "999 Bytes"},
      {1023, "1023 Bytes"},
      {1023.9, "1023 Bytes"},
      {1024, "1.00 KB"},
      {1500, "1.46 KB"},
      {1048575, "1024.00 KB"},
      {1048576, "1.00 MB"},
      {1073741823, "1024.00 MB"},
      {1073741824, "1.00 GB"},
      {5497558138880, "5120.00 GB"},
      {922337203685477, "858993.46 GB"},
      {-5, "-5 Bytes"},
  };
  test::FakeRegional regional;
  for (const Case& c : kCases) EXPECT_EQ(FormatFileSize(c.size, regional), c.text) << c.size;
}

TEST(FormatFileSize, UsesTheUsersDecimalSeparatorAndNoGroups) {
  test::FakeRegional regional;
  regional.decimalSeparator = ",";
  regional.groupSeparator = ".";
  EXPECT_EQ(FormatFileSize(1500, regional), "1,46 KB");
  EXPECT_EQ(FormatFileSize(5497558138880, regional), "5120,00 GB");
}

TEST(FormatFileSize, ShowsZeroForWhatIsNoNumber) {
  test::FakeRegional regional;
  using Limits = std::numeric_limits<double>;
  for (const double size : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), 1e300, -1e300}) {
    EXPECT_EQ(FormatFileSize(size, regional), "0 Bytes") << size;
  }
}

TEST(GetFileSize64, ReadsBothWordsUnsigned) {
  test::FakeFiles files;
  files.AddFileOfLength("C:\\small", 1);
  files.AddFileOfLength("C:\\two", 0x80000000);
  files.AddFileOfLength("C:\\four", 0xFFFFFFFF);
  files.AddFileOfLength("C:\\five", 5497558138881);
  EXPECT_EQ(GetFileSize64(files, "C:\\small"), FixedPoint(1));
  EXPECT_EQ(GetFileSize64(files, "C:\\two"), FixedPoint(2147483648));
  EXPECT_EQ(GetFileSize64(files, "C:\\four"), FixedPoint(4294967295));
  EXPECT_EQ(GetFileSize64(files, "C:\\five"), FixedPoint(5497558138881));
}

TEST(GetFileSize64, IsZeroForWhatIsNotThere) {
  test::FakeFiles files;
  EXPECT_EQ(GetFileSize64(files, "C:\\none"), FixedPoint());
  EXPECT_EQ(GetFileSize64(files, ""), FixedPoint());
}

TEST(GetFileSize64, TakesTheFirstMatchOfWildcards) {
  test::FakeFiles files;
  files.AddFileOfLength("C:\\a.txt", 7);
  files.AddFileOfLength("C:\\b.doc", 11);
  files.AddFileOfLength("C:\\c.doc", 13);
  EXPECT_EQ(GetFileSize64(files, "C:\\*.doc"), FixedPoint(11));
}

TEST(GetFileSize64, OverflowsWhereTheFixedPointEnds) {
  test::FakeFiles files;
  files.AddFileOfLength("C:\\last", 922337203685477);
  files.AddFileOfLength("C:\\beyond", 922337203685478);
  files.AddFileOfLength("C:\\most", std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(GetFileSize64(files, "C:\\last"), FixedPoint(922337203685477));
  ExpectRaises(ErrorNumber::Overflow, [&] { GetFileSize64(files, "C:\\beyond"); });
  ExpectRaises(ErrorNumber::Overflow, [&] { GetFileSize64(files, "C:\\most"); });
}

}  // namespace
}  // namespace zq
