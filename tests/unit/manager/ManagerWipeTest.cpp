#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/state/DataFolder.h"
#include "manager/ManagerWipe.h"
#include "support/fakes/FakeEngine.h"
#include "support/fakes/FakeLongWork.h"
#include "support/fakes/FakePlatform.h"
#include "support/fakes/FakeWindows.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class FakeLines final : public LineList {
 public:
  explicit FakeLines(EventLog& log) : log_(log) {}
  void Show(const std::string& title, const std::vector<std::string>& lines) override {
    log_.push_back("lines " + title);
    for (const std::string& line : lines) log_.push_back(line);
  }

 private:
  EventLog& log_;
};

class FakeNotices final : public ShellNotices {
 public:
  explicit FakeNotices(EventLog& log) : log_(log) {}
  void FolderChanged(const std::string& folder) override { log_.push_back("shell: changed " + folder); }
  void BinsChanged() override { log_.emplace_back("shell: bins changed"); }

 private:
  EventLog& log_;
};

class ManagerWipeTest : public ::testing::Test, protected FakePlatform {
 protected:
  ManagerWipeTest() {
    wipe.SetEngine(&engine, &whole);
    state.AppFolder = "C:\\Zeroquill\\";
    state.Settings.Passes = 5;
  }

  static Selection TwoItems() {
    return {{{"C:\\a.txt", false, "", "C:\\a.txt"}, {"C:\\f", true, "", "C:\\f"}},
            {FixedPoint(1235), FixedPoint(1), 3 * 1024, true},
            {}};
  }
  static BinContents TwoDeleted() {
    BinContents contents;
    contents.folders = {"C:\\$Recycle.Bin\\S-1\\"};
    contents.items = {{"C:\\bin\\$R1", false, "C:\\bin\\$I1", "C:\\a.txt"},
                      {"C:\\bin\\$R2", true, "C:\\bin\\$I2", "C:\\f"}};
    contents.measured = {FixedPoint(2), FixedPoint(1), 10, true};
    return contents;
  }
  std::vector<std::string> Told(const std::vector<std::string>& starts) const {
    std::vector<std::string> told;
    for (const std::string& line : log) {
      for (const std::string& start : starts)
        if (line.starts_with(start)) told.push_back(line);
    }
    return told;
  }

  AppState state;
  FakeStatusWindow status{log};
  FakeLines lines{log};
  FakeLongWork longWork{log};
  Platform telling{files, boxes, process, regional, registry, longWork};
  FakeNotices notices{log};
  ManagerWipe wipe{state, telling, status, lines, notices};
  FakeEngine engine{log, wipe};
  FakeWholeWipes whole{log};
};

const Message kDone{"The wipe operation is now complete.", "Wipe with Zeroquill", MessageIcon::Information,
                    MessageButtons::Ok};

TEST_F(ManagerWipeTest, AsksThenWipesAllAsOneWholeAndTells) {
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  EXPECT_TRUE(wipe.WipeSelection(TwoItems()));
  EXPECT_EQ(boxes.shown[0],
            (Message{"This operation will securely wipe the 2 selected items.\r\n\r\n"
                     "Contents: 1,235 files, 1 folder\r\n"
                     "Size: 3.00 KB\r\n"
                     "Security level: 5 (equal to 15 data writes per byte)\r\n\r\n"
                     "Once the wipe operation is complete, they will not be recoverable.\r\n\r\n"
                     "Are you sure you wish to continue?",
                     "Wipe with Zeroquill", MessageIcon::Question, MessageButtons::OkCancel}));
  EXPECT_EQ(boxes.shown[1], kDone);
  EXPECT_THAT(
      Told({"box", "work: begin", "work: end", "work: call", "status: show", "status: cancel",
            "status: unload", "Wipe", "BeginWhole", "EndWhole"}),
      ElementsAre("box Wipe with Zeroquill",
                  "work: begin: Files are being wiped.  What is in work would be left half done.  Cancel "
                  "the wipe operation first, or let it come to its end.",
                  "status: show", "status: cancel on", "BeginWhole", "WipeFile C:\\a.txt 5",
                  "WipeFolder C:\\f 5", "EndWhole", "status: unload", "work: end", "work: call",
                  "box Wipe with Zeroquill"));
}

TEST_F(ManagerWipeTest, DoesNothingWithoutAYes) {
  boxes.answers = {MessageAnswer::Cancel, MessageAnswer::Cancel};
  EXPECT_FALSE(wipe.WipeSelection(TwoItems()));
  EXPECT_FALSE(wipe.WipeBin(TwoDeleted()));
  EXPECT_THAT(log, ElementsAre("box Wipe with Zeroquill", "box Wipe Recycle Bin"));
}

