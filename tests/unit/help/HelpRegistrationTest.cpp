// The machine's table of help files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/help/HelpRig.h"

namespace zq {
namespace {

using test::HelpRig;
using test::kOpensTable;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCreatesTable = "create HKLM Software\\Microsoft\\Windows\\HTML Help 6";

struct TableRig : HelpRig {
  // A file in the table, which really is there.
  TableRig() {
    EnterInTable("Known.chm", "C:\\Help\\");
    files.longPaths["C:\\Help\\"] = "C:\\Help\\";
    files.found["C:\\Help\\\\Known.chm"] = "Known.chm";
    files.found["C:\\Help\\New.chm"] = "New.chm";
    files.longPaths["C:\\Help\\Known.chm"] = "C:\\Help\\Known.chm";
    files.longPaths["C:\\Help\\New.chm"] = "C:\\Help\\New.chm";
    files.longPaths["C:\\HELP~1\\New.chm"] = "C:\\Help\\New.chm";
  }
  bool InTable(const std::string& name) {
    for (const auto& value : registry.keys[{kHiveLocalMachine, test::kTableKey}].values) {
      if (value.name == name) return true;
    }
    return false;
  }
};

TEST(HelpRegistration, ChecksNothingForAnEmptyName) {
  TableRig rig;
  rig.help.HHCheckRegistry("Known.chm");
  rig.log.clear();
  EXPECT_EQ(rig.help.HHCheckRegistry(""), std::nullopt);
  EXPECT_THAT(rig.log, IsEmpty());
  EXPECT_EQ(rig.help.HHRegFileName(), "Known.chm");
  EXPECT_TRUE(rig.help.HHRegFileExists());
}

// What it returns says nothing: the properties do.
TEST(HelpRegistration, ReturnsFalseForAFileThatItFound) {
  TableRig rig;
  EXPECT_EQ(rig.help.HHCheckRegistry("D:\\Any\\Folder\\KNOWN.CHM"), false);
  EXPECT_THAT(rig.log, ElementsAre(kOpensTable, "long C:\\Help\\", "find C:\\Help\\\\KNOWN.CHM",
                                   "error The file C:\\Help\\\\KNOWN.CHM does not exist.\n"
                                   "Please make sure that you have installed KLMB Help files"));
  EXPECT_EQ(rig.help.HHRegFileName(), "KNOWN.CHM");
  EXPECT_FALSE(rig.help.HHRegFileExists());

  EXPECT_EQ(rig.help.HHCheckRegistry("Known.chm"), false);
  EXPECT_EQ(rig.help.HHRegFileName(), "Known.chm");
  EXPECT_EQ(rig.help.HHRegFilePath(), "C:\\Help\\");
  EXPECT_TRUE(rig.help.HHRegFileExists());
  EXPECT_EQ(rig.registry.open, 0);
}

TEST(HelpRegistration, EmptiesTheAnswersForAFileThatIsNotInTheTable) {
  TableRig rig;
  rig.help.HHCheckRegistry("Known.chm");
  EXPECT_EQ(rig.help.HHCheckRegistry("Other.chm"), false);
  EXPECT_EQ(rig.help.HHRegFileName(), "");
  EXPECT_EQ(rig.help.HHRegFilePath(), "");
  EXPECT_FALSE(rig.help.HHRegFileExists());
}

// The name and the folder of the file before it stay.
TEST(HelpRegistration, LeavesTheAnswersForANameOfAnotherExtensionButOne) {
  TableRig rig;
  rig.help.HHCheckRegistry("Known.chm");
  rig.log.clear();
  EXPECT_EQ(rig.help.HHCheckRegistry("Known.hlp"), false);
  EXPECT_THAT(rig.log, ElementsAre("error Known.hlp is not a valid HTML Help file."));
  EXPECT_EQ(rig.help.HHRegFileName(), "Known.chm");
  EXPECT_FALSE(rig.help.HHRegFileExists());
}

// Two characters go for the null and the carriage return, whether there was a null or not.
TEST(HelpRegistration, CutsALetterOfAFolderThatWasStoredWithoutItsNull) {
  TableRig rig;
  rig.registry.keys[{kHiveLocalMachine, test::kTableKey}].values = {{"Bare.chm", kTypeString, "C:\\Helps"}};
  rig.help.HHCheckRegistry("Bare.chm");
  EXPECT_EQ(rig.help.HHRegFilePath(), "C:\\Help");
}

TEST(HelpRegistration, RegistersAFileWithItsFolder) {
  TableRig rig;
  std::string file = "C:\\HELP~1\\New.chm";
  rig.help.HHRegister(file);
  EXPECT_THAT(rig.log, ElementsAre("long C:\\HELP~1\\New.chm", kOpensTable, "find C:\\Help\\New.chm",
                                   kCreatesTable, "set New.chm=C:\\Help\\ 9"));
  EXPECT_EQ(file, "New.chm");  // the caller's text is the bare name now
  EXPECT_EQ(rig.registry.open, 0);

  rig.help.HHCheckRegistry("New.chm");
  EXPECT_EQ(rig.help.HHRegFilePath(), "C:\\Help\\");
}

TEST(HelpRegistration, RegistersNothingForAnEmptyName) {
  TableRig rig;
  std::string file;
  rig.help.HHRegister(file);
  rig.help.HHUnRegister(file);
  EXPECT_THAT(rig.log, IsEmpty());
}

TEST(HelpRegistration, RefusesOtherExtensions) {
  TableRig rig;
  std::string file = "C:\\a.hlp";
  rig.help.HHRegister(file);
  rig.help.HHUnRegister(file);
  EXPECT_THAT(rig.log, ElementsAre("error C:\\a.hlp is not a valid HTML Help file.",
                                   "error C:\\a.hlp is not a valid HTML Help file."));
}

TEST(HelpRegistration, SaysThatAFileIsRegisteredAlready) {
  TableRig rig;
  std::string file = "C:\\Help\\Known.chm";
  rig.help.HHRegister(file);
  EXPECT_EQ(
      rig.log.back(),
      "info The file C:\\Help\\Known.chm is already registered.  HHRegister will not be run as no action "
      "need be taken.");
  EXPECT_EQ(file, "C:\\Help\\Known.chm");
}

TEST(HelpRegistration, RegistersNoFileThatIsMissing) {
  TableRig rig;
  std::string file = "C:\\Help\\Gone.chm";
  rig.help.HHRegister(file);
  EXPECT_EQ(rig.log.back(),
            "error The file C:\\Help\\Gone.chm does not exist.\n"
            "Please make sure that you have installed KLMB Help files");
  EXPECT_FALSE(rig.InTable("Gone.chm"));
}

// The quote at the text's end belongs to nothing.
TEST(HelpRegistration, WantsAPathToRegister) {
  TableRig rig;
  rig.files.found["C:\\Zeroquill\\Beside.chm"] = "Beside.chm";
  std::string file = "Beside.chm";
  rig.help.HHRegister(file);
  EXPECT_EQ(rig.log.back(), "error Cannot register Beside.chm without having a supplied path.\"");
  EXPECT_FALSE(rig.InTable("Beside.chm"));
}

TEST(HelpRegistration, SaysThatTheTableCannotBeWritten) {
  TableRig rig;
  rig.registry.refuseCreate = true;
  std::string file = "C:\\Help\\New.chm";
  rig.help.HHRegister(file);
  EXPECT_EQ(rig.log.back(), "error HTML Help Class: HHRegister Error");
  EXPECT_EQ(file, "New.chm");
}

// The key stays open after a value that was refused.
TEST(HelpRegistration, LooksAgainAfterAValueThatWasRefused) {
  TableRig rig;
  rig.registry.refuseSet = true;
  std::string file = "C:\\Help\\New.chm";
  rig.help.HHRegister(file);
  EXPECT_EQ(rig.log.back(), kOpensTable);
  EXPECT_EQ(rig.help.HHRegFileName(), "");
  EXPECT_EQ(rig.registry.open, 1);
}

// The key isn't closed here either.
TEST(HelpRegistration, TakesAFileOutOfTheTable) {
  TableRig rig;
  std::string file = "C:\\Help\\Known.chm";
  rig.help.HHUnRegister(file);
  EXPECT_THAT(
      rig.log,
      ElementsAre("long C:\\Help\\Known.chm", kOpensTable, "long C:\\Help\\", "find C:\\Help\\\\Known.chm",
                  "open HKLM Software\\Microsoft\\Windows\\HTML Help 2", "delete Known.chm", kOpensTable));
  EXPECT_FALSE(rig.InTable("Known.chm"));
  EXPECT_EQ(rig.help.HHRegFileName(), "");
  EXPECT_EQ(file, "Known.chm");
  EXPECT_EQ(rig.registry.open, 1);
}

TEST(HelpRegistration, SaysThatAFileIsNotRegistered) {
  TableRig rig;
  std::string file = "C:\\Help\\New.chm";
  rig.help.HHUnRegister(file);
  EXPECT_EQ(
      rig.log.back(),
      "info The file C:\\Help\\New.chm is not registered.  HHUnRegister will not be run as no action need "
      "be taken.");
}

}  // namespace
}  // namespace zq
