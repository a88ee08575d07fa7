// Job wipes from the command to the closing box, and what they leave on the disc.
#include <memory>

#include "e2e/Wiping.h"

namespace zq::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr char kConfirmation[] =
    "This operation will securely wipe all available files and based on the settings, available folders "
    "contents as well.  Once the wipe operation is complete, the files will not be recoverable.\r\n\r\n"
    "Are you sure you wish to continue?";
constexpr char kNothingFound[] =
    "All listed items in your current Job were not found at their defined locations and may have been "
    "previously wiped.  The wipe operation cannot continue.";

class Wiping : public WipingTest {};

// An error line of one line of text that names the file and the system's number.
auto IsErrorLine(const std::string& path, const std::string& number) {
  return AllOf(StartsWith(path + " - "), HasSubstr("(" + number + ")"), ::testing::Not(HasSubstr("\n")));
}

TEST_F(Wiping, OfNothingThatExistsSaysSoAndLeavesTheFormerReport) {
  const std::string gone = scratch_ / "gone.txt";
  const Program program(exe_, Quoted(gone) + " " + Quoted(scratch_ / "gone too.txt"));
  const MainWindow main(program);
  main.list.WaitRows(2);
  WriteFileBytes(reportPath_, "the former report");
  main.PressTool("Wipe Now");
  const MessageBoxView box = program.WaitBox("No Items Found");
  TakePicture(box.window, "wiping-no-items");
  ExpectBox(box, "No Items Found", kNothingFound, BoxIcon::Information, {"OK"}, "OK");
  box.Answer("OK");
  main.window.WaitEnabled();
  for (int row : {0, 1}) EXPECT_NE(main.list.State(row) & LVIS_CUT, 0u);
  TakePicture(main.window, "wiping-ghosted-rows");

  // One that has come back is live again, even if the user then thinks better of it.
  WriteFileBytes(gone, "back");
  main.PressTool("Wipe Now");
  program.WaitBox("Wipe Operation").Answer("Cancel");
  main.window.WaitEnabled();
  EXPECT_EQ(main.list.State(0) & LVIS_CUT, 0u);
  EXPECT_NE(main.list.State(1) & LVIS_CUT, 0u);
  EXPECT_EQ(ReadFileBytes(gone), "back");
  EXPECT_EQ(ReadFileBytes(reportPath_), "the former report");
}

TEST_F(Wiping, AsksFirstAndLeavesEverythingOnCancel) {
  const std::string path =
      scratch_.Make("letter.txt", "a letter", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
  const Program program(exe_, Quoted(path));
  const MainWindow main(program);
  main.list.WaitRows(1);
  main.PressTool("Wipe Now");
  const MessageBoxView box = program.WaitBox("Wipe Operation");
  TakePicture(box.window, "wiping-confirm");
  ExpectBox(box, "Wipe Operation", kConfirmation, BoxIcon::Question, {"OK", "Cancel"}, "OK");
  EXPECT_EQ(box.window.Owner(), main.window);
  box.Answer("Cancel");
  main.window.WaitEnabled();
  EXPECT_TRUE(main.window.IsVisible());
  constexpr DWORD kBoth = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;
  EXPECT_EQ(::GetFileAttributesA(path.c_str()) & kBoth, kBoth);

  main.PressTool("Wipe Now");
  program.WaitBox("Wipe Operation").Dismiss();
  main.window.WaitEnabled();
  EXPECT_EQ(ReadFileBytes(path), "a letter");
  EXPECT_FALSE(PathExists(reportPath_));
}

TEST_F(Wiping, DestroysEveryFileOfTheJobAndNoOther) {
  const std::vector<std::string> paths{
      scratch_.Make("job\\letter.txt", Marked(kMark, 2000)),
      scratch_.Make("job\\read-only.doc", Marked(kMark, 40000), FILE_ATTRIBUTE_READONLY),
      scratch_.Make("job\\hidden.dat", Marked(kMark, 4096), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM),
      scratch_.Make("job\\empty.txt", ""),
      scratch_.Make("job\\Grüße an Ωμέγα ☃.txt", Marked(kMark, 3000)),
      scratch_.Make("job\\album.zip", Marked(kMark, 5u << 20)),
      scratch_.Make("job\\a,b, and c.csv", Marked(kMark, 1)),
  };
  const std::string kept = scratch_.Make("job\\kept.txt", "this one stays");
  const auto count = static_cast<int>(paths.size());
  std::string arguments;
  for (const std::string& path : paths) arguments += (arguments.empty() ? "" : " ") + Quoted(path);

  const StampWindow stamps;
  const Program program(exe_, arguments);
  const MainWindow main(program);
  main.list.WaitRows(count);
  Confirm(program, main);
  {
    const MessageBoxView box = WaitClosingBox(program);
    TakePicture(box.window, "wiping-complete");
  }
  Close(program, main, kComplete);
  TakePicture(main.window, "wiping-main-after");

  std::string expected = "\"Untitled Job\"\r\n\"*\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n";
  for (int row = 0; row < count; ++row) {
    const std::string& path = paths[static_cast<std::size_t>(row)];
    SCOPED_TRACE(path);
    EXPECT_FALSE(PathExists(path));
    EXPECT_EQ(main.list.Text(row), path);
    ExpectWiped(main, row);
    expected += Quoted(path) + "\r\n";
  }
  expected += "\"[ERRORS]\"\r\n";
  EXPECT_EQ(main.Items(), "7 Items");

  std::string report = ReadFileBytes(reportPath_);
  const std::string stamp = Lines(report).at(1);
  EXPECT_TRUE(stamps.Has(stamp.substr(1, stamp.size() - 2))) << stamp;
  report.replace(report.find(stamp), stamp.size(), "\"*\"");
  EXPECT_EQ(report, expected);
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
  EXPECT_EQ(ReadFileBytes(kept), "this one stays");

  // Nothing is left of the job, and the report of the run stays.
  main.PressTool("Wipe Now");
  program.WaitBox("No Items Found").Answer("OK");
  main.window.Close();
  EXPECT_EQ(program.WaitExit(), 0u);
  EXPECT_EQ(ReadFileBytes(reportPath_).size(), expected.size() - 1 + stamp.size() - 2);
}

// What names no path leads back to the user's content.
TEST_F(Wiping, DestroysTheContentUnderAllNamesOfAFile) {
  const std::string path = scratch_.Make("one name.txt", Marked(kMark, 20000));
  const std::string other = scratch_ / "another name.txt";
  ASSERT_TRUE(::CreateHardLinkA(other.c_str(), path.c_str(), nullptr));
  const Program program(exe_, Quoted(path));
  const MainWindow main(program);
  Confirm(program, main);
  Close(program, main, kComplete);
  EXPECT_FALSE(PathExists(path));
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
}

TEST_F(Wiping, ReportsALockedFileAndLeavesItByteForByte) {
  const std::string first = scratch_.Make("first.txt", Marked(kMark, 5000));
  const std::string locked = scratch_.Make("locked.txt", Marked("in use ", 5000));
  const std::string last = scratch_.Make("last.txt", Marked(kMark, 5000));
  const std::string before = ReadFileBytes(locked);
  const Program program(exe_, Quoted(first) + " " + Quoted(locked) + " " + Quoted(last));
  const MainWindow main(program);
  main.list.WaitRows(3);
  {
    const HeldFile held(locked);
    const StampWindow stamps;
    Confirm(program, main);
    Close(program, main, kComplete);
    const Report report = ReadReport(stamps);
    EXPECT_THAT(report.files, ElementsAre(first, locked, last));
    EXPECT_THAT(report.errors, ElementsAre(IsErrorLine(locked, std::to_string(ERROR_SHARING_VIOLATION))));
  }
  TakePicture(main.window, "wiping-main-one-locked");
  EXPECT_EQ(ReadFileBytes(locked), before);
  EXPECT_FALSE(PathExists(first));
  EXPECT_FALSE(PathExists(last));
  ExpectWiped(main, 0);
  ExpectUntouched(main, 1, "4.88 KB");
  ExpectWiped(main, 2);
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));

  // The job is still open: once the file is free, the same command wipes it, and it alone.
  const StampWindow stamps;
  Confirm(program, main);
  Close(program, main, kComplete);
  const Report report = ReadReport(stamps);
  EXPECT_THAT(report.files, ElementsAre(locked));
  EXPECT_THAT(report.errors, ElementsAre());
  EXPECT_FALSE(PathExists(locked));
  ExpectWiped(main, 1);
}

