#include <gtest/gtest.h>

#include "core/state/ItemExists.h"
#include "platform/Files.h"
#include "support/fakes/FakeFiles.h"

namespace zq {
namespace {

using test::FakeFiles;

TEST(ItemExists, FindsFilesOfWhateverAttributes) {
  FakeFiles files;
  for (std::uint32_t attributes :
       {kAttributeNormal, kAttributeReadOnly, kAttributeHidden, kAttributeSystem, kAttributeArchive,
        kAttributeReadOnly | kAttributeHidden | kAttributeSystem}) {
    files.AddFile("C:\\a.txt", "x", attributes);
    EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\a.txt")) << attributes;
  }
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\b.txt"));
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "D:\\a.txt"));
}

TEST(ItemExists, TakesNoFolderForAFile) {
  FakeFiles files;
  files.AddFolder("C:\\Papers", kAttributeDirectory | kAttributeReadOnly | kAttributeHidden);
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\Papers"));
}

TEST(ItemExists, FindsFoldersAndPlainFilesForAnyOtherKind) {
  FakeFiles files;
  files.AddFolder("C:\\Papers");
  files.AddFolder("C:\\Hidden", kAttributeDirectory | kAttributeHidden | kAttributeSystem);
  files.AddFile("C:\\a.txt");
  for (int kind : {kItemIsFolder, 0, 3, -1}) {
    EXPECT_TRUE(ItemExists(files, kind, "C:\\Papers")) << kind;
    EXPECT_TRUE(ItemExists(files, kind, "C:\\Hidden")) << kind;
    EXPECT_TRUE(ItemExists(files, kind, "C:\\a.txt")) << kind;
    EXPECT_FALSE(ItemExists(files, kind, "C:\\Gone")) << kind;
  }
}

TEST(ItemExists, LooksAtTheContentOfAPathThatEndsInABackslash) {
  FakeFiles files;
  files.AddFolder("C:\\Empty");
  files.AddFolder("C:\\OnlyFolders\\Sub");
  files.AddFile("C:\\WithFile\\a.txt");
  EXPECT_TRUE(ItemExists(files, kItemIsFolder, "C:\\Empty\\"));
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\Empty\\"));
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\OnlyFolders\\"));
  EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\WithFile\\"));
  EXPECT_FALSE(ItemExists(files, kItemIsFolder, "C:\\Gone\\"));
}

TEST(ItemExists, MatchesWildcards) {
  FakeFiles files;
  files.AddFolder("C:\\a.folder");
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\a.*"));
  EXPECT_TRUE(ItemExists(files, kItemIsFolder, "C:\\a.*"));
  files.AddFile("C:\\a.txt");  // behind the folder in the listing
  EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\a.*"));
  EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\?.txt"));
  EXPECT_FALSE(ItemExists(files, kItemIsFile, "C:\\b*"));
  files.AddFolder("C:\\a.zip");  // behind the file in turn
  EXPECT_TRUE(ItemExists(files, kItemIsFile, "C:\\a.*"));
}

TEST(ItemExists, GivesFalseForNoPathAndForAnyFailure) {
  FakeFiles files;
  files.AddFile("C:\\a.txt");
  for (int kind : {kItemIsFile, kItemIsFolder}) EXPECT_FALSE(ItemExists(files, kind, ""));
  files.failEverything = true;
  for (int kind : {kItemIsFile, kItemIsFolder}) EXPECT_FALSE(ItemExists(files, kind, "C:\\a.txt"));
}

}  // namespace
}  // namespace zq
