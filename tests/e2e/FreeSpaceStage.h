// What the tests of the wipe of free space share: the small drive D: and the way to the wipe through dialog
// and question.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "e2e/Wiping.h"

namespace zq::test {

inline constexpr char kFreeSpaceDialog[] = "Wipe Drive Free Space";
inline constexpr char kLevel3[] = "Level 3 Wiping (9 data writes per byte) - Strong Security";
inline constexpr char kLevel7[] = "Level 7 Wiping (21 data writes per byte) - Strongest Security";

// What drive D: has free for us, in bytes.
ULONGLONG FreeBytes();

// The entries of its root, in order.
std::vector<std::string> NamesOnSmallDrive();

// The number, in groups of three, between these two texts, which make up the rest of the line.
int FigureIn(const std::string& line, std::string_view before, std::string_view behind);

// Throws a DriverError unless a wipe of free space can fill no more than a drive of a few megabytes: D: must
// be small, and nothing can begin on C:.
void RequireDrivesThatMayBeFilled();

// Chooses the drive in the dialog by its letter, and the level by its button. The letter goes to the list
// itself: a key that is typed goes to what has the focus by then, and a C that comes to anything but the list
// is the mnemonic of Cancel.
void ChooseDrive(Window dialog, WORD driveKey, std::string_view level);
// The window of the wipe that runs, waited for.
Window WaitSpaceStatus(const Program& program);

// Nothing here may fill up this machine's disk: D: must be small, and nothing can begin on C:.
class FreeSpaceTest : public ZeroquillTest {
 protected:
  // Leaves kept.txt on the drive.
  void SetUp() override;

  // Opens the dialog.
  static Window OpenDialog(const Program& program, const MainWindow& main);
  // Presses OK and reads the question, which must be of this drive. It is left open.
  static MessageBoxView Ask(const Program& program, Window dialog, const std::string& drive);
  // Starts the program in `folder` until it has removed what a killed wipe left: a start takes only so long
  // for it, and the next one goes on.
  static void StartUntilCleared(const std::string& folder);
  void ExpectAsBefore(ULONGLONG freeBytes) const;

  // On the drive from the start: kept.txt, and in an image what was made there.
  std::vector<std::string> names_;

  static constexpr char kKept[] = "D:\\kept.txt";
  static constexpr char kKeptContent[] = "this file is live, and stays";
};

}  // namespace zq::test
