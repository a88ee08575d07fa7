// A wipe is held to what the user agreed to: if the path leads to something else by now, that isn't touched.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

EntryId IdOf(EngineRig& rig, const std::string& path) {
  EntryId id;
  EXPECT_TRUE(rig.device.Identify(path, id).Ok());
  rig.device.ops.clear();
  return id;
}

// Wipes the file `name` of `folder`, which have to be those.
bool WipeNamed(EngineRig& rig, const std::string& folder, const std::string& name, const EntryId& meantFolder,
               const EntryId& meant) {
  const std::string path = folder + '/' + name;
  const SecureDelete::NamedFile files[] = {{name, path, meant}};
  return rig.engine.WipeFiles(folder, files, 3, meantFolder);
}

void ExpectUntouched(const EngineRig& rig, const std::string& path) {
  EXPECT_EQ(rig.device.Count("write"), 0u);
  EXPECT_EQ(rig.device.Find(path)->stored, Secret(5'000));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("something else is there now"));
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(Meant, IsWipedWhileItIsTheSame) {
  EngineRig rig;
  rig.device.MakeFile("/f/way/file", Secret(5'000));
  rig.device.MakeFile("/f/top/a", Secret(5'000));
  rig.device.MakeFile("/f/kept/b", Secret(5'000));
  const EntryId way = IdOf(rig, "/f/way");
  const EntryId file = IdOf(rig, "/f/way/file");
  const EntryId top = IdOf(rig, "/f/top");
  const EntryId kept = IdOf(rig, "/f/kept");
  EXPECT_TRUE(WipeNamed(rig, "/f/way", "file", way, file)) << rig.engine.LastErrorText();
  EXPECT_TRUE(rig.engine.WipeFolder("/f/top", 3, &top));
  EXPECT_TRUE(rig.engine.WipeFolderFiles("/f/kept", "*.*", false, 3, &kept));
  EXPECT_THAT(rig.device.Find("/f/way")->children, IsEmpty());
  EXPECT_FALSE(rig.device.Exists("/f/top"));
  EXPECT_THAT(rig.device.Find("/f/kept")->children, IsEmpty());
  EXPECT_THAT(rig.device.violations, IsEmpty());
}

TEST(Meant, FileIsLeftAloneWhenAnotherHasItsName) {
  EngineRig rig;
  rig.device.MakeFile("/f/file", "what was agreed to");
  rig.device.MakeFile("/f/next", Secret(5'000));
  const EntryId folder = IdOf(rig, "/f");
  const EntryId meant = IdOf(rig, "/f/file");
  const EntryId next = IdOf(rig, "/f/next");
  rig.device.MakeFile("/f/file", Secret(5'000));
  const SecureDelete::NamedFile files[] = {{"file", "/f/file", meant}, {"next", "/f/next", next}};
  EXPECT_FALSE(rig.engine.WipeFiles("/f", files, 3, folder));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("something else is there now"));
  EXPECT_EQ(rig.device.Find("/f/file")->stored, Secret(5'000));
  EXPECT_FALSE(rig.device.Exists("/f/next")) << "the rest goes on";
}

TEST(Meant, FileIsLeftAloneWhenItIsReachedThroughAnotherMount) {
  EngineRig rig;
  rig.device.MakeFile("/f/file", Secret(5'000));
  const EntryId folder = IdOf(rig, "/f");
  const EntryId meant = IdOf(rig, "/f/file");
  rig.device.Find("/f")->mount = 7;
  EXPECT_FALSE(WipeNamed(rig, "/f", "file", folder, meant));
  ExpectUntouched(rig, "/f/file");
  const EntryId folderThere = IdOf(rig, "/f");
  EXPECT_FALSE(WipeNamed(rig, "/f", "file", folderThere, meant)) << "the file was named through another one";
  ExpectUntouched(rig, "/f/file");
}

// What has come to the folder's place since it was agreed to, by either call for a folder.
void ExpectFolderIsLeftAlone(void (*change)(Node& folder)) {
  for (const bool onlyFiles : {false, true}) {
    EngineRig rig;
    rig.device.MakeFile("/f/top/a", Secret(5'000));
    const EntryId meant = IdOf(rig, "/f/top");
    change(*rig.device.Find("/f/top"));
    EXPECT_FALSE(onlyFiles ? rig.engine.WipeFolderFiles("/f/top", "*.*", true, 3, &meant)
                           : rig.engine.WipeFolder("/f/top", 3, &meant));
    ExpectUntouched(rig, "/f/top/a");
    EXPECT_EQ(rig.device.Count("list"), 0u);
  }
}

TEST(Meant, FolderIsLeftAloneWhenAnotherHasItsName) {
  ExpectFolderIsLeftAlone([](Node& folder) { folder.number = 99; });
}

TEST(Meant, FolderIsLeftAloneWhenItIsReachedThroughAnotherMount) {
  ExpectFolderIsLeftAlone([](Node& folder) { folder.mount = 7; });
}

// The other name of the same file isn't what was named.
TEST(Meant, FilesAreLeftAloneWhenAnotherFolderIsThere) {
  EngineRig rig;
  rig.device.MakeFile("/f/way/file", Secret(5'000));
  const EntryId file = IdOf(rig, "/f/way/file");
  const EntryId folder = IdOf(rig, "/f/way");
  rig.device.MakeHardLink("/f/other/file", "/f/way/file");
  rig.device.Find("/f")->children["way"] = rig.device.Find("/f/other");
  EXPECT_FALSE(WipeNamed(rig, "/f/way", "file", folder, file));
  ExpectUntouched(rig, "/f/other/file");
  EXPECT_EQ(rig.events.Of("end").size(), 1u) << "the file's end is told";
}

}  // namespace
}  // namespace zq::engine::test
