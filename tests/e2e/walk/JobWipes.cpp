// Jobs wiped: to their end, cancelled, and with nothing left to wipe.
#include <map>

#include "e2e/Wiping.h"
#include "e2e/walk/ReportScene.h"
#include "e2e/walk/Scenes.h"
#include "e2e/walk/Steps.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr char kJob[] = "To be wiped";
constexpr char kCancelLine[] =
    "User cancelled wipe operation.  Listed items may or may not have finished processing.";

void WriteJob(const Walk& walk, const std::string& name, const std::vector<std::string>& fields) {
  std::string bytes;
  for (const std::string& field : fields) bytes += Quoted(field) + "\r\n";
  WriteFileBytes(walk.JobPath(name), bytes);
}

// The report's lines without their quotes.
std::vector<std::string> ReportLines(const Walk& walk) {
  std::vector<std::string> lines = Lines(ReadFileBytes(walk.reportPath));
  for (std::string& line : lines) {
    if (line.size() < 2 || line.front() != '"' || line.back() != '"')
      throw DriverError("a line without quotes: " + line);
    line = line.substr(1, line.size() - 2);
  }
  if (lines.size() < 5) throw DriverError("a report of too few lines");
  return lines;
}

bool IsGhosted(const ListView& list, int row) {
  return (list.State(row) & LVIS_CUT) != 0;
}