TEST_F(ManagerWipeTest, NamesASingleItem) {
  Selection one = TwoItems();
  one.items.resize(1);
  one.measured = {FixedPoint(1), FixedPoint(0), 0, true};
  EXPECT_THAT(
      SelectionQuestion(one, 3, regional).text,
      HasSubstr("will securely wipe:\r\n\r\nC:\\a.txt\r\n\r\nContents: 1 file, no folders\r\nSize: 0 Bytes"));
  BinContents deleted = TwoDeleted();
  deleted.items.resize(1);
  EXPECT_THAT(BinQuestion(deleted, 3, regional).text,
              HasSubstr("the 1 item in your Recycle Bin:\r\n\r\nC:\\a.txt"));
}

TEST_F(ManagerWipeTest, SaysThatThereMayBeMore) {
  Selection selection = TwoItems();
  EXPECT_THAT(SelectionQuestion(selection, 3, regional).text, Not(HasSubstr("there may be more")));
  selection.measured.isComplete = false;
  EXPECT_THAT(SelectionQuestion(selection, 3, regional).text, HasSubstr("so there may be more.\r\n\r\nOnce"));
}

TEST_F(ManagerWipeTest, RefusesTheWholeSelectionWithTheReasons) {
  Selection selection = TwoItems();
  for (int i = 1; i <= 7; ++i) selection.refusals.push_back("reason " + std::to_string(i));
  boxes.answers = {MessageAnswer::Ok};
  EXPECT_FALSE(wipe.WipeSelection(selection));
  EXPECT_EQ(boxes.shown[0],
            (Message{"Nothing of the selection was wiped, because of:\r\n\r\nreason 1\r\n\r\nreason 2\r\n\r\n"
                     "reason 3\r\n\r\nreason 4\r\n\r\nreason 5\r\n\r\n... and 2 more",
                     "Wipe with Zeroquill", MessageIcon::Exclamation, MessageButtons::Ok}));
  EXPECT_THAT(log, ElementsAre("box Wipe with Zeroquill"));
  EXPECT_FALSE(wipe.WipeSelection({}));
}

TEST_F(ManagerWipeTest, WipesARecordOnceItsItemIsGone) {
  engine.failures = {{"C:\\bin\\$R1", "it is in use"}};
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  EXPECT_TRUE(wipe.WipeBin(TwoDeleted()));
  EXPECT_THAT(Told({"Wipe"}),
              ElementsAre("WipeFile C:\\bin\\$R1 5", "WipeFolder C:\\bin\\$R2 5", "WipeFile C:\\bin\\$I2 5"));
  EXPECT_EQ(boxes.shown[1],
            (Message{"The wipe operation has ended.\r\n\r\n"
                     "Some items could not be wiped.  The list that follows tells which, and why.",
                     "Wipe Recycle Bin", MessageIcon::Exclamation, MessageButtons::Ok}));
  EXPECT_THAT(Told({"lines", "C:"}), ElementsAre("lines Wipe Recycle Bin", "C:\\a.txt - it is in use"));
}

TEST_F(ManagerWipeTest, TellsOfARecordThatStaysAndOfWhatTheWholeLeaves) {
  engine.failures = {{"C:\\bin\\$I2", "it is locked"}};
  whole.ends = false;
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  BinContents contents = TwoDeleted();
  contents.refusals = {"D:\\bin - a link"};
  wipe.WipeBin(contents);
  EXPECT_THAT(Told({"lines", "C:", "D:", "it is"}),
              ElementsAre("lines Wipe Recycle Bin", "D:\\bin - a link", "C:\\bin\\$I2 - it is locked",
                          "it is locked"));
}

TEST_F(ManagerWipeTest, TellsTheShellOfEachBinBeforeTheUser) {
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  BinContents contents = TwoDeleted();
  contents.folders.push_back("D:\\$Recycle.Bin\\");
  wipe.WipeBin(contents);
  EXPECT_THAT(Told({"box", "WipeF", "EndWhole", "shell"}),
              ElementsAre("box Wipe Recycle Bin", "WipeFile C:\\bin\\$R1 5", "WipeFile C:\\bin\\$I1 5",
                          "WipeFolder C:\\bin\\$R2 5", "WipeFile C:\\bin\\$I2 5", "EndWhole",
                          "shell: changed C:\\$Recycle.Bin\\S-1\\", "shell: changed D:\\$Recycle.Bin\\",
                          "shell: bins changed", "box Wipe Recycle Bin"));
}

