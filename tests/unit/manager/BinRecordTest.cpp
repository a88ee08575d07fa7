#include <gtest/gtest.h>

#include "manager/BinRecord.h"
#include "support/BinBytes.h"

namespace zq::test {
namespace {

TEST(BinRecord, OfTheFirstVersionIsRead) {
  const std::string bytes = FirstVersionRecord(u"C:\\Users\\anna\\caf\u00e9 \U0001F512.txt", 0x123456789A);
  ASSERT_EQ(bytes.size(), 544u);
  EXPECT_EQ(ReadBinRecord(bytes),
            (BinRecord{1, 0x123456789A, kDeletedAt, "C:\\Users\\anna\\caf\u00e9 \U0001F512.txt"}));
}

TEST(BinRecord, OfTheSecondVersionIsRead) {
  EXPECT_EQ(ReadBinRecord(SecondVersionRecord(u"D:\\a", 7)), (BinRecord{2, 7, kDeletedAt, "D:\\a"}));
  const std::u16string deep = u"C:\\" + std::u16string(5000, u'x');
  const auto record = ReadBinRecord(SecondVersionRecord(deep, 0));
  ASSERT_TRUE(record);
  EXPECT_EQ(record->originalPath.size(), 5003u);
}

TEST(BinRecord, ThatIsCutOffOrGrownIsNone) {
  for (const std::string& whole :
       {FirstVersionRecord(u"C:\\a.txt", 1), SecondVersionRecord(u"C:\\a.txt", 1)}) {
    for (std::size_t size = 0; size < whole.size(); ++size)
      EXPECT_FALSE(ReadBinRecord(whole.substr(0, size))) << size;
    EXPECT_FALSE(ReadBinRecord(whole + '\0'));
  }
}

TEST(BinRecord, OfAnUnknownVersionIsNone) {
  std::string bytes = SecondVersionRecord(u"C:\\a.txt", 1);
  for (const char version : {'\0', '\1', '\3', '\x7F'}) {
    bytes[0] = version;
    EXPECT_FALSE(ReadBinRecord(bytes)) << int{version};
  }
  bytes[0] = 2;
  bytes[7] = 1;  // the version's last byte
  EXPECT_FALSE(ReadBinRecord(bytes));
}

TEST(BinRecord, WithACountThatIsNotItsLengthIsNone) {
  std::string bytes = SecondVersionRecord(u"C:\\a.txt", 1);
  bytes.replace(24, 4, LittleEndian(0xFFFFFFFF, 4));
  EXPECT_FALSE(ReadBinRecord(bytes));
  bytes.replace(24, 4, LittleEndian(0x80000009, 4));  // twice as much overflows 32 bits to the right length
  EXPECT_FALSE(ReadBinRecord(bytes));
}

TEST(BinRecord, WithoutAPlaceOfItsItemIsNone) {
  EXPECT_FALSE(ReadBinRecord(SecondVersionRecord(u"", 1)));
  EXPECT_FALSE(ReadBinRecord(SecondVersionRecord(u"a.txt", 1)));
  EXPECT_FALSE(ReadBinRecord(SecondVersionRecord(u"\\\\?\\Volume{x}\\a.txt", 1)));
  // No null at the path's end.
  std::string open = SecondVersionRecord(u"C:\\a", 1);
  open[open.size() - 2] = 'b';
  EXPECT_FALSE(ReadBinRecord(open));
}

TEST(BinRecord, PathEndsAtItsNullAndIsOneLineInItsOwnDirection) {
  using namespace std::string_view_literals;
  EXPECT_EQ(ReadBinRecord(SecondVersionRecord(u"C:\\a\0b"sv, 1))->originalPath, "C:\\a");
  const char16_t halves[] = {u'C', u':', u'\\', 0xDC00, u'a', 0xD800, u'b', 0};
  EXPECT_EQ(ReadBinRecord(SecondVersionRecord(halves, 1))->originalPath, "C:\\\uFFFDa\uFFFDb");
  EXPECT_EQ(ReadBinRecord(SecondVersionRecord(u"C:\\a\r\nb\u202Etxt.exe", 1))->originalPath,
            "C:\\a\uFFFD\uFFFDb\uFFFDtxt.exe");
}

}  // namespace
}  // namespace zq::test