// What the job is to destroy, and what lies beside it and is to stay.
class Ground {
 public:
  explicit Ground(const Walk& walk) : walk_(walk) {
    Secret("all\\letter.txt", 0);
    Secret("all\\no extension", FILE_ATTRIBUTE_READONLY);
    Secret("all\\inner\\hidden.dat", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    Secret("masked\\one.doc", 0);
    Secret("masked\\inner\\two.doc", FILE_ATTRIBUTE_READONLY);
    Kept("masked\\one.txt");
    Kept("masked\\UPPER.DOC");  // a mask keeps upper and lower case apart
    Secret("flat\\letter.txt", 0);
    Kept("flat\\inner\\letter.txt");
    Secret("Grüße an Ωμέγα.txt", 0);
    Secret("sheet.xls", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    Kept("in use.txt");
    Kept("beside.txt");
  }

  std::string Path(const std::string& name) const { return walk_.scratch / name; }
  std::vector<std::string> Fields() const {
    return {"N/A",
            "[FOLDERS]",
            Path("all"),
            "*.*",
            "Yes",
            Path("masked"),
            "*.doc",
            "Yes",
            Path("flat"),
            "*.*",
            "No",
            "[FILES]",
            Path("Grüße an Ωμέγα.txt"),
            Path("sheet.xls"),
            Path("in use.txt")};
  }

  void ExpectSecretsAsTheyWere() const {
    for (const auto& [path, attributes] : secrets_) {
      EXPECT_EQ(ReadFileBytes(path), Marked(kMark, kBytes)) << path;
      constexpr DWORD kOurs = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
      const DWORD now = ::GetFileAttributesW(ToWide(path).c_str());
      EXPECT_EQ(now & kOurs & FILE_ATTRIBUTE_READONLY, attributes & FILE_ATTRIBUTE_READONLY) << path;
    }
  }
  void ExpectSecretsGone() const {
    for (const auto& [path, attributes] : secrets_) EXPECT_FALSE(PathExists(path)) << path;
    walk_.ExpectNoTrace(kMark);
    EXPECT_FALSE(PathExists(Path("all")));
  }
  void ExpectKept() const {
    for (const std::string& path : kept_)
      EXPECT_EQ(ReadFileBytes(path), Marked("to be kept ", kBytes)) << path;
    EXPECT_TRUE(PathExists(Path("masked\\inner")));
  }

 private:
  static constexpr std::size_t kBytes = 9000;

  void Secret(const std::string& name, DWORD attributes) {
    secrets_[walk_.scratch.Make(name, Marked(kMark, kBytes), attributes)] = attributes;
  }
  void Kept(const std::string& name) {
    kept_.push_back(walk_.scratch.Make(name, Marked("to be kept ", kBytes)));
  }

  const Walk& walk_;
  std::map<std::string, DWORD> secrets_;
  std::vector<std::string> kept_;
};

void AskAndCancel(Walk& walk, const Ground& ground) {
  walk.Main().WaitJobTools(true);
  walk.Command("WipeNow");
  walk.Answer("wipe-question", "Cancel");
  walk.Main().window.WaitEnabled();
  ground.ExpectSecretsAsTheyWere();
  EXPECT_FALSE(PathExists(walk.reportPath));
}

void ExpectRows(const Walk& walk) {
  const ListView& list = walk.Main().list;
  const std::vector<bool> ghosted{true, false, false, true, true, false};
  for (int row = 0; row < 6; ++row)
    EXPECT_EQ(IsGhosted(list, row), ghosted[static_cast<std::size_t>(row)]) << row;
  for (const int row : {0, 1, 2}) EXPECT_EQ(list.Text(row, 1), "N/A");
  for (const int row : {3, 4}) EXPECT_EQ(list.Text(row, 1), "0 Bytes");
  EXPECT_EQ(list.Text(5, 1), "8.79 KB");
}

void ExpectReport(const Walk& walk, const Ground& ground, const StampWindow& stamps) {
  const std::vector<std::string> lines = ReportLines(walk);
  EXPECT_TRUE(stamps.Has(lines[1])) << lines[1];
  EXPECT_THAT(lines, ElementsAre(kJob, lines[1], "[FOLDERS]", ground.Path("all"), ground.Path("masked"),
                                 ground.Path("flat"), "[FILES]", ground.Path("Grüße an Ωμέγα.txt"),
                                 ground.Path("sheet.xls"), ground.Path("in use.txt"), "[ERRORS]",
                                 StartsWith(ground.Path("in use.txt") + " - ")));
}

// The stamp reaches the disc by a save alone.
void SaveTheStamp(Walk& walk, const Ground& ground) {
  walk.ExpectJob(kJob, ground.Fields());
  walk.Command("SaveJob");
  std::vector<std::string> fields = ground.Fields();
  fields[0] = ReportLines(walk)[1];
  // By its size alone: to open the file meanwhile could keep the program from it.
  std::size_t size = 0;
  for (const std::string& field : fields) size += field.size() + 4;
  Await("the stamp in the job's file", [&] {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    return ::GetFileAttributesExW(ToWide(walk.JobPath(kJob)).c_str(), GetFileExInfoStandard, &data) &&
           data.nFileSizeLow == size;
  });
  // Behind whatever the program has still done with it.
  walk.Command("mnuHelpAbout");
  AcceptDialog(walk.Run().WaitWindow("About Zeroquill"));
  walk.ExpectJob(kJob, fields);
}

// Its content has yet to be given any room, which the wipe does.
void MakeLarge(const std::string& path) {
  WriteFileBytes(path, "");
  const HANDLE file =
      ::CreateFileW(ToWide(path).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  LARGE_INTEGER size{};
  size.QuadPart = kLargeBytes;
  const bool made = file != INVALID_HANDLE_VALUE &&
                    ::SetFilePointerEx(file, size, nullptr, FILE_BEGIN) != FALSE &&
                    ::SetEndOfFile(file) != FALSE;
  ::CloseHandle(file);
  if (!made) throw DriverError("can't make " + path);
}

}  // namespace

void WipeAJob(Walk& walk) {
  const Ground ground(walk);
  WriteJob(walk, kJob, ground.Fields());
  OpenSavedJob(walk, "OpenJob", kJob);
  walk.Main().WaitItems("6 Items");
  AskAndCancel(walk, ground);

  const StampWindow stamps;
  {
    const HeldFile held(ground.Path("in use.txt"));
    walk.Command("mnuActionsWipeNow");
    walk.Answer("wipe-question", "OK");
    const MessageBoxView box = WaitClosingBox(walk.Run());
    walk.visits.SeeBox(box, "wipe-complete");
    EXPECT_TRUE(walk.Main().window.IsVisible());
    box.Answer("Yes");
  }
  ReadTheReport(walk);
  ground.ExpectSecretsGone();
  ground.ExpectKept();
  ExpectRows(walk);
  ExpectReport(walk, ground, stamps);
  walk.visits.See("frmMain", walk.Main().window, "wiped");
  SaveTheStamp(walk, ground);

  walk.Command("mnuFileClose");
  walk.Main().WaitItems("0 Items");
  EXPECT_TRUE(walk.Run().Boxes().empty()) << "a saved job is closed without a question";
  walk.Command("mnuFileView");
  SeeReport(walk, "by-its-command");
}

void CancelAWipe(Walk& walk) {
  // Two of them, so that a fast machine is still at it when we come.
  const std::vector<std::string> large{walk.scratch / "large one.dat", walk.scratch / "large two.dat"};
  for (const std::string& path : large) MakeLarge(path);
  const std::string last = walk.scratch.Make("last.txt", "never reached");
  DropOnList(walk, {large[0], large[1], last});
  walk.Main().WaitItems("3 Items");
  const StampWindow stamps;
  walk.Main().WaitJobTools(true);
  walk.Command("WipeNow");
  walk.Answer("wipe-question", "OK");
  {
    const StatusWindow status(walk.Run());
    status.WaitWork("large");
    EXPECT_FALSE(walk.Main().window.IsVisible());
    status.cancel.Press();
    const MessageBoxView box = walk.visits.SeeBox(walk.Run(), "wipe-cancel");
    // Aside, for a look at the window that it covers; the engine stands still meanwhile.
    ::SetWindowPos(box.window.Handle(), nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    walk.visits.See("frmStatus", status.window);
    box.Answer("No");
    status.WaitChange();
    status.cancel.Press();
    walk.Answer("wipe-cancel", "Yes");
    status.window.WaitGone();
  }
  const MessageBoxView box = WaitClosingBox(walk.Run());
  walk.visits.SeeBox(box, "wipe-cancelled");
  box.Answer("Yes");
  SeeReport(walk, "cancelled");

  const std::vector<std::string> lines = ReportLines(walk);
  EXPECT_EQ(lines[0], "Untitled Job");
  EXPECT_TRUE(stamps.Has(lines[1])) << lines[1];
  EXPECT_EQ(lines.back(), kCancelLine);
  EXPECT_EQ(ReadFileBytes(last), "never reached");
  EXPECT_FALSE(IsGhosted(walk.Main().list, 2));
  for (const std::string& path : large) ::DeleteFileA(path.c_str());
  EXPECT_TRUE(::DeleteFileA(last.c_str()));
  walk.Command("mnuFileClose");
  walk.Answer("job-save-question", "No");
  walk.Main().WaitItems("0 Items");
}

void WipeNothing(Walk& walk) {
  const std::string before = ReadFileBytes(walk.reportPath);
  DropOnList(walk, {walk.scratch / "gone.txt"});
  walk.Main().WaitItems("1 Item");
  walk.Main().WaitJobTools(true);
  walk.Command("WipeNow");
  walk.Answer("wipe-nothing-found", "OK");
  walk.Main().window.WaitEnabled();
  EXPECT_TRUE(IsGhosted(walk.Main().list, 0));
  EXPECT_EQ(ReadFileBytes(walk.reportPath), before) << "the report of the wipe before";
  walk.Command("NewJob");
  walk.Answer("job-save-question", "No");
  AcceptDialog(walk.Dialog("frmNew", "New Job"));
  walk.Main().WaitItems("0 Items");
}

}  // namespace zq::test
