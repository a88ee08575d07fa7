#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "help/RegistryText.h"
#include "unit/help/HelpRig.h"

namespace zq {
namespace {

using test::HelpRig;
using testing::ElementsAre;

constexpr const char* kKey = "Software\\Some";

struct TextRig : HelpRig {
  TextRig() {
    values() = {{"Number", 4, "abcd"},
                {"Folder", kTypeString, std::string("C:\\Help\0", 8)},
                {"Place", kTypeExpandString, std::string("%Root%\\Help\0", 12)},
                {"", kTypeString, std::string("default\0", 8)}};
    registry.variables["%Root%"] = "D:";
  }
  std::vector<test::FakeHelpRegistry::Value>& values() {
    return registry.keys[{kHiveLocalMachine, kKey}].values;
  }
  RegValueInfo Read(const std::string& name, const std::string& hive = "HKLM") {
    return ReadRegistryValue(registry, files, regional, hive, kKey, name, list);
  }
  std::string list;
};

TEST(RegistryText, KnowsTheHivesByTheirLetters) {
  HelpRig rig;
  const std::pair<const char*, std::uint32_t> hives[] = {
      {"HKCU", 0x80000001}, {"HKLM", 0x80000002}, {"HKU", 0x80000003},  {"HKDD", 0x80000006},
      {"HKCC", 0x80000005}, {"HKCR", 0x80000000}, {"hkcr", 0x80000000}, {"Hklm", 0x80000002}};
  for (const auto& [text, number] : hives) EXPECT_EQ(HiveFromAbbreviation(rig.files, text), number) << text;
  EXPECT_THAT(rig.log, testing::IsEmpty());
}

TEST(RegistryText, TriesAnyOtherHiveAsAFile) {
  HelpRig rig;
  rig.files.found["C:\\there.txt"] = "there.txt";
  EXPECT_EQ(HiveFromAbbreviation(rig.files, "C:\\there.txt"), 1u);
  EXPECT_EQ(HiveFromAbbreviation(rig.files, "C:\\gone.txt"), 0u);
  EXPECT_EQ(HiveFromAbbreviation(rig.files, ""), 0u);
  EXPECT_EQ(rig.files.open, 0);
}

TEST(RegistryText, GivesAValueWithNullAndCarriageReturn) {
  TextRig rig;
  const RegValueInfo info = rig.Read("Folder");
  EXPECT_EQ(info.Name, "Folder");
  EXPECT_EQ(info.Text, std::string("Folder=C:\\Help\0\r", 16));
  EXPECT_EQ(rig.list, info.Text);
  EXPECT_EQ(rig.registry.open, 0);
}

TEST(RegistryText, FindsANameInAnyCaseAndGivesItAsWanted) {
  TextRig rig;
  rig.values().push_back({"\xC3\x84nderung", kTypeString, std::string("x\0", 2)});
  EXPECT_EQ(rig.Read("fOLDER").Name, "fOLDER");
  EXPECT_EQ(rig.Read("\xC3\xA4nderung").Name, "\xC3\xA4nderung");
}

TEST(RegistryText, AppendsToTheList) {
  TextRig rig;
  rig.Read("Folder");
  EXPECT_EQ(rig.Read("").Text, std::string("Folder=C:\\Help\0\r=default\0\r", 26));
}

TEST(RegistryText, ExpandsTheVariablesInAValueOfThatType) {
  TextRig rig;
  EXPECT_EQ(rig.Read("Place").Text, std::string("Place=D:\\Help\0\r", 15));
}

TEST(RegistryText, LeavesAValueThatWouldGrowTooLong) {
  TextRig rig;
  rig.registry.variables["%Root%"] = std::string(2048, 'x');
  EXPECT_EQ(rig.Read("Place").Text, std::string("Place=%Root%\\Help\0\r", 19));
}

TEST(RegistryText, PassesByValuesThatAreNoText) {
  TextRig rig;
  EXPECT_EQ(rig.Read("Number").Name, "");
  EXPECT_EQ(rig.Read("Number").Text, "");
  EXPECT_EQ(rig.registry.open, 0);
}

TEST(RegistryText, IsEmptyForWhatIsNotThere) {
  TextRig rig;
  for (const RegValueInfo& info :
       {rig.Read("Other"), rig.Read("Folder", "HKCU"), rig.Read("Folder", "none")}) {
    EXPECT_EQ(info.Name, "");
    EXPECT_EQ(info.Text, "");
  }
  EXPECT_EQ(rig.list, "");
  EXPECT_THAT(rig.log,
              ElementsAre("open HKLM Software\\Some 1", "open 2147483649 Software\\Some 1", "find none"));
}

// The value is known to be there by then.
TEST(RegistryText, KeepsTheNameOfAValueThatCannotBeRead) {
  TextRig rig;
  rig.registry.refuseQuery = true;
  EXPECT_EQ(rig.Read("Folder").Name, "Folder");
  EXPECT_EQ(rig.Read("Folder").Text, "");
}

}  // namespace
}  // namespace zq
