#include "soak/SoakStage.h"

#include <windows.h>
#include <commctrl.h>
#include <ole2.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <thread>

#include "controls/document/DocumentBuilder.h"
#include "controls/document/RtfWriter.h"
#include "core/main/CommandTable.h"
#include "reports/ReportDocument.h"
#include "support/document/RtfText.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

using ::testing::StartsWith;

constexpr char kCancelLine[] =
    "User cancelled wipe operation.  Listed items may or may not have finished processing.";
constexpr char kSuccess[] = "Last Operation: Success";
constexpr char kErrors[] = "Last Operation: Errors";
// For what takes as long as the work in hand.
constexpr Limit kLong{120000};

class Builder final : public DocumentBuilder {
  void DocumentEnded() override {}
};

// What a reader of rich text sees of the report.
std::string RtfTextOf(const ReportData& report) {
  Builder builder;
  auto logo = std::make_shared<PictureData>();
  logo->png = "a picture";
  logo->naturalWidth = 4500;
  logo->naturalHeight = 900;
  BuildReportDocument(builder, report, 8, "", std::move(logo));
  return RtfText(ToRtf(builder.Content(), {})).Text();
}

}  // namespace

void SoakStage::SetUp() {
  WipingTest::SetUp();
  // Its apartment of COM lives on, as that of Explorer does; each drag would make one of its own.
  ASSERT_TRUE(SUCCEEDED(::OleInitialize(nullptr)));
  program_ = std::make_unique<Program>(exe_);
  main_ = std::make_unique<MainWindow>(*program_);
}

void SoakStage::TearDown() {
  main_.reset();
  program_.reset();
  ::OleUninitialize();
}

// A command of the menus by the name of its tool. Those of the tool bar are numbered behind them.
void SoakStage::Command(std::string_view tool) const {
  int menuTools = 0;
  int place = -1;
  const BarsDesign bars = MainBars();
  for (const Menu& menu : bars.menus) {
    for (const Tool& entry : menu.tools) {
      if (entry.name == tool) place = menuTools;
      if (!entry.name.empty()) ++menuTools;
    }
  }
  if (place < 0) throw DriverError("no tool " + std::string(tool));
  main_->window.Command(main_->Tool("New Job").command - menuTools + place);
}

void SoakStage::Open(const SoakJob& job) const {
  const std::string path = folder_ + "\\Jobs\\" + job.Name() + ".zqj";
  WriteFileBytes(path, job.JobFileBytes());
  main_->PressTool("Open Job");
  const Window open = program_->WaitWindow("Open Job", "#32770");
  open.Child("OK").Press();
  open.WaitGone();
  main_->list.WaitRows(static_cast<int>(job.Rows().size()));
  main_->window.WaitEnabled();
  // The only one that the dialog lists next time.
  ASSERT_TRUE(::DeleteFileW(ToWide(path).c_str()));
}

void SoakStage::CloseJob() const {
  Command("mnuFileClose");
  main_->list.WaitRows(0);
  main_->WaitItems("0 Items");
}

bool SoakStage::ClosingBoxIsThere() const {
  const std::vector<Window> boxes = program_->Boxes();
  return std::any_of(boxes.begin(), boxes.end(), [](Window box) { return box.HasText("Wipe Operation"); });
}

// Cancels the run at a moment that chance gives; false if the run is over before that. How late the moment
// can be follows the machine: it comes sooner after each one that was too late.
bool SoakStage::CancelSomewhere() {
  const bool cancelled = CancelWithin();
  latest_ = cancelled ? std::min(latest_ + 1, 12) : latest_ / 2;
  return cancelled;
}