TEST_F(Wiping, OfFiveHundredFilesWithEverySeventhLockedWipesAllOthers) {
  constexpr int kFiles = 500;
  const auto isLocked = [](int number) { return number % 7 == 0; };
  std::vector<std::string> paths;
  std::vector<std::string> lockedPaths;
  std::vector<std::unique_ptr<HeldFile>> held;
  for (int i = 1; i <= kFiles; ++i) {
    const std::string mark = isLocked(i) ? "in use " : kMark;
    paths.push_back(scratch_.Make("many\\file " + std::to_string(i) + ".txt", Marked(mark, 700)));
  }
  const std::string lockedBytes = ReadFileBytes(paths[6]);
  const Program program(exe_);
  const MainWindow main(program);
  DragFilesTo(main.list.TheWindow().Centre(), paths);
  main.list.WaitRows(kFiles);
  for (int i = 1; i <= kFiles; ++i) {
    const std::string& path = paths[static_cast<std::size_t>(i - 1)];
    if (!isLocked(i)) continue;
    held.push_back(std::make_unique<HeldFile>(path));
    lockedPaths.push_back(path);
  }
  const StampWindow stamps;
  Confirm(program, main);
  Close(program, main, kComplete);
  held.clear();

  const Report report = ReadReport(stamps);
  EXPECT_EQ(report.files, paths);
  ASSERT_EQ(report.errors.size(), 71u);
  ASSERT_EQ(lockedPaths.size(), 71u);
  for (std::size_t i = 0; i < lockedPaths.size(); ++i) {
    EXPECT_THAT(report.errors[i], IsErrorLine(lockedPaths[i], std::to_string(ERROR_SHARING_VIOLATION)));
    EXPECT_EQ(ReadFileBytes(lockedPaths[i]), lockedBytes);
  }
  for (int i = 1; i <= kFiles; ++i) {
    SCOPED_TRACE(i);
    const std::string& path = paths[static_cast<std::size_t>(i - 1)];
    EXPECT_EQ(PathExists(path), isLocked(i));
    if (isLocked(i)) {
      ExpectUntouched(main, i - 1, "700 Bytes");
    } else {
      ExpectWiped(main, i - 1);
    }
  }
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
}

TEST_F(Wiping, WithoutARoomForTheReportEndsInARunTimeError) {
  const std::string path = scratch_.Make("letter.txt", Marked(kMark, 3000));
  const Program program(exe_, Quoted(path));
  const MainWindow main(program);
  main.list.WaitRows(1);
  ASSERT_TRUE(::RemoveDirectoryA((folder_ + "\\Report").c_str()));
  Confirm(program, main);
  ExpectRunTimeError(program, "Run-time error '76':\r\n\r\nPath not found");
  EXPECT_FALSE(PathExists(path));
}

}  // namespace
}  // namespace zq::test
