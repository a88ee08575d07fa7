// The walk through a folder: what goes, what stays, what is told.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/FolderWipe.h"
#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

void MakeTree(FakeDevice& device) {
  device.MakeFile("/safe/keep.txt", Secret(10));
  device.MakeFile("/safe/docs/a.txt", Secret(10));
  device.MakeFile("/safe/docs/b.doc", Secret(5'000));
  device.MakeFile("/safe/docs/README", "");
  device.MakeFile("/safe/docs/deep/A.TXT", Secret(10));
  device.MakeFile("/safe/docs/deep/deeper/c.txt", Secret(100'000));
  device.MakeFolder("/safe/docs/empty");
}

TEST(FolderWipe, RemovesTheFolderWithAllThatIsInIt) {
  EngineRig rig;
  MakeTree(rig.device);
  EXPECT_TRUE(rig.engine.WipeFolder("/safe/docs", 3)) << rig.engine.LastErrorText();
  EXPECT_EQ(rig.device.Find("/safe")->children.size(), 1u);
  EXPECT_TRUE(rig.device.Exists("/safe/keep.txt"));
  EXPECT_EQ(rig.events.Of("wiped").size(), 5u);
  EXPECT_THAT(rig.events.Of("error"), IsEmpty());
  EXPECT_THAT(rig.device.violations, IsEmpty());
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(FolderWipe, RenamesFoldersAndLinksOnceWhereNamesLieInRecords) {
  for (const bool inRecords : {false, true}) {
    EngineRig rig;
    rig.device.namesLieInRecords = inRecords;
    rig.device.MakeFolder("/safe/private papers");
    rig.device.MakeLink("/safe/private papers/a link", EntryKind::Link);
    ASSERT_TRUE(rig.engine.WipeFolder("/safe/private papers", 3)) << rig.engine.LastErrorText();
    EXPECT_EQ(rig.device.Count("rename entry"), inRecords ? 2u : 6u);
  }
}

TEST(FolderWipe, MakesTheRemovalsInAFolderDurableBeforeTheFolderGoes) {
  EngineRig rig;
  MakeTree(rig.device);
  ASSERT_TRUE(rig.engine.WipeFolder("/safe/docs", 3));
  std::map<std::string, std::size_t> flushed;
  std::map<std::string, std::size_t> renamed;
  for (std::size_t i = 0; i < rig.device.ops.size(); ++i) {
    const Op& op = rig.device.ops[i];
    if (op.kind == "flush folder") flushed[op.path] = i;
    if (op.kind == "rename entry") renamed.emplace(op.path.substr(0, op.path.find(" > ")), i);
  }
  for (const char* path : {"/safe/docs", "/safe/docs/deep", "/safe/docs/deep/deeper", "/safe/docs/empty"}) {
    ASSERT_EQ(flushed.count(path), 1u) << path;
    ASSERT_EQ(renamed.count(path), 1u) << path;
    EXPECT_LT(flushed[path], renamed[path]) << path;
  }
  EXPECT_EQ(rig.device.ops.back().kind, "flush folder");
  EXPECT_EQ(rig.device.ops.back().path, "/safe/");
}

// What a folder gives back has its names, but for one that had nothing in it; before its removals are durable
// the system doesn't give that to others.
TEST(FolderWipe, CoversWhatFoldersGaveBackOnceTheirRemovalsAreDurable) {
  EngineRig rig;
  MakeTree(rig.device);
  ASSERT_TRUE(rig.engine.WipeFolder("/safe/docs", 3));
  std::vector<std::string> covered;
  for (const auto& [path, before] : rig.device.coveredFreed) {
    covered.push_back(path);
    std::size_t flushed = 0;
    for (std::size_t i = 0; i < before; ++i) {
      const Op& op = rig.device.ops[i];
      if (op.kind == "flush folder" && op.path == path) flushed = i;
      if (op.kind == "remove" && op.path.starts_with(path + '/')) flushed = 0;
      EXPECT_FALSE(op.kind == "remove entry" && op.path == path) << path;
    }
    EXPECT_GT(flushed, 0u) << path;
  }
  EXPECT_THAT(covered,
              ::testing::UnorderedElementsAre("/safe/docs", "/safe/docs/deep", "/safe/docs/deep/deeper"));
}

TEST(FolderWipe, CoversNothingOfAFolderThatStays) {
  EngineRig rig;
  MakeTree(rig.device);
  rig.device.Find("/safe/docs/deep/deeper/c.txt")->readOnly = true;
  EXPECT_FALSE(rig.engine.WipeFolder("/safe/docs", 3));
  EXPECT_THAT(rig.device.coveredFreed, IsEmpty());
}

TEST(FolderWipe, ReplacesTheNamesOfFoldersBeforeTheyGo) {
  EngineRig rig;
  rig.device.MakeFolder("/safe/private");
  ASSERT_TRUE(rig.engine.WipeFolder("/safe/private", 3));
  std::vector<std::size_t> lengths;
  for (const Op& op : rig.device.ops) {
    if (op.kind == "rename entry") lengths.push_back(op.path.size() - op.path.find(" > ") - 3);
    if (op.kind == "remove entry") {
      EXPECT_EQ(op.path.size(), std::string("/safe/x").size());
    }
  }
  EXPECT_THAT(lengths, ::testing::ElementsAre(7u, 3u, 1u));
}

TEST(FolderWipe, GivesAFolderThatStaysItsNameBack) {
  const auto removalOfTheInnerFolder = [] {
    EngineRig rig;
    rig.device.renamesOpenFolders = true;
    rig.device.MakeFolder("/safe/docs/inner");
    EXPECT_TRUE(rig.engine.WipeFolder("/safe/docs", 3));
    std::size_t number = 0;
    while (rig.device.ops.at(number).kind != "remove entry") ++number;
    return number + 1;  // operations are counted from 1
  };
  EngineRig rig;
  rig.device.renamesOpenFolders = true;
  rig.device.MakeFolder("/safe/docs/inner");
  rig.device.fault = FakeDevice::Fault::FailOnce;
  rig.device.faultAt = removalOfTheInnerFolder();
  EXPECT_FALSE(rig.engine.WipeFolder("/safe/docs", 3));
  EXPECT_EQ(rig.device.faultKind, "remove entry");
  ASSERT_TRUE(rig.device.Exists("/safe/docs")) << "the user has to find what is left";
  EXPECT_EQ(rig.device.Find("/safe/docs")->children.size(), 1u);
  EXPECT_NE(rig.engine.LastErrorText().find("now named"), std::string::npos);
}

TEST(FolderWipe, GoesOnAfterAFileThatFailsAndKeepsTheFoldersAboveIt) {
  EngineRig rig;
  MakeTree(rig.device);
  rig.device.Find("/safe/docs/deep/deeper/c.txt")->readOnly = true;
  EXPECT_FALSE(rig.engine.WipeFolder("/safe/docs", 3));
  ASSERT_EQ(rig.engine.LastErrorText(), "Opening /safe/docs/deep/deeper/c.txt: Access is denied (5)");
  ASSERT_TRUE(rig.device.Exists("/safe/docs/deep/deeper/c.txt"));
  EXPECT_EQ(rig.device.Find("/safe/docs")->children.size(), 1u);
  EXPECT_EQ(rig.device.Find("/safe/docs/deep")->children.size(), 1u);
  EXPECT_EQ(rig.device.Find("/safe/docs/deep/deeper/c.txt")->stored, Secret(100'000));
  EXPECT_EQ(rig.events.Of("wiped").size(), 4u);
  EXPECT_EQ(rig.events.Of("error").size(), 1u);
}

TEST(FolderWipe, TellsTheFirstFailureAndHowManyFollowed) {
  EngineRig rig;
  MakeTree(rig.device);
  rig.device.Find("/safe/docs/a.txt")->readOnly = true;
  rig.device.Find("/safe/docs/b.doc")->notInPlace = "it is a sparse file";
  EXPECT_FALSE(rig.engine.WipeFolder("/safe/docs", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "Opening /safe/docs/a.txt: Access is denied (5), and 1 more failure");
  rig.device.MakeLink("/safe/docs/pipe", EntryKind::Other);
  EXPECT_FALSE(rig.engine.WipeFolder("/safe/docs", 3));
  EXPECT_EQ(rig.engine.LastErrorText(),
            "Opening /safe/docs/a.txt: Access is denied (5), and 2 more failures");
  EXPECT_TRUE(rig.device.Exists("/safe/docs/pipe"));
}

TEST(FolderWipe, RemovesLinksAsLinksAndNeverFollowsThem) {
  EngineRig rig;
  MakeTree(rig.device);
  rig.device.MakeLink("/safe/docs/link", EntryKind::Link);
  rig.device.MakeLink("/safe/docs/deep/junction", EntryKind::FolderLink)->children["inside"] =
      rig.device.Find("/safe/keep.txt");
  rig.device.Find("/safe/docs/deep/junction")->children.clear();
  EXPECT_TRUE(rig.engine.WipeFolder("/safe/docs", 3)) << rig.engine.LastErrorText();
  EXPECT_FALSE(rig.device.Exists("/safe/docs"));
  EXPECT_EQ(rig.events.Of("wiped").size(), 5u) << "a link isn't an item";
  for (const Op& op : rig.device.ops) {
    if (op.kind == "open" || op.kind == "open folder") {
      EXPECT_EQ(op.path.find("link"), std::string::npos);
      EXPECT_EQ(op.path.find("junction"), std::string::npos);
    }
  }
}

TEST(FolderWipe, EndsWhereJunctionsMakeALoop) {
  EngineRig rig;
  MakeTree(rig.device);
  const auto loop = rig.device.MakeLink("/safe/docs/deep/junction", EntryKind::FolderLink);
  loop->children["docs"] = rig.device.Find("/safe/docs");
  EXPECT_FALSE(rig.engine.WipeFolder("/safe/docs", 3)) << "this device removes no entry that holds others";
  EXPECT_EQ(rig.events.Of("wiped").size(), 5u);
  loop->children.clear();
  EXPECT_TRUE(rig.engine.WipeFolder("/safe/docs", 3)) << rig.engine.LastErrorText();
}

TEST(FolderWipe, RefusesALinkNamedByItself) {
  EngineRig rig;
  rig.device.MakeLink("/safe/link", EntryKind::FolderLink);
  EXPECT_FALSE(rig.engine.WipeFolder("/safe/link", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "Opening /safe/link: it is a link");
  EXPECT_FALSE(rig.engine.WipeFolderFiles("/safe/link", "*.*", true, 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "Opening /safe/link: it is a link");
  EXPECT_TRUE(rig.device.Exists("/safe/link"));
  EXPECT_FALSE(rig.engine.WipeFolder("/none", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "Opening /none: The file is not there (2)");
}

TEST(FolderWipe, WipesTheStreamsOfAFolderBeforeItGoes) {
  EngineRig rig;
  MakeTree(rig.device);
  auto stream = std::make_shared<Node>();
  stream->original = stream->written = stream->stored = Secret(3'000);
  stream->writeCounts.resize(3'000);
  rig.device.Find("/safe/docs/deep")->streams["notes"] = stream;
  EXPECT_TRUE(rig.engine.WipeFolder("/safe/docs", 3)) << rig.engine.LastErrorText();
  EXPECT_THAT(rig.device.violations, IsEmpty());
  EXPECT_NE(stream->stored, Secret(3'000));
  EXPECT_EQ(rig.events.Of("wiped").size(), 5u);
}

// It stays for something deep in it, and so do all that it holds itself.
TEST(FolderWipe, LeavesAFolderThatStaysItsStreams) {
  for (const bool renames : {false, true}) {
    EngineRig rig;
    rig.device.renamesOpenFolders = renames;
    MakeTree(rig.device);
    rig.device.Find("/safe/docs/deep/deeper/c.txt")->readOnly = true;
    for (const char* folder : {"/safe/docs", "/safe/docs/deep", "/safe/docs/deep/deeper"}) {
      auto stream = std::make_shared<Node>();
      stream->original = stream->written = stream->stored = Secret(3'000);
      stream->writeCounts.resize(3'000);
      rig.device.Find(folder)->streams["notes"] = stream;
    }
    EXPECT_FALSE(rig.engine.WipeFolder("/safe/docs", 3));
    for (const char* folder : {"/safe/docs", "/safe/docs/deep", "/safe/docs/deep/deeper"}) {
      ASSERT_EQ(rig.device.Find(folder)->streams.count("notes"), 1u) << folder;
      EXPECT_EQ(rig.device.Find(folder)->streams["notes"]->stored, Secret(3'000)) << folder;
    }
  }
}

TEST(FolderWipe, WipesARootButCantRemoveIt) {
  EngineRig rig;
  MakeTree(rig.device);
  EXPECT_FALSE(rig.engine.WipeFolder("/", 3));
  EXPECT_EQ(rig.engine.LastErrorText(), "Removing /: the root of a drive can't be removed");
  EXPECT_TRUE(rig.device.Find("/")->children.empty());
}

TEST(FolderWipe, GoesAsDeepAsTheTree) {
  EngineRig rig;
  std::string path = "/top";
  for (int i = 0; i < 1'000; ++i) path += "/d";
  rig.device.MakeFile(path + "/x", Secret(10));
  EXPECT_TRUE(rig.engine.WipeFolder("/top", 3)) << rig.engine.LastErrorText();
  EXPECT_FALSE(rig.device.Exists("/top"));
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(FolderFiles, WipesWhatMatchesAndKeepsTheFolders) {
  EngineRig rig;
  MakeTree(rig.device);
  EXPECT_TRUE(rig.engine.WipeFolderFiles("/safe/docs", "*.txt", true, 3));
  EXPECT_FALSE(rig.device.Exists("/safe/docs/a.txt"));
  EXPECT_FALSE(rig.device.Exists("/safe/docs/deep/deeper/c.txt"));
  EXPECT_TRUE(rig.device.Exists("/safe/docs/deep/deeper"));
  EXPECT_TRUE(rig.device.Exists("/safe/docs/deep/A.TXT")) << "case counts";
  EXPECT_TRUE(rig.device.Exists("/safe/docs/b.doc"));
  EXPECT_TRUE(rig.device.Exists("/safe/docs/empty"));
  EXPECT_EQ(rig.events.Of("wiped").size(), 2u);
  EXPECT_EQ(rig.device.Count("rename entry"), 0u);
}

TEST(FolderFiles, StaysInTheFolderWithoutSubFolders) {
  EngineRig rig;
  MakeTree(rig.device);
  EXPECT_TRUE(rig.engine.WipeFolderFiles("/safe/docs", "*.txt", false, 3));
  EXPECT_FALSE(rig.device.Exists("/safe/docs/a.txt"));
  EXPECT_TRUE(rig.device.Exists("/safe/docs/deep/deeper/c.txt"));
}

TEST(FolderFiles, TakesEveryFileForTheMaskOfAllFiles) {
  EngineRig rig;
  MakeTree(rig.device);
  EXPECT_TRUE(rig.engine.WipeFolderFiles("/safe/docs", "*.*", true, 3));
  EXPECT_EQ(rig.events.Of("wiped").size(), 5u) << "README has no dot";
  EXPECT_TRUE(rig.device.Exists("/safe/docs/deep/deeper"));
  EXPECT_TRUE(rig.device.Exists("/safe/docs/empty"));
  EXPECT_THAT(rig.device.violations, IsEmpty());
}

TEST(FolderFiles, LeavesLinksToFoldersAndRemovesMatchingOtherLinks) {
  EngineRig rig;
  MakeTree(rig.device);
  rig.device.MakeLink("/safe/docs/l.txt", EntryKind::Link);
  rig.device.MakeLink("/safe/docs/l.doc", EntryKind::Link);
  rig.device.MakeLink("/safe/docs/j.txt", EntryKind::FolderLink);
  EXPECT_TRUE(rig.engine.WipeFolderFiles("/safe/docs", "*.txt", true, 3));
  EXPECT_FALSE(rig.device.Exists("/safe/docs/l.txt"));
  EXPECT_TRUE(rig.device.Exists("/safe/docs/l.doc"));
  EXPECT_TRUE(rig.device.Exists("/safe/docs/j.txt"));
}

TEST(FolderFiles, IsDoneWhenNothingMatches) {
  EngineRig rig;
  MakeTree(rig.device);
  EXPECT_TRUE(rig.engine.WipeFolderFiles("/safe/docs", "*.none", true, 3));
  EXPECT_THAT(rig.events.all, IsEmpty());
  EXPECT_FALSE(rig.engine.WipeFolderFiles("/safe/none", "*.*", true, 3));
}

}  // namespace
}  // namespace zq::engine::test