bool SoakStage::CancelWithin() {
  const int changes = std::uniform_int_distribution<int>(0, latest_)(random_);
  const Limit further(std::uniform_int_distribution<int>(0, latest_ * 4)(random_));
  Window status;
  Await(
      "the status window",
      [&] {
        for (const Window window : program_->Windows()) {
          if (::FindWindowExW(window.Handle(), nullptr, L"Button", L"Cancel Operation")) status = window;
        }
        return status || ClosingBoxIsThere();
      },
      kLong);
  if (!status) return false;
  try {
    const StatusWindow view(*program_);
    Await(
        "the wipe to begin", [&] { return view.cancel.IsEnabled() || ClosingBoxIsThere(); }, kLong);
    for (int i = 0; i < changes; ++i) {
      const std::string before = view.Line();
      Await(
          "the wipe to go on", [&] { return view.Line() != before || ClosingBoxIsThere(); }, kLong);
    }
    std::this_thread::sleep_for(further);  // is waited for by nobody: any moment will do
    view.cancel.Press();
  } catch (const DriverError&) {
    return false;  // it has gone, or is about to
  }
  Window question;
  Await(
      "the question or the end",
      [&] {
        for (const Window box : program_->Boxes()) {
          if (box.HasText("Cancel")) question = box;
        }
        return question || ClosingBoxIsThere();
      },
      kLong);
  if (!question) return false;
  MessageBoxView(question).Answer("Yes");
  return true;
}

// The report's file, taken apart; it must be made of these parts, byte for byte.
ReportData SoakStage::ReadReportOf(const SoakJob& job, const StampWindow& stamps) const {
  const std::string bytes = ReadFileBytes(reportPath_);
  const ReportData report = DecodeReport(bytes);
  EXPECT_EQ(report.jobName, job.Name());
  EXPECT_TRUE(stamps.Has(report.stamp)) << report.stamp;
  std::string again = Quoted(report.jobName) + "\r\n" + Quoted(report.stamp) + "\r\n\"[FOLDERS]\"\r\n";
  for (const std::string& path : report.folders) again += Quoted(path) + "\r\n";
  again += "\"[FILES]\"\r\n";
  for (const std::string& path : report.files) again += Quoted(path) + "\r\n";
  again += "\"[ERRORS]\"\r\n";
  for (const std::string& line : report.errors) again += Quoted(line) + "\r\n";
  EXPECT_TRUE(again == bytes) << bytes;
  return report;
}

// The same reason for each, in the words of the first.
void SoakStage::ExpectHeldLine(const std::string& line, const std::string& path) {
  ASSERT_THAT(line, StartsWith(path + " - "));
  std::string reason = line;
  for (std::size_t at = 0; (at = reason.find(path)) != std::string::npos;)
    reason.replace(at, path.size(), "*");
  EXPECT_NE(reason.find("(32)"), std::string::npos) << line;
  if (heldReason_.empty()) heldReason_ = reason;
  EXPECT_EQ(reason, heldReason_);
}

void SoakStage::ExpectComplete(const SoakJob& job, const std::vector<SoakJob::Row>& live,
                               const ReportData& report, const std::set<std::string>& held) {
  std::vector<std::string> folders;
  std::vector<std::string> files;
  for (const SoakJob::Row& row : live) (row.IsFolder() ? folders : files).push_back(row.path);
  EXPECT_EQ(report.folders, folders);
  EXPECT_EQ(report.files, files);
  ASSERT_EQ(report.errors.size(), held.size());
  std::size_t line = 0;
  for (const std::string& path : held) ExpectHeldLine(report.errors[line++], path);
  for (const SoakJob::Row& row : live) job.ExpectWiped(row, held);
}

