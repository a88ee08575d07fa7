#include <gtest/gtest.h>

#include "cli/Safety.h"

namespace zq::cli {
namespace {

Guarded At(const char* path) {
  return {path, {}, {}};
}

Surroundings OnLinux() {
  return {PathStyle::Posix,
          At("/people/ann/desk/now"),
          At("/opt/tools/bin/zqwipe"),
          {At("/people/ann"), At("/people/bob"), At("/srv/http")},
          {"/", "/mnt/stick", "/etc/hosts"}};
}

Surroundings OnWindows() {
  return {PathStyle::Windows,
          At("D:\\Work\\now"),
          At("C:\\Tools\\zqwipe.exe"),
          {At("C:\\Users\\Ann"), At("C:\\Users\\Public")},
          {}};
}

struct Case {
  const char* given;
  const char* canonical;
  const char* why;
};

constexpr Case kLinux[] = {
    {"/", "/", "it is a whole drive"},
    {"//", "/", "it is a whole drive"},
    {"/../", "/", "'.' and '..' are not accepted; name the folder itself"},
    {"/mnt/stick", "/mnt/stick", "a file system is mounted there"},
    {"/etc/hosts", "/etc/hosts", "a file system is mounted there"},
    {"/mnt/stick/old", "/mnt/stick/old", ""},
    {".", "/people/ann/desk/now", "'.' and '..' are not accepted; name the folder itself"},
    {"./", "/people/ann/desk/now", "'.' and '..' are not accepted; name the folder itself"},
    {"old/..", "/people/ann/desk/now", "'.' and '..' are not accepted; name the folder itself"},
    {"old/.", "/people/ann/desk/now/old", "'.' and '..' are not accepted; name the folder itself"},
    {"../now", "/people/ann/desk/now", "it is the current folder"},
    {"/people/ann/desk", "/people/ann/desk", "the current folder is in it"},
    {"/people/ann", "/people/ann", "it is a home folder"},
    {"/people/bob/", "/people/bob", "it is a home folder"},
    {"/people", "/people", "a home folder is in it"},
    {"/srv", "/srv", "a home folder is in it"},
    {"/opt/tools/bin/zqwipe", "/opt/tools/bin/zqwipe", "it is the program that is running"},
    {"/opt/tools/bin", "/opt/tools/bin", "the program that is running is in it"},
    {"/opt", "/opt", "the program that is running is in it"},
    {"/opt/tools/bin/zqwip", "/opt/tools/bin/zqwip", ""},
    {"/opt/tools/bin/other", "/opt/tools/bin/other", ""},
    {"old", "/people/ann/desk/now/old", ""},
    {"...", "/people/ann/desk/now/...", ""},
    {".hidden", "/people/ann/desk/now/.hidden", ""},
    {"..x", "/people/ann/desk/now/..x", ""},
    {"/people/ann/other", "/people/ann/other", ""},
    {"/people/anna", "/people/anna", ""},
    {"missing/file", "", ""},
};

constexpr Case kWindows[] = {
    {"C:\\", "C:\\", "it is a whole drive"},
    {"c:/", "C:\\", "it is a whole drive"},
    {"E:", "E:\\some\\folder", "it is a whole drive"},
    {"\\", "C:\\", "it is a whole drive"},
    {"X:\\", "C:\\somewhere", "it is a whole drive"},
    {"\\\\server\\share", "\\\\server\\share\\", "it is a whole drive"},
    {"\\\\server\\share\\old", "\\\\server\\share\\old", ""},
    {"\\\\?\\C:\\", "C:\\", "it is a whole drive"},
    {"\\\\?\\Volume{1-2}\\", "\\\\?\\Volume{1-2}\\", "it is a whole drive"},
    {"old\\..", "D:\\Work\\now", "'.' and '..' are not accepted; name the folder itself"},
    {"old/.", "D:\\Work\\now\\old", "'.' and '..' are not accepted; name the folder itself"},
    {"d:\\WORK\\NOW\\", "D:\\Work\\now", "it is the current folder"},
    {"D:\\work", "D:\\Work", "the current folder is in it"},
    {"C:\\USERS\\ANN", "C:\\Users\\Ann", "it is a home folder"},
    {"C:\\Users", "C:\\Users", "a home folder is in it"},
    {"C:\\tools", "C:\\tools", "the program that is running is in it"},
    {"C:\\tools\\ZQWIPE.EXE", "C:\\tools\\ZQWIPE.EXE", "it is the program that is running"},
    {"C:\\Users\\Ann\\old", "C:\\Users\\Ann\\old", ""},
    {"D:\\Work\\now\\old", "D:\\Work\\now\\old", ""},
};

TEST(Safety, ProtectsDrivesHomesAndWhereTheProgramRunsOnLinux) {
  for (const Case& test : kLinux) {
    EXPECT_EQ(WhyProtected({test.given, test.canonical, {}}, OnLinux()), test.why) << test.given;
  }
}

TEST(Safety, ProtectsDrivesHomesAndWhereTheProgramRunsOnWindows) {
  for (const Case& test : kWindows) {
    EXPECT_EQ(WhyProtected({test.given, test.canonical, {}}, OnWindows()), test.why) << test.given;
  }
}

TEST(Safety, KnowsAProtectedFolderUnderAnotherPath) {
  Surroundings surroundings = OnLinux();
  surroundings.homes[0].id = {1, 10};
  surroundings.homes[0].above = {{1, 11}, {1, 2}};
  surroundings.currentFolder.id = {1, 20};
  surroundings.currentFolder.above = {{1, 21}};
  surroundings.program.above = {{1, 31}};
  const auto why = [&](FileId id) { return WhyProtected({"alias", "/other/alias", id}, surroundings); };
  EXPECT_EQ(why({1, 10}), "it is a home folder");
  EXPECT_EQ(why({1, 11}), "a home folder is in it");
  EXPECT_EQ(why({1, 20}), "it is the current folder");
  EXPECT_EQ(why({1, 21}), "the current folder is in it");
  EXPECT_EQ(why({1, 31}), "the program that is running is in it");
  EXPECT_EQ(why({2, 10}), "");
  EXPECT_EQ(why({}), "");
}

TEST(Safety, LetsEverythingElsePassWhereNothingIsKnown) {
  EXPECT_EQ(WhyProtected({"a", "/a", {}}, Surroundings{}), "");
  EXPECT_EQ(WhyProtected({"/", "/", {}}, Surroundings{}), "it is a whole drive");
}

}  // namespace
}  // namespace zq::cli
