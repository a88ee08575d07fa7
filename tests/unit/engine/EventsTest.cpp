// What the owner is told of each item.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

std::vector<std::string> Ends(const EngineRig& rig) {
  std::vector<std::string> ends;
  for (const Event& event : rig.events.Of("end")) {
    static constexpr const char* kKinds[] = {"file", "folder", "link", "other"};
    static constexpr const char* kOutcomes[] = {"wiped", "kept", "destroyed"};
    ends.push_back(event.item.path + ' ' + kKinds[static_cast<int>(event.item.kind)] + ' ' +
                   kOutcomes[static_cast<int>(event.end.outcome)]);
  }
  return ends;
}

// The one end of an item.
ItemEnd EndOf(const EngineRig& rig, const std::string& path) {
  ItemEnd found;
  int count = 0;
  for (const Event& event : rig.events.Of("end")) {
    if (event.item.path != path) continue;
    found = event.end;
    ++count;
  }
  EXPECT_EQ(count, 1) << path;
  return found;
}

TEST(Events, TellTheEndOfEachItemOnce) {
  for (const bool renamesOpenFolders : {false, true}) {
    EngineRig rig;
    rig.device.renamesOpenFolders = renamesOpenFolders;
    rig.device.MakeFile("/f/a", Secret(100));
    rig.device.MakeFile("/f/g/a", Secret(100));
    rig.device.MakeFolder("/f/empty");
    rig.device.MakeLink("/f/l", EntryKind::Link);
    rig.device.MakeLink("/f/m", EntryKind::FolderLink);
    ASSERT_TRUE(rig.engine.WipeFolder("/f", 3)) << rig.engine.LastErrorText();
    EXPECT_THAT(Ends(rig), UnorderedElementsAre("/f/a file wiped", "/f/g/a file wiped", "/f/l link wiped",
                                                "/f/m link wiped", "/f/g folder wiped",
                                                "/f/empty folder wiped", "/f folder wiped"));
    EXPECT_EQ(rig.events.Of("end").back().item.path, "/f");
    EXPECT_EQ(EndOf(rig, "/f/g/a").errorCode, 0);
    EXPECT_EQ(EndOf(rig, "/f/g/a").reason, "");
  }
}

TEST(Events, TellNothingOfFoldersThatWereNotToGo) {
  EngineRig rig;
  rig.device.MakeFile("/f/a", Secret(100));
  rig.device.MakeFile("/f/g/a", Secret(100));
  ASSERT_TRUE(rig.engine.WipeFolderFiles("/f", "a", true, 3));
  EXPECT_THAT(Ends(rig), UnorderedElementsAre("/f/a file wiped", "/f/g/a file wiped"));
}

TEST(Events, GiveTheReasonWithoutThePathAndTellWhatStaysForIt) {
  for (const bool renamesOpenFolders : {false, true}) {
    EngineRig rig;
    rig.device.renamesOpenFolders = renamesOpenFolders;
    rig.device.MakeFile("/f/g/bad", Secret(100))->notInPlace = "it is compressed";
    rig.device.MakeFile("/f/g/good", Secret(100));
    rig.device.MakeFolder("/f/other");
    ASSERT_FALSE(rig.engine.WipeFolder("/f", 3));
    EXPECT_THAT(Ends(rig),
                UnorderedElementsAre("/f/g/bad file kept", "/f/g/good file wiped", "/f/g folder kept",
                                     "/f/other folder wiped", "/f folder kept"));
    EXPECT_EQ(EndOf(rig, "/f/g/bad").reason,
              "Opening: it can't be overwritten in place, since it is compressed");
    EXPECT_EQ(EndOf(rig, "/f/g/bad").text, rig.engine.LastErrorText());
    EXPECT_EQ(EndOf(rig, "/f/g/bad").errorCode, kEngineErrorCode);
    EXPECT_EQ(EndOf(rig, "/f/g").errorCode, 0);
    EXPECT_EQ(EndOf(rig, "/f").reason, "something in it stays");
    EXPECT_EQ(rig.events.Of("error").size(), 1u);
  }
}

