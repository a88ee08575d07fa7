#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/state/AppState.h"
#include "help/HelpFrontEnd.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"
#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeMessageBoxes.h"
#include "unit/help/HelpRig.h"

namespace zq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFile = "C:\\Zeroquill\\Zeroquill.chm";

// Files of a drive that isn't ready: every call raises.
class BrokenFiles final : public Files {
 public:
  std::optional<FileEntry> FindEntry(const std::string&) override { Raise(); }
  ListEnd List(const std::string&, const std::function<void(const FileEntry&)>&) override { Raise(); }
  std::optional<std::uint32_t> Attributes(const std::string&) override { Raise(); }
  bool SetAttributes(const std::string&, std::uint32_t) override { Raise(); }
  bool MakeFolder(const std::string&) override { Raise(); }
  bool Remove(const std::string&) override { Raise(); }
  std::string Read(const std::string&) override { Raise(); }
  void Write(const std::string&, const std::string&) override { Raise(); }
  void WriteRecord(const std::string&, const std::string&) override { Raise(); }
  std::string CurrentFolder() override { Raise(); }

 private:
  [[noreturn]] static void Raise() { throw RunTimeError(ErrorNumber::DiskNotReady); }
};

class FakeShell final : public Shell {
 public:
  explicit FakeShell(test::EventLog& log) : log_(log) {}
  void Execute(const ShellRequest& request) override {
    log_.push_back(request.verb + ' ' + request.file + ' ' + request.parameters + ' ' + request.directory);
  }

 private:
  test::EventLog& log_;
};

struct FrontEndRig : test::HelpRig {
  explicit FrontEndRig(bool withFile = true) {
    state.AppFolder = "C:\\Zeroquill\\";
    if (withFile) diskFiles.AddFile(kFile);
    SetHelpFile(kFile);
    messageBoxes.answers.assign(10, MessageAnswer::Ok);
  }
  AppState state;
  test::FakeFiles diskFiles;
  test::FakeMessageBoxes messageBoxes{log};
  FakeShell shell{log};
  HelpFrontEnd front{state, diskFiles, messageBoxes, shell, parts};
};

const Message kMissing{
    "Unable to find the Zeroquill Help file.  Please reinstall Zeroquill to replace the Help system.",
    "Zeroquill Help", MessageIcon::Exclamation, MessageButtons::Ok};

TEST(HelpFrontEnd, ShowsATopicInTheMainWindowOfTheHelpFile) {
  FrontEndRig rig;
  rig.front.ShowTopic(kHelpOnDriveWipe);
  EXPECT_THAT(rig.log, ElementsAre("find C:\\Zeroquill\\Zeroquill.chm",
                                   "HH_HELP_CONTEXT 0 C:\\Zeroquill\\Zeroquill.chm>main 10"));
  EXPECT_THAT(rig.messageBoxes.shown, IsEmpty());
}

TEST(HelpFrontEnd, ShowsTheContents) {
  FrontEndRig rig;
  rig.front.ShowContents();
  EXPECT_EQ(rig.log.back(), "HH_DISPLAY_TOC 0 C:\\Zeroquill\\Zeroquill.chm>main 0");
}

TEST(HelpFrontEnd, AsksForTheTopicsByTheseNumbers) {
  EXPECT_EQ(kHelpOnFolder, 5);
  EXPECT_EQ(kHelpOnOpenJob, 6);
  EXPECT_EQ(kHelpOnDriveWipe, 10);
  EXPECT_EQ(kHelpOnPreferences, 11);
}

TEST(HelpFrontEnd, MakesItsObjectOnceAndSetsItAnew) {
  FrontEndRig rig;
  EXPECT_EQ(rig.front.HelpObject(), nullptr);
  rig.front.ShowTopic(5);
  const HTMLHelp* const object = rig.front.HelpObject();
  ASSERT_NE(object, nullptr);
  const_cast<HTMLHelp*>(object)->HHWindow("other");
  const_cast<HTMLHelp*>(object)->CHMFile("other");
  rig.front.ShowTopic(11);
  EXPECT_EQ(rig.front.HelpObject(), object);
  EXPECT_EQ(rig.log.back(), "HH_HELP_CONTEXT 0 C:\\Zeroquill\\Zeroquill.chm>main 11");
  EXPECT_FALSE(object->HHShowOnTop());
}

TEST(HelpFrontEnd, SaysOfAMissingFileAtEachPressThatItIsMissing) {
  FrontEndRig rig(false);
  rig.front.ShowTopic(5);
  rig.front.ShowTopic(5);
  rig.front.ShowContents();
  EXPECT_THAT(rig.messageBoxes.shown, ElementsAre(kMissing, kMissing, kMissing));
  EXPECT_EQ(rig.front.HelpObject(), nullptr);
}

TEST(HelpFrontEnd, SaysTheSameOfAFileThatIsTakenAwayLater) {
  FrontEndRig rig;
  rig.front.ShowTopic(5);
  rig.diskFiles.Delete(kFile);
  rig.front.ShowTopic(6);
  EXPECT_THAT(rig.messageBoxes.shown, ElementsAre(kMissing));
}

TEST(HelpFrontEnd, TakesAnErrorOfTheSearchForAMissingFile) {
  FrontEndRig rig;
  BrokenFiles broken;
  HelpFrontEnd front{rig.state, broken, rig.messageBoxes, rig.shell, rig.parts};
  EXPECT_FALSE(front.HelpFileExists());
  EXPECT_THAT(rig.messageBoxes.shown, ElementsAre(kMissing));
}

TEST(HelpFrontEnd, OpensTheWebPageWithoutTheHelpFile) {
  FrontEndRig rig(false);
  rig.front.ShowWebPage();
  EXPECT_THAT(rig.log, ElementsAre("open https://zeroquill.example/ 0 0"));
  EXPECT_EQ(rig.front.HelpObject(), nullptr);
}

TEST(HelpFrontEnd, WantsAPlainFile) {
  for (const std::uint32_t attributes : {kAttributeDirectory, kAttributeHidden, kAttributeSystem}) {
    FrontEndRig rig(false);
    rig.diskFiles.AddFile(kFile, "", attributes);
    EXPECT_FALSE(rig.front.HelpFileExists()) << attributes;
  }
  for (const std::uint32_t attributes : {kAttributeNormal, kAttributeArchive, kAttributeReadOnly}) {
    FrontEndRig rig(false);
    rig.diskFiles.AddFile(kFile, "", attributes);
    EXPECT_TRUE(rig.front.HelpFileExists()) << attributes;
  }
}

}  // namespace
}  // namespace zq