void SoakStage::ExpectCancelled(const SoakJob& job, const std::vector<SoakJob::Row>& live,
                                const ReportData& report) {
  std::vector<std::string> tried = report.folders;
  tried.insert(tried.end(), report.files.begin(), report.files.end());
  ASSERT_GE(tried.size(), 1u);
  ASSERT_LE(tried.size(), live.size());
  for (std::size_t i = 0; i < tried.size(); ++i) EXPECT_EQ(tried[i], live[i].path);
  ASSERT_GE(report.errors.size(), 1u);
  EXPECT_EQ(report.errors.back(), kCancelLine);
  ASSERT_LE(report.errors.size(), 2u);
  const SoakJob::Row& last = live[tried.size() - 1];
  const bool stopped = report.errors.size() == 2;
  for (std::size_t i = 0; i + 1 < tried.size(); ++i) job.ExpectWiped(live[i], {});
  if (stopped) {
    EXPECT_THAT(report.errors.front(), StartsWith(last.path + " - "));
    EXPECT_TRUE(PathExists(last.path)) << "what isn't wholly overwritten is not deleted";
  } else {
    job.ExpectWiped(last, {});
  }
  for (std::size_t i = tried.size(); i < live.size(); ++i) job.ExpectUntouched(live[i]);
  job.ExpectNothingNew();
}

// Wipes the open job, and looks at all that this leaves. True if it was cancelled.
bool SoakStage::Run(const SoakJob& job, bool cancel, const std::set<std::string>& heldPaths,
                    bool showReport) {
  const std::vector<SoakJob::Row> live = job.Live();
  std::vector<std::unique_ptr<HeldFile>> held;
  for (const std::string& path : heldPaths) held.push_back(std::make_unique<HeldFile>(path));
  const StampWindow stamps;
  Confirm(*program_, *main_);
  const bool cancelled = cancel && CancelSomewhere();
  const MessageBoxView box = WaitClosingBox(*program_);
  ExpectBox(box, "Wipe Operation", cancelled ? kCancelled : kComplete, BoxIcon::Question, {"Yes", "No"},
            "Yes");
  held.clear();

  const ReportData report = ReadReportOf(job, stamps);
  if (cancelled) {
    ExpectCancelled(job, live, report);
  } else {
    ExpectComplete(job, live, report, heldPaths);
  }
  job.ExpectKept();
  // One that was loaded and not shown keeps its document until it has been shown and closed.
  if (!reportIsLoaded_) rtf_ = RtfTextOf(report);
  reportIsLoaded_ = true;
  EXPECT_EQ(RtfText(ReadFileBytes(folder_ + "\\Report\\Report.rtf")).Text(), rtf_);

  box.Answer(showReport ? "Yes" : "No");
  if (showReport) {
    const Window window = program_->WaitWindow("Zeroquill Report", "#32770");
    window.Close();
    window.WaitGone();
    reportIsLoaded_ = false;
  }
  main_->window.WaitEnabled();
  EXPECT_TRUE(main_->window.IsVisible());
  ++runs_;
  return cancelled;
}

void SoakStage::WipeAJob(SoakJob::Kind kind, int files, bool cancel) {
  const SoakJob job(scratch_, ++jobs_, kind, files, cancel);
  SCOPED_TRACE(job.Name());
  Open(job);
  files_ += job.Files();
  const SoakJob::Row& lastRow = job.Rows().back();
  std::set<std::string> held;
  if (kind == SoakJob::Kind::Mixed && !cancel) held.insert(lastRow.path);
  const bool showReport = kind != SoakJob::Kind::Folder;
  if (Run(job, cancel, held, showReport)) {
    ++cancels_;
    // The last row may have been done when it was cancelled.
    if (!job.Live().empty()) Run(job, false, {}, showReport);
  } else if (!held.empty()) {
    Run(job, false, {}, showReport);
  }
  for (const SoakJob::Row& row : job.Rows()) job.ExpectWiped(row, {});
  ASSERT_EQ(main_->list.Rows(), static_cast<int>(job.Rows().size()));
  const int last = main_->list.Rows() - 1;
  EXPECT_EQ((main_->list.State(last) & LVIS_CUT) != 0, lastRow.GoesWhole());
  CloseJob();
  job.Clear();
}

Window SoakStage::DropPicture(Window bin) {
  for (const Window child : bin.Children()) {
    if (child.ClassName() == "Static" && (child.Style() & SS_NOTIFY) != 0) return child;
  }
  throw DriverError("the Bin has no picture to drop on");
}