TEST_F(ManagerWipeTest, TellsTheShellOfABinThatIsHalfWiped) {
  engine.failures = {{"C:\\bin\\$R1", "it is in use"}};
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  wipe.WipeBin(TwoDeleted());
  EXPECT_THAT(Told({"shell: bins"}), ElementsAre("shell: bins changed"));
  boxes.answers = {MessageAnswer::Cancel, MessageAnswer::Ok, MessageAnswer::Ok, MessageAnswer::Ok};
  log.clear();
  wipe.WipeBin(TwoDeleted());
  wipe.WipeBin({});
  wipe.WipeSelection(TwoItems());
  EXPECT_THAT(Told({"shell"}), IsEmpty()) << "no bin has changed";
}

TEST_F(ManagerWipeTest, TellsOfAnEmptyBin) {
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  BinContents contents;
  EXPECT_FALSE(wipe.WipeBin(contents));
  EXPECT_EQ(boxes.shown[0], (Message{"Your Recycle Bin is empty.", "Wipe Recycle Bin",
                                     MessageIcon::Information, MessageButtons::Ok}));
  contents.refusals = {"D:\\bin - a link"};
  EXPECT_FALSE(wipe.WipeBin(contents));
  EXPECT_EQ(boxes.shown[1].text,
            "Nothing that could be wiped was found in your Recycle Bin.\r\n\r\nD:\\bin - a link");
}

TEST_F(ManagerWipeTest, StopsAtACancelAndLeavesTheRest) {
  engine.work = [this](const std::string& path, WipeEvents& events) {
    process.onPump = [this] { wipe.CancelOperation(); };
    events.SFD1_WipeProgress(1, 6, 0, path);
    process.onPump = nullptr;
  };
  engine.failures = {{"C:\\a.txt", "it was cancelled"}};
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  wipe.WipeSelection(TwoItems());
  EXPECT_THAT(Told({"Wipe", "Cancel", "EndWhole"}),
              ElementsAre("WipeFile C:\\a.txt 5", "CancelOperation", "EndWhole"));
  EXPECT_THAT(boxes.shown[1].text, HasSubstr("was cancelled so all items may not have been"));
  EXPECT_THAT(log.back(), "C:\\a.txt - it was cancelled");
  // The next one isn't cancelled before it begins.
  engine.work = nullptr;
  engine.failures.clear();
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  wipe.WipeSelection(TwoItems());
  EXPECT_EQ(boxes.shown.back(), kDone);
}

TEST_F(ManagerWipeTest, ShowsTheProgressOfTheFilesThatWereCounted) {
  Selection selection = TwoItems();
  selection.measured.files = FixedPoint(2);
  engine.work = [](const std::string& path, WipeEvents& events) {
    events.SFD1_WipeProgress(3, 6, 0, path);
    if (path != "C:\\f") return events.SFD1_ItemWiped(path);
    // Files that have come since the count.
    for (int i = 0; i < 1000; ++i) events.SFD1_ItemWiped(path);
    events.SFD1_WipeProgress(6, 6, 0, path);
  };
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Ok};
  wipe.WipeSelection(selection);
  EXPECT_THAT(
      Told({"status: text", "status: current", "status: overall", "status: caption", "work: 1", "work: 5"}),
      ElementsAre("status: text Processed 3 bytes of 6 of C:\\a.txt...", "status: current 50",
                  "status: overall 0", "status: caption 0% - Wipe Operation",
                  "status: text Processed 3 bytes of 6 of C:\\f...", "status: current 50",
                  "status: overall 50", "status: caption 50% - Wipe Operation", "work: 50",
                  "status: text Processed 6 bytes of 6 of C:\\f...", "status: current 100",
                  "status: overall 100", "status: caption 100% - Wipe Operation", "work: 100"));
}

TEST_F(ManagerWipeTest, TakesTheLevelFromTheSettingsAndWritesNothing) {
  const DataFolder folder(files, state);
  EXPECT_EQ(SettingsLeftIn(folder).Passes, 3) << "no settings yet";
  SettingsRecord settings;
  for (const std::int32_t level : {3, 5, 7}) {
    settings.Passes = level;
    files.AddFile("C:\\Zeroquill\\Settings.dat", EncodeSettings(settings));
    EXPECT_EQ(SettingsLeftIn(folder).Passes, level);
  }
  for (const std::int32_t level : {-1, 0, 1, 4, 8, 1000000}) {
    settings.Passes = level;
    files.AddFile("C:\\Zeroquill\\Settings.dat", EncodeSettings(settings));
    EXPECT_EQ(SettingsLeftIn(folder).Passes, 3) << level;
  }
  files.AddFile("C:\\Zeroquill\\Settings.dat", "damaged");
  EXPECT_EQ(SettingsLeftIn(folder).Passes, 3);
  files.unreadable.insert("C:\\Zeroquill\\Settings.dat");
  EXPECT_EQ(SettingsLeftIn(folder).Passes, 3);
  EXPECT_THAT(log, IsEmpty());
}

}  // namespace
}  // namespace zq::test
