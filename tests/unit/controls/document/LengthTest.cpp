#include <gtest/gtest.h>

#include "controls/document/Length.h"
#include "support/ExpectRaises.h"

namespace zq::test {
namespace {

TEST(Length, ReadsTheUnits) {
  EXPECT_EQ(LengthFrom("1in"), 1440);
  EXPECT_EQ(LengthFrom(".3in"), 432);
  EXPECT_EQ(LengthFrom("6.5in"), 9360);
  EXPECT_EQ(LengthFrom("2.54cm"), 1440);
  EXPECT_EQ(LengthFrom("25.4 mm"), 1440);
  EXPECT_EQ(LengthFrom("12pt"), 240);
  EXPECT_EQ(LengthFrom(" 100 "), 100);
}

TEST(Length, ReadsAPartOfTheWhole) {
  EXPECT_EQ(LengthFrom("100%", 4500), 4500);
  EXPECT_EQ(LengthFrom("50%", 4500), 2250);
}

TEST(Length, RefusesWhatIsNone) {
  for (const char* text : {"", "in", ".", "%", "1.2.3in", "-1in", "1 inch", "1in x", "0x10", "1e3", "nan"}) {
    ExpectRaises(ErrorNumber::TypeMismatch, [&] { LengthFrom(text, 100); });
  }
  ExpectRaises(ErrorNumber::Overflow, [] { LengthFrom("1001in"); });
  ExpectRaises(ErrorNumber::Overflow, [] { LengthFrom(std::string(400, '9') + "in"); });
}

}  // namespace
}  // namespace zq::test
