#include <gtest/gtest.h>

#include "core/state/AppState.h"
#include "core/state/DataFolder.h"
#include "support/ExpectRaises.h"
#include "support/fakes/FakeFiles.h"

namespace zq {
namespace {

TEST(DataFolder, IsWhereTheStateSaysAtEachCall) {
  test::FakeFiles files;
  AppState state;
  const DataFolder folder(files, state);
  for (const char* path : {"C:\\Zeroquill\\", "D:\\Tools\\"}) {
    files.AddFolder(path);
    state.AppFolder = path;
    folder.Write("Settings.dat", "some");
    EXPECT_EQ(files.Read(std::string(path) + "Settings.dat"), "some");
    EXPECT_EQ(folder.Read("Settings.dat"), "some");
    EXPECT_EQ(folder.PathOf(kReportFile), std::string(path) + "Report\\Report.dat");
  }
}

TEST(DataFolder, TellsFilesFromFolders) {
  test::FakeFiles files;
  AppState state;
  state.AppFolder = "C:\\Zeroquill\\";
  const DataFolder folder(files, state);
  EXPECT_FALSE(folder.HasFolder("Jobs"));
  EXPECT_TRUE(folder.MakeFolder("Jobs"));
  EXPECT_TRUE(folder.HasFolder("Jobs"));
  EXPECT_FALSE(folder.HasFile("Jobs"));
  files.AddFile("C:\\Zeroquill\\Jobs\\a.zqj", "");
  EXPECT_TRUE(folder.HasFile("Jobs\\a.zqj"));
  EXPECT_EQ(folder.FindEntry("Jobs\\a.zqj")->name, "a.zqj");
  std::string listed;
  folder.List("Jobs\\*.zqj", [&](const FileEntry& entry) { listed += entry.name; });
  EXPECT_EQ(listed, "a.zqj");
  EXPECT_TRUE(folder.Remove("Jobs\\a.zqj"));
  EXPECT_FALSE(folder.HasFile("Jobs\\a.zqj"));
}

TEST(DataFolder, FailsAsTheFilesDo) {
  test::FakeFiles files;
  AppState state;
  state.AppFolder = "C:\\Zeroquill\\";
  const DataFolder folder(files, state);
  EXPECT_TRUE(folder.MakeFolder("Jobs"));
  EXPECT_FALSE(folder.MakeFolder("Jobs")) << "it is there";
  EXPECT_FALSE(folder.Remove("Jobs\\a.zqj"));
  EXPECT_FALSE(folder.FindEntry("Jobs\\a.zqj").has_value());
  EXPECT_EQ(folder.List("Jobs\\*.zqj", [](const FileEntry&) {}), ListEnd::NothingFound);
  files.AddFile("C:\\Zeroquill\\Jobs\\a.zqj", "");
  EXPECT_EQ(folder.List("Jobs\\*.zqj", [](const FileEntry&) {}), ListEnd::Complete);
  test::ExpectRaises(ErrorNumber::FileNotFound, [&] { folder.Read("Jobs\\b.zqj"); });
}

}  // namespace
}  // namespace zq
