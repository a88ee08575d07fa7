#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "help/ToLongPath.h"
#include "unit/help/HelpRig.h"

namespace zq {
namespace {

using test::HelpRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t kOld = 3;
constexpr std::int32_t kYoung = 4;

TEST(ToLongPath, AsksTheSystemThatKnows) {
  HelpRig rig;
  rig.files.longPaths["C:\\PROGRA~1\\a.chm"] = "C:\\Program Files\\a.chm";
  std::string buffer = "as it was";
  EXPECT_EQ(ToLongPath(rig.files, kYoung, "C:\\PROGRA~1\\a.chm", buffer, 256), 22);
  EXPECT_EQ(buffer, "C:\\Program Files\\a.chm");
  EXPECT_THAT(rig.log, ElementsAre("long C:\\PROGRA~1\\a.chm"));
}

TEST(ToLongPath, LeavesTheBufferOfASystemThatCannotSay) {
  HelpRig rig;
  std::string buffer = "as it was";
  EXPECT_EQ(ToLongPath(rig.files, 5, "C:\\gone.chm", buffer, 256), 0);
  EXPECT_EQ(buffer, "as it was");
  rig.files.longPaths["C:\\x"] = "C:\\" + std::string(253, 'x');
  EXPECT_EQ(ToLongPath(rig.files, 5, "C:\\x", buffer, 256), 0);
  EXPECT_EQ(buffer, "as it was");
}

TEST(ToLongPath, LooksUpEachFolderOnAnOlderSystem) {
  HelpRig rig;
  rig.files.found["C:\\PROGRA~1"] = "Program Files";
  rig.files.found["C:\\Program Files\\ZEROQU~1"] = "Zeroquill";
  std::string path = "C:\\PROGRA~1\\ZEROQU~1\\HELPFI~1.CHM";
  EXPECT_EQ(ToLongPath(rig.files, kOld, path, path, 256), 39);
  EXPECT_EQ(path, "C:\\Program Files\\Zeroquill\\HELPFI~1.CHM");  // the last part as it stands
  EXPECT_THAT(rig.log, ElementsAre("find C:\\PROGRA~1", "find C:\\Program Files\\ZEROQU~1"));
  EXPECT_EQ(rig.files.open, 0);
}

TEST(ToLongPath, KeepsATrailingBackslash) {
  HelpRig rig;
  rig.files.found["C:\\HELP~1"] = "Help Files";
  std::string result;
  EXPECT_EQ(ToLongPath(rig.files, 0, "C:\\HELP~1\\", result, 256), 14);
  EXPECT_EQ(result, "C:\\Help Files\\");
}

TEST(ToLongPath, DropsOneQuoteAtEachEnd) {
  HelpRig rig;
  std::string result;
  ToLongPath(rig.files, kOld, "\"C:\\a.chm\"", result, 256);
  EXPECT_EQ(result, "C:\\a.chm");
  ToLongPath(rig.files, kOld, "\"\"C:\\a.chm\"\"", result, 256);
  EXPECT_NE(result, "C:\\a.chm");
}

TEST(ToLongPath, TakesWhatHasNoFolderAsItStands) {
  HelpRig rig;
  for (const std::string path : {"C:\\a.chm", "C:\\", "C:", "Name.chm", "x", "", "\""}) {
    std::string result = "former";
    const int length = ToLongPath(rig.files, kOld, path, result, 256);
    EXPECT_EQ(result, path == "\"" ? "" : path);
    EXPECT_EQ(length, static_cast<int>(result.size()));
  }
  EXPECT_THAT(rig.log, IsEmpty());
}

TEST(ToLongPath, StopsWithWhatItHasAtAFolderThatIsNotThere) {
  HelpRig rig;
  rig.files.found["C:\\HELP~1"] = "Help Files";
  std::string result;
  EXPECT_EQ(ToLongPath(rig.files, kOld, "C:\\HELP~1\\gone\\a.chm", result, 256), 0);
  EXPECT_EQ(result, "C:\\Help Files");
}

TEST(ToLongPath, EmptiesTheResultOfABadName) {
  HelpRig rig;
  rig.files.badName = "C:\\bad?";
  std::string result = "former";
  EXPECT_EQ(ToLongPath(rig.files, kOld, "C:\\bad?\\a.chm", result, 256), 0);
  EXPECT_EQ(result, "");
}

}  // namespace
}  // namespace zq