// A drag that the mouse doesn't bring to the Bin, as on a busy machine, has touched nothing, and is made
// again.
void SoakStage::Drop(Window bin, const std::vector<std::string>& paths) {
  constexpr int kMostTimes = 5;
  for (int times = 1; times <= kMostTimes; ++times) {
    std::string reason = "it fell beside the Bin";
    try {
      if (DragFilesTo(DropPicture(bin).Centre(), paths) == DROPEFFECT_COPY) return;
    } catch (const DriverError& error) {
      reason = error.what();  // a drag that doesn't get on its way
    }
    std::fprintf(stderr, "No drop (%s); dropped again.\n", reason.c_str());
    for (const std::string& path : paths) ASSERT_TRUE(PathExists(path)) << path;
  }
  throw DriverError("the Bin doesn't take the drop");
}

void SoakStage::DropOnce(Window bin, bool withFolder, bool withHeld) {
  const auto name = [this](const char* file) { return "drops\\" + std::string(file); };
  const std::string content = Marked(kMark, 3000);
  const std::vector<std::string> gone{scratch_.Make(name("letter.txt"), content),
                                      scratch_.Make(name("empty.txt"), ""),
                                      scratch_.Make(name("read-only.doc"), content, FILE_ATTRIBUTE_READONLY)};
  const std::string kept = scratch_.Make(name("folder\\kept.txt"), "stays");
  const std::string heldPath = scratch_.Make(name("held.txt"), Marked("in use ", 3000));
  std::vector<std::string> paths = gone;
  if (withFolder) paths.push_back(scratch_ / name("folder"));
  if (withHeld) paths.push_back(heldPath);
  {
    std::optional<HeldFile> held;
    if (withHeld) held.emplace(heldPath);
    Drop(bin, paths);
  }
  ++drops_;
  files_ += gone.size();
  for (const std::string& path : gone) EXPECT_FALSE(PathExists(path)) << path;
  EXPECT_EQ(ReadFileBytes(kept), "stays");
  EXPECT_TRUE(ReadFileBytes(heldPath) == Marked("in use ", 3000));
  EXPECT_EQ(StatusPanels(bin.ChildOfClass(STATUSCLASSNAMEA)).front(), withHeld ? kErrors : kSuccess);
  if (withHeld) ExpectErrorList(bin, heldPath);
}

void SoakStage::ExpectErrorList(Window bin, const std::string& heldPath) {
  const RECT bar = bin.ChildOfClass(STATUSCLASSNAMEA).ScreenRect();
  ClickAt({bar.left + 20, (bar.top + bar.bottom) / 2});
  const Window errors = program_->WaitWindow("QuickWipe Errors", "#32770");
  const std::vector<std::string> lines = Entries(errors.ChildOfClass("ListBox"));
  ASSERT_EQ(lines.size(), 1u);
  ExpectHeldLine(lines[0], heldPath);
  errors.Child("OK").Press();
  errors.WaitGone();
  bin.WaitEnabled();
}

void SoakStage::DropOnTheBin(int drops) {
  Command("mnuFileQuickWipeBin");
  const Window bin = program_->WaitWindow("QuickWipe Bin", "#32770");
  Await("the main window to be minimised", [&] { return ::IsIconic(main_->window.Handle()) != FALSE; });
  const std::string report = ReadFileBytes(reportPath_);
  for (int i = 0; i < drops; ++i) DropOnce(bin, i % 3 == 1, i == drops - 1);
  EXPECT_TRUE(ReadFileBytes(reportPath_) == report) << "there is no report of a drop";
  bin.Child("Close Bin").Press();
  bin.WaitGone();
  Await("the main window to be back", [&] { return ::IsIconic(main_->window.Handle()) == FALSE; });
  main_->window.WaitEnabled();
}

}  // namespace zq::test
