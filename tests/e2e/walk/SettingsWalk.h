// The steps of the walk through the settings.
#pragma once

#include <string>
#include <vector>

#include "e2e/ManagerStage.h"
#include "e2e/walk/SettingsStage.h"

namespace zq::test {

class SettingsWalk : public WipingTest {
 protected:
  void SetUp() override { RemoveRunValue(); }
  void TearDown() override { RemoveRunValue(); }

  // Steps of the walk; `settings_` is always what the program should hold.
  void StartForTheFirstTime(const Program& program, const MainWindow& main);
  void LeaveAllUnchanged(const Program& program, const MainWindow& main) const;
  void ChangeEach(const Program& program, const MainWindow& main);
  void ChangeWhatTheDialogHasNot(const Program& program, const MainWindow& main);
  void LookAtTheDialog(const Program& program, const MainWindow& main) const;
  void AddByTheRemembered(const Program& program, const MainWindow& main) const;
  void WipeTheJob(const Program& program, const MainWindow& main) const;
  static Window OpenBin(const Program& program, const MainWindow& main);
  // Drops a file, which is through when this returns, and gives what the Bin says then.
  static std::string DropOn(Window bin, const std::string& path);
  static void CloseBin(Window bin, const MainWindow& main);
  void WipeInTheBin(const Program& program, const MainWindow& main) const;
  void DropIntoTheBinInVain(const Program& program, const MainWindow& main) const;
  void LookAtTheFreeSpaceDialog(const Program& program, const MainWindow& main) const;
  void ChangeAllBack(const Program& program, const MainWindow& main);

  void ExpectStored() const { EXPECT_EQ(ReadFileBytes(settingsPath_), settings_.Bytes()); }
  // Waits until the main window shows what the settings want at once.
  void ExpectSeen(const MainWindow& main) const;
  static MessageBoxView WaitSaveQuestion(const Program& program);
  // What has been asked of the program before is done, and nothing but the main window has come of it.
  static void ExpectNothingCame(const Program& program, const MainWindow& main);

  std::string Kept(const std::string& name) const { return scratch_.Make(name, Content()); }
  static void ExpectKept(const std::string& path) { EXPECT_EQ(ReadFileBytes(path), Content()) << path; }

  static std::string Content() { return Marked("to be kept ", 9000); }

  SettingsFile settings_;
  const std::string papers_ = scratch_ / "papers";
  const std::string letters_ = scratch_ / "letters";
  const std::vector<std::string> secrets_{
      scratch_.Make("papers\\letter.txt", Marked(kMark, 20000)),
      scratch_.Make("papers\\old\\hidden.dat", Marked(kMark, 7000), FILE_ATTRIBUTE_HIDDEN),
      scratch_.Make("letters\\secret.txt", Marked(kMark, 3000)),
  };
  // Byte for byte what they are, whatever is wiped.
  const std::vector<std::string> kept_{Kept("papers.txt"), Kept("papers too\\letter.txt"),
                                       Kept("letters\\open.txt"), Kept("letters\\other.txt")};
};

inline constexpr char kSubFolders[] = "Process any found sub folders beneath chosen folder";

}  // namespace zq::test
