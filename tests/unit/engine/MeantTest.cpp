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

void ExpectUntouched(const EngineRig& rig, const std::string& path) {
  EXPECT_EQ(rig.device.Count("write"), 0u);
  EXPECT_EQ(rig.device.Find(path)->stored, Secret(5'000));
  EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("something else is there now"));
  EXPECT_EQ(rig.device.openHandles, 0);
}

TEST(Meant, IsWipedWhileItIsTheSame) {
  EngineRig rig;
  rig.device.MakeFile("/f/file", Secret(5'000));
  rig.device.MakeFile("/f/top/a", Secret(5'000));
  rig.device.MakeFile("/f/kept/b", Secret(5'000));
  const EntryId file = IdOf(rig, "/f/file");
  const EntryId top = IdOf(rig, "/f/top");
  const EntryId kept = IdOf(rig, "/f/kept");
  EXPECT_TRUE(rig.engine.WipeFile("/f/file", 3, &file));
  EXPECT_TRUE(rig.engine.WipeFolder("/f/top", 3, &top));
  EXPECT_TRUE(rig.engine.WipeFolderFiles("/f/kept", "*.*", false, 3, &kept));
  EXPECT_EQ(rig.device.Find("/f")->children.size(), 1u);
  EXPECT_THAT(rig.device.Find("/f/kept")->children, IsEmpty());
  EXPECT_THAT(rig.device.violations, IsEmpty());
}

TEST(Meant, FileIsLeftAloneWhenAnotherHasItsName) {
  EngineRig rig;
  rig.device.MakeFile("/f/file", "what was agreed to");
  const EntryId meant = IdOf(rig, "/f/file");
  rig.device.MakeFile("/f/file", Secret(5'000));
  EXPECT_FALSE(rig.engine.WipeFile("/f/file", 3, &meant));
  ExpectUntouched(rig, "/f/file");
}

TEST(Meant, FileIsLeftAloneWhenItIsReachedThroughAnotherMount) {
  EngineRig rig;
  rig.device.MakeFile("/f/file", Secret(5'000));
  const EntryId meant = IdOf(rig, "/f/file");
  rig.device.Find("/f")->mount = 7;
  EXPECT_FALSE(rig.engine.WipeFile("/f/file", 3, &meant));
  ExpectUntouched(rig, "/f/file");
}

TEST(Meant, FolderIsLeftAloneWhenAnotherHasItsName) {
  for (const bool onlyFiles : {false, true}) {
    EngineRig rig;
    rig.device.MakeFile("/f/top/a", Secret(5'000));
    const EntryId meant = IdOf(rig, "/f/top");
    rig.device.Find("/f/top")->number = 99;
    EXPECT_FALSE(onlyFiles ? rig.engine.WipeFolderFiles("/f/top", "*.*", true, 3, &meant)
                           : rig.engine.WipeFolder("/f/top", 3, &meant));
    ExpectUntouched(rig, "/f/top/a");
    EXPECT_EQ(rig.device.Count("list"), 0u);
  }
}

// The other name of the same file isn't what was named.
TEST(Meant, FilesAreLeftAloneWhenAnotherFolderIsThere) {
  EngineRig rig;
  rig.device.MakeFile("/f/way/file", Secret(5'000));
  const EntryId file = IdOf(rig, "/f/way/file");
  const EntryId folder = IdOf(rig, "/f/way");
  const std::vector<SecureDelete::NamedFile> files = {{"file", "/f/way/file", file}};
  rig.device.MakeHardLink("/f/other/file", "/f/way/file");
  rig.device.Find("/f")->children["way"] = rig.device.Find("/f/other");
  EXPECT_FALSE(rig.engine.WipeFiles("/f/way", files, 3, &folder));
  ExpectUntouched(rig, "/f/other/file");
  EXPECT_EQ(rig.events.Of("end").size(), 1u) << "the file's end is told";
}

TEST(Meant, FilesGoWhenTheirFolderIsTheSame) {
  EngineRig rig;
  rig.device.MakeFile("/f/way/file", Secret(5'000));
  const EntryId folder = IdOf(rig, "/f/way");
  const std::vector<SecureDelete::NamedFile> files = {{"file", "/f/way/file", IdOf(rig, "/f/way/file")}};
  EXPECT_TRUE(rig.engine.WipeFiles("/f/way", files, 3, &folder)) << rig.engine.LastErrorText();
  EXPECT_FALSE(rig.device.Exists("/f/way/file"));
}

}  // namespace
}  // namespace zq::engine::test
