#include <gtest/gtest.h>

#include <string>

#include "controls/DialogNames.h"

namespace zq {
namespace {

using namespace std::string_literals;

TEST(DialogNames, AreThoseBeforeTheTwoNulls) {
  EXPECT_EQ(NamesInBuffer(L"C:\\a\0\0\0"s), L"C:\\a"s);
  EXPECT_EQ(NamesInBuffer(L"C:\\a\0b.txt\0c.txt\0\0\0\0\0"s), L"C:\\a\0b.txt\0c.txt"s);
  EXPECT_EQ(NamesInBuffer(L"\0\0\0"s), L""s);
}

TEST(DialogNames, AreNotBelievedWithoutTheirEnd) {
  const std::wstring whole = L"C:\\a\0one.txt\0two.txt\0\0\0"s;
  ASSERT_TRUE(NamesInBuffer(whole));
  // Cut anywhere, with what a dialog may put at the cut.
  for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
    const std::wstring cut = whole.substr(0, length);
    EXPECT_FALSE(NamesInBuffer(cut)) << length;
    EXPECT_FALSE(NamesInBuffer(cut + L'\0')) << length;
  }
}

}  // namespace
}  // namespace zq
