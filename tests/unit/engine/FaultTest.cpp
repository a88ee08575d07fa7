// Every operation on the device fails once, and from then on, until a run meets no fault any more. None of
// these runs may call an unfinished wipe a success, or remove what it hasn't overwritten.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <set>

#include "unit/engine/EngineRig.h"

namespace zq::engine::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Fault = FakeDevice::Fault;

struct Scene {
  const char* name;
  std::function<void(EngineRig&)> setUp;
  std::function<bool(EngineRig&)> run;
  // What must be true of the device when the run says it has succeeded.
  std::function<bool(EngineRig&)> done;
};

void AddStream(const std::shared_ptr<Node>& node, const std::string& name, std::size_t size) {
  auto stream = std::make_shared<Node>();
  stream->original = stream->written = stream->stored = Secret(size);
  stream->writeCounts.resize(size);
  node->streams[name] = stream;
}

// Files of all sorts, among them some that a batch takes together and one that it cuts into several writes.
void MakeBatch(EngineRig& rig) {
  for (int i = 0; i < 6; ++i) {
    rig.device.MakeFile("/f/top/" + std::to_string(i), Secret(100 + 3'000 * static_cast<std::size_t>(i)));
  }
  rig.device.MakeFile("/f/top/large", Secret(150'000));
  rig.device.MakeFile("/f/top/empty", "");
  AddStream(rig.device.Find("/f/top/3"), "s", 5'000);
  rig.device.MakeFile("/f/top/sub/deep/x", Secret(700));
  rig.device.MakeLink("/f/top/sub/link", EntryKind::Link);
}

const Scene kScenes[] = {
    {"file", [](EngineRig& rig) { rig.device.MakeFile("/f/secret", Secret(150'000)); },
     [](EngineRig& rig) { return rig.engine.WipeFile("/f/secret", 3); },
     [](EngineRig& rig) { return rig.device.Find("/f")->children.empty(); }},
    {"file in the cache, with streams",
     [](EngineRig& rig) {
       rig.device.direct = false;
       AddStream(rig.device.MakeFile("/f/secret", Secret(5'000)), "s", 9'000);
     },
     [](EngineRig& rig) { return rig.engine.WipeFile("/f/secret", 3); },
     [](EngineRig& rig) { return rig.device.Find("/f")->children.empty(); }},
    {"file in its record",
     [](EngineRig& rig) {
       rig.device.recordBytes = 700;
       rig.device.MakeFile("/f/secret", Secret(300));
     },
     [](EngineRig& rig) { return rig.engine.WipeFile("/f/secret", 3); },
     [](EngineRig& rig) { return rig.device.Find("/f")->children.empty(); }},
    {"sparse file",
     [](EngineRig& rig) {
       rig.device.MakeFile("/f/secret", Secret(50'000))->room = {{4'096, 8'192}, {45'056, 8'192}};
     },
     [](EngineRig& rig) { return rig.engine.WipeFile("/f/secret", 3); },
     [](EngineRig& rig) { return rig.device.Find("/f")->children.empty(); }},
    {"folder",
     [](EngineRig& rig) {
       rig.device.MakeFile("/f/top/one", Secret(100));
       rig.device.MakeFile("/f/top/sub/two", Secret(9'000));
       rig.device.MakeLink("/f/top/link", EntryKind::Link);
       AddStream(rig.device.Find("/f/top/sub"), "s", 100);
     },
     [](EngineRig& rig) { return rig.engine.WipeFolder("/f/top", 3); },
     [](EngineRig& rig) { return rig.device.Find("/f")->children.empty(); }},
    {"files of a folder",
     [](EngineRig& rig) {
       rig.device.MakeFile("/f/top/one.txt", Secret(100));
       rig.device.MakeFile("/f/top/sub/two.txt", Secret(9'000));
     },
     [](EngineRig& rig) { return rig.engine.WipeFolderFiles("/f/top", "*.txt", true, 3); },
     [](EngineRig& rig) {
       return rig.device.Find("/f/top")->children.size() == 1 &&
              rig.device.Find("/f/top/sub")->children.empty();
     }},
    {"batch", MakeBatch, [](EngineRig& rig) { return rig.engine.WipeFolder("/f/top", 3); },
     [](EngineRig& rig) { return rig.device.Find("/f")->children.empty(); }},
    {"batch with transfers under way",
     [](EngineRig& rig) {
       rig.device.queueDepth = 8;
       rig.device.renamesOpenFolders = true;
       MakeBatch(rig);
     },
     [](EngineRig& rig) { return rig.engine.WipeFolder("/f/top", 3); },
     [](EngineRig& rig) { return rig.device.Find("/f")->children.empty(); }},
    {"tree deeper than folders can be open",
     [](EngineRig& rig) {
       rig.device.renamesOpenFolders = true;
       rig.device.openAtOnce = {4, 3, 4};
       rig.device.MakeFile("/f/top/1/2/3/4/5/6/x", Secret(100));
       rig.device.MakeFile("/f/top/1/x", Secret(100));
     },
     [](EngineRig& rig) { return rig.engine.WipeFolder("/f/top", 3); },
     [](EngineRig& rig) { return rig.device.Find("/f")->children.empty(); }},
};

class EveryFault : public ::testing::TestWithParam<std::tuple<std::size_t, Fault>> {};

TEST_P(EveryFault, IsToldAndRemovesNothingUnfinished) {
  const Scene& scene = kScenes[std::get<0>(GetParam())];
  const Fault fault = std::get<1>(GetParam());
  std::set<std::string> kindsHit;
  std::size_t survived = 0;
  std::size_t runs = 0;
  for (std::size_t n = 1;; ++n) {
    SCOPED_TRACE(std::string(scene.name) + ", operation " + std::to_string(n));
    EngineRig rig;
    scene.setUp(rig);
    rig.device.fault = fault;
    rig.device.faultAt = n;
    const bool result = scene.run(rig);
    EXPECT_EQ(rig.device.openHandles, 0);
    EXPECT_THAT(rig.device.violations, IsEmpty());
    EXPECT_EQ(rig.engine.LastErrorText().empty(), result);
    if (!rig.device.faultHappened) {
      // ShortWrite and LoseWrite pass over other operations: the end is where n is past them all.
      if (n > rig.device.ops.size()) {
        EXPECT_TRUE(result);
        EXPECT_TRUE(scene.done(rig));
        break;
      }
      continue;
    }
    ++runs;
    kindsHit.insert(rig.device.faultKind);
    if (result) {
      ++survived;
      EXPECT_TRUE(scene.done(rig)) << "success was told for an unfinished wipe";
      // Dates that can't be set are the one thing that keeps nothing from being wiped: content and name go
      // all the same, and a file that stayed for its dates would tell more. The note has it. A folder that
      // can't be opened from inside is by its name.
      const bool hasOtherWay = rig.device.faultKind == "open above" || rig.device.faultKind == "identity";
      if (fault == Fault::FailOnce && !hasOtherWay) {
        EXPECT_EQ(rig.device.faultKind, "set dates");
        EXPECT_THAT(rig.engine.Note(), HasSubstr("The dates of what was wiped"));
      }
      EXPECT_NE(fault, Fault::FailFromThenOn) << rig.device.faultKind;
      continue;
    }
    const std::string& text = rig.engine.LastErrorText();
    EXPECT_EQ(text.find_first_of("\"\r\n"), std::string::npos) << text;
    if (fault == Fault::FailOnce || fault == Fault::FailFromThenOn) {
      EXPECT_THAT(text, HasSubstr("The 'device' has failed (1117)"));
    }
    EXPECT_THAT(text, HasSubstr("/f"));
    EXPECT_THAT(rig.events.Of("error"), ::testing::Not(IsEmpty()));
    for (const Event& event : rig.events.Of("error")) EXPECT_NE(event.percent, 0);
  }
  std::printf("%zu runs with a fault in: %s\n", runs, scene.name);
  if (fault == Fault::FailOnce) {
    for (const char* kind :
         {"open folder", "open", "info", "list streams", "write", "flush", "drop cache", "read", "set length",
          "set dates", "rename", "flush entry", "remove", "flush folder"}) {
      EXPECT_EQ(kindsHit.count(kind), 1u) << kind << " was never hit";
    }
  }
  if (fault == Fault::ShortWrite || fault == Fault::ShortFromThenOn) {
    EXPECT_GT(runs, 0u);
    // The rest of it is written afterwards, unless the device has taken nothing at all.
    if (fault == Fault::ShortWrite) {
      EXPECT_GT(survived, 0u);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(AllScenes, EveryFault,
                         ::testing::Combine(::testing::Range<std::size_t>(0, std::size(kScenes)),
                                            ::testing::Values(Fault::FailOnce, Fault::FailFromThenOn,
                                                              Fault::ShortWrite, Fault::ShortFromThenOn)));

// Whatever is asked of it from then on fails, with what systems say then. Nothing is called gone that the
// server may still have.
TEST(NetworkPath, ThatDropsAtAnyMomentIsToldWithTheSystemsReason) {
  for (const Status& reason :
       {Status{Trouble::Other, 64, "The specified network name is no longer available.\r\n"},
        Status{Trouble::Other, 107, "Transport endpoint is not connected"},
        Status{Trouble::Other, 116, "Stale file handle"}, Status{Trouble::Other, 5, "Input/output error"}}) {
    std::set<std::string> kinds;
    for (std::size_t n = 1;; ++n) {
      SCOPED_TRACE(reason.text + std::to_string(n));
      EngineRig rig;
      rig.device.MakeFile("/f/top/a", Secret(5'000));
      AddStream(rig.device.MakeFile("/f/top/sub/b", Secret(100)), "s", 300);
      rig.device.MakeLink("/f/top/sub/link", EntryKind::Link);
      rig.device.fault = Fault::FailFromThenOn;
      rig.device.faultAt = n;
      rig.device.faultStatus = reason;
      const bool result = rig.engine.WipeFolder("/f/top", 3);
      EXPECT_EQ(rig.device.openHandles, 0);
      EXPECT_THAT(rig.device.violations, IsEmpty());
      if (!rig.device.faultHappened) {
        EXPECT_TRUE(result);
        break;
      }
      kinds.insert(rig.device.faultKind);
      EXPECT_FALSE(result) << rig.device.faultKind;
      EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr('(' + std::to_string(reason.code) + ')'));
      for (const Event& error : rig.events.Of("error")) EXPECT_EQ(error.percent, reason.code) << error.name;
    }
    EXPECT_GT(kinds.size(), 15u);
  }
}

// The other files of its batch are wiped, and the one that has failed stays as whole as the failure found it.
TEST(BatchFault, TakesOnlyItsOwnFileOut) {
  std::set<std::string> kinds;
  for (std::size_t n = 1;; ++n) {
    SCOPED_TRACE(n);
    EngineRig rig;
    rig.device.queueDepth = 8;
    for (int i = 0; i < 10; ++i) rig.device.MakeFile("/f/" + std::to_string(i), Secret(5'000));
    rig.device.fault = Fault::FailOnce;
    rig.device.faultAt = n;
    const bool result = rig.engine.WipeFolderFiles("/f", "*.*", false, 3);
    if (!rig.device.faultHappened) {
      EXPECT_TRUE(result);
      break;
    }
    const std::string& kind = rig.device.faultKind;
    kinds.insert(kind);
    EXPECT_EQ(result, kind == "set dates") << "which is told in the note, and keeps nothing back";
    EXPECT_THAT(rig.device.violations, IsEmpty());
    EXPECT_EQ(rig.device.openHandles, 0);
    if (kind == "set dates") {
      EXPECT_TRUE(rig.device.Find("/f")->children.empty());
      EXPECT_THAT(rig.engine.Note(), HasSubstr("The dates of what was wiped"));
      continue;
    }
    // Without the folder there is nothing to do, and a folder's flush is that of all the removals in it.
    if (kind == "open folder" || kind == "list" || kind == "flush folder") continue;
    EXPECT_EQ(rig.device.Find("/f")->children.size(), 1u) << kind;
    EXPECT_EQ(rig.events.Of("wiped").size(), 9u) << kind;
    EXPECT_EQ(rig.events.Of("error").size(), 1u) << kind;
  }
  for (const char* kind : {"open", "info", "write", "flush", "drop cache", "read", "set length", "set dates",
                           "rename", "flush entry", "remove", "flush folder"}) {
    EXPECT_EQ(kinds.count(kind), 1u) << kind << " was never hit";
  }
}

// A write that the device took and lost is caught if it was of the last pass, which is read back.
TEST(LostWrite, OfTheLastPassIsAlwaysCaught) {
  std::size_t writes = 0;
  {
    EngineRig rig;
    rig.device.bytesPerSecond = 5'000'000;  // so that a pass takes more than one write
    rig.device.MakeFile("/f/secret", Secret(150'000));
    ASSERT_TRUE(rig.engine.WipeFile("/f/secret", 3));
    writes = rig.device.Count("write");
  }
  const std::size_t ofOnePass = writes / 9;
  ASSERT_GT(ofOnePass, 1u);
  std::size_t seen = 0;
  for (std::size_t n = 1; seen < writes; ++n) {
    EngineRig rig;
    rig.device.bytesPerSecond = 5'000'000;  // so that a pass takes more than one write
    rig.device.passesNeeded = 8;            // one of them is lost by the device
    rig.device.MakeFile("/f/secret", Secret(150'000));
    rig.device.fault = Fault::LoseWrite;
    rig.device.faultAt = n;
    const bool result = rig.engine.WipeFile("/f/secret", 3);
    if (!rig.device.faultHappened) continue;
    ++seen;
    EXPECT_THAT(rig.device.violations, IsEmpty());
    if (seen > writes - ofOnePass) {
      EXPECT_FALSE(result);
      EXPECT_THAT(rig.engine.LastErrorText(), HasSubstr("Reading back /f/secret"));
      EXPECT_TRUE(rig.device.Exists("/f/secret"));
    }
  }
}

}  // namespace
}  // namespace zq::engine::test