TEST(Events, TellWhatCanNotEvenBeOpened) {
  EngineRig rig;
  rig.device.MakeFolder("/f");
  rig.device.MakeLink("/f/l", EntryKind::FolderLink);
  EXPECT_FALSE(rig.engine.WipeFile("/gone/x", 3));
  EXPECT_FALSE(rig.engine.WipeFile("/f/gone", 3));
  EXPECT_FALSE(rig.engine.WipeFolder("/f/l", 3));
  EXPECT_THAT(Ends(rig), ElementsAre("/gone/x file kept", "/f/gone file kept", "/f/l folder kept"));
  for (const Event& event : rig.events.Of("end")) EXPECT_NE(event.end.errorCode, 0) << event.item.path;
}

// Whatever goes wrong at whatever point: what is told to be wiped is gone, what is told to be destroyed is
// overwritten, and it can be found under the name that is told.
TEST(Events, TellTheTruthWhereverSomethingGoesWrong) {
  const auto fill = [](EngineRig& rig) {
    rig.device.faultStatus = {Trouble::Other, 5, "Input/output error"};
    for (const char* path : {"/f/first", "/f/g/second", "/f/g/third"}) {
      rig.device.MakeFile(path, Secret(5'000));
    }
    rig.device.MakeLink("/f/g/link", EntryKind::Link);
  };
  std::size_t operations = 0;
  {
    EngineRig rig;
    fill(rig);
    ASSERT_TRUE(rig.engine.WipeFolder("/f", 3));
    operations = rig.device.ops.size();
  }
  std::map<Outcome, int> seen;
  for (std::size_t at = 1; at <= operations; ++at) {
    EngineRig rig;
    fill(rig);
    std::map<std::string, std::shared_ptr<Node>> files;
    for (const char* path : {"/f/first", "/f/g/second", "/f/g/third"}) files[path] = rig.device.Find(path);
    rig.device.fault = FakeDevice::Fault::FailOnce;
    rig.device.faultAt = at;
    rig.engine.WipeFolder("/f", 3);
    std::map<std::string, int> told;
    for (const Event& event : rig.events.Of("end")) {
      const std::string& path = event.item.path;
      EXPECT_EQ(++told[path], 1) << path << ", told twice when operation " << at << " failed";
      const std::string now =
          event.end.nameNow.empty() ? path : path.substr(0, path.rfind('/') + 1) + event.end.nameNow;
      ++seen[event.end.outcome];
      if (event.end.outcome == Outcome::Wiped) {
        EXPECT_FALSE(rig.device.Exists(path)) << path;
        EXPECT_EQ(event.end.reason, "");
        continue;
      }
      EXPECT_NE(event.end.reason, "") << path;
      EXPECT_EQ(event.end.reason.find(path), std::string::npos) << event.end.reason;
      if (!files.contains(path)) continue;
      const bool overwritten = files[path]->stored.find("Top secret") == std::string::npos;
      if (event.end.outcome == Outcome::Destroyed) {
        EXPECT_TRUE(overwritten) << path;
      }
      // Its folder may have another name for a while, or not be flushed.
      if (rig.device.faultKind != "flush folder" && rig.device.Exists("/f/g")) {
        EXPECT_EQ(rig.device.Find(now), files[path]) << now << " when operation " << at << " failed";
      }
    }
  }
  EXPECT_GT(seen[Outcome::Wiped], 0);
  EXPECT_GT(seen[Outcome::Kept], 0);
  EXPECT_GT(seen[Outcome::Destroyed], 0);
}

// A cancel ends the others without a word, but not what has failed by then.
TEST(Events, TellWhatFailedBeforeACancel) {
  EngineRig rig;
  rig.device.MakeFile("/f/a", Secret(5'000));
  rig.device.MakeFile("/f/b", Secret(5'000));
  rig.device.faultStatus = {Trouble::Other, 5, "Input/output error"};
  rig.device.fault = FakeDevice::Fault::FailOnce;
  rig.device.onOp = [&](const Op& op) {
    if (op.kind == "write" && rig.device.faultAt == 0) rig.device.faultAt = rig.device.ops.size();
    if (op.kind == "read") rig.engine.CancelOperation();
  };
  EXPECT_FALSE(rig.engine.WipeFolder("/f", 3));
  EXPECT_TRUE(rig.device.faultHappened);
  EXPECT_THAT(Ends(rig), ElementsAre("/f/a file kept"));
}

}  // namespace
}  // namespace zq::engine::test
