// The shell's file list out of memory that anybody may have filled.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "controls/DropFiles.h"

namespace zq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string Number(std::uint32_t number) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
  return bytes;
}

// A list whose names begin at `offset`; what lies between the head and them is filled.
std::string List(bool wide, const std::string& names, std::uint32_t offset = 20) {
  std::string bytes = Number(offset) + std::string(12, 'p') + Number(wide ? 1 : 0);
  if (offset > bytes.size() && offset < 100) bytes.resize(offset, 'x');
  return bytes + names;
}

std::string Wide(std::u16string_view text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

void ExpectNone(const std::string& bytes) {
  const DropList list = ReadDropFiles(bytes);
  EXPECT_THAT(list.wide, IsEmpty());
  EXPECT_THAT(list.narrow, IsEmpty());
}

using namespace std::literals;

TEST(DropFiles, AreReadInTheirOrder) {
  const DropList wide = ReadDropFiles(List(true, Wide(u"C:\\ä.txt\0C:\\b.txt\0\0"sv)));
  EXPECT_THAT(wide.wide, ElementsAre(u"C:\\ä.txt", u"C:\\b.txt"));
  EXPECT_THAT(wide.narrow, IsEmpty());
  const DropList narrow = ReadDropFiles(List(false, "C:\\a.txt\0C:\\b.txt\0\0"s));
  EXPECT_THAT(narrow.narrow, ElementsAre("C:\\a.txt", "C:\\b.txt"));
  EXPECT_THAT(narrow.wide, IsEmpty());
}

TEST(DropFiles, MayBeginFurtherBehindTheHeadAndHaveMoreBehindTheirEnd) {
  EXPECT_THAT(ReadDropFiles(List(false, "C:\\a.txt\0\0rest"s, 31)).narrow, ElementsAre("C:\\a.txt"));
  EXPECT_THAT(ReadDropFiles(List(true, Wide(u"C:\\a.txt\0\0rest"sv), 31)).wide, ElementsAre(u"C:\\a.txt"));
}

TEST(DropFiles, WithoutNamesAreNone) {
  ExpectNone(List(false, "\0"s));
  ExpectNone(List(true, Wide(u"\0"sv)));
  ExpectNone(List(true, ""));
}

TEST(DropFiles, WithoutTheirEndAreNone) {
  const std::string whole = List(true, Wide(u"C:\\a.txt\0C:\\b.txt\0\0"sv));
  for (std::size_t length = 0; length < whole.size(); ++length) ExpectNone(whole.substr(0, length));
  const std::string narrow = List(false, "C:\\a.txt\0C:\\b.txt\0\0"s);
  for (std::size_t length = 0; length < narrow.size(); ++length) ExpectNone(narrow.substr(0, length));
}

TEST(DropFiles, OutsideTheirMemoryAreNone) {
  for (const std::uint32_t offset : {0U, 4U, 19U, 1000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
    ExpectNone(List(false, "C:\\a.txt\0\0"s, offset));
}

TEST(DropFiles, OfAnOddLengthEndAtTheirNulls) {
  EXPECT_THAT(ReadDropFiles(List(true, Wide(u"C:\\a.txt\0\0"sv) + "x")).wide, ElementsAre(u"C:\\a.txt"));
  ExpectNone(List(true, Wide(u"C:\\a.txt\0"sv) + "\0"s));
}

}  // namespace
}  // namespace zq
