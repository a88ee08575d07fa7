// The status window of a job wipe: what it shows, and how the user cancels.
#include <algorithm>

#include "e2e/Wiping.h"
#include "support/driver/sample_app.h"

namespace zq::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::Ge;
using ::testing::HasSubstr;
using ::testing::Le;
using ::testing::StartsWith;

constexpr char kCancelLine[] =
    "User cancelled wipe operation.  Listed items may or may not have finished processing.";

constexpr std::uint32_t kGreen = 0x28D22B;
constexpr std::uint32_t kBlue = 0x316AC5;

class Progress : public WipingTest {};

void WaitInFront(Window window) {
  Await("the front place of " + window.Describe(),
        [&] { return ::GetForegroundWindow() == window.Handle(); });
}

// Another program, whose window fills the screen and lies behind the one given. It is a process of its own:
// the system hands it the front as soon as the program in front has no window left.
class OtherProgram {
 public:
  explicit OtherProgram(Window inFront) {
    ::SetWindowPos(window_.Handle(), nullptr, 0, 0, ::GetSystemMetrics(SM_CXSCREEN),
                   ::GetSystemMetrics(SM_CYSCREEN), SWP_NOZORDER | SWP_NOACTIVATE);
    // In front first, so that it is the next one in the order of the screen.
    for (const Window window : {window_, inFront}) {
      ::SetForegroundWindow(window.Handle());
      WaitInFront(window);
    }
    atFirst_ = Activations();
  }

  // Whether it has been given the front, be it for a moment, since it was put behind the other window.
  bool WasInFront() const { return Activations() != atFirst_; }

 private:
  LONG_PTR Activations() const {
    window_.Send(WM_NULL);  // behind what the system has sent it
    return ::GetWindowLongPtrW(window_.Handle(), GWLP_USERDATA);
  }

  const Program program_{ProgramFolder() + "\\zq_sample_app.exe"};
  const Window window_ = program_.WaitWindow(kSampleTitle);
  LONG_PTR atFirst_ = 0;
};

TEST_F(Progress, ShowsItsProgressWhileTheMainWindowIsHidden) {
  Prepare(Level7());
  const std::string path = Large("big file.dat");
  const Program program(exe_, Quoted(path));
  const MainWindow main(program);
  Confirm(program, main);
  const StatusWindow status(program);
  status.WaitWork("big file.dat");
  EXPECT_FALSE(main.window.IsVisible());
  EXPECT_TRUE(status.cancel.IsEnabled());
  {
    const Hold hold(program, status);
    TakePicture(status.window, "wiping-status");
    ExpectLabelsFit(status.window);
    std::vector<std::string> labels;
    for (Window child : status.window.Children()) {
      if (IsLabel(child)) labels.push_back(child.Text());
    }
    EXPECT_THAT(labels, ElementsAre("Current Item", "Overall Items",
                                    AllOf(StartsWith("Processed "), HasSubstr(" bytes of 268,435,456 of "),
                                          EndsWith("big file.dat..."))));
    EXPECT_TRUE(static_cast<bool>(status.window.Child("Operation Status")));
    EXPECT_EQ(ReadProgress(status.current).low, 0);
    EXPECT_EQ(ReadProgress(status.current).high, 100);
    EXPECT_EQ(ReadProgress(status.overall).high, 100);
  }

  // Of one file both bars show the same, and the caption tells it.
  int last = 0;
  for (int look = 1; look <= 3; ++look) {
    Await("more of the file to be done", [&] { return ReadProgress(status.current).position > last; });
    const Hold hold(program, status);
    last = ReadProgress(status.current).position;
    EXPECT_LE(last, 100);
    EXPECT_EQ(ReadProgress(status.overall).position, last);
    EXPECT_EQ(status.window.Text(), std::to_string(last) + "% - Wipe Operation");
  }
  Close(program, main, kComplete);
  EXPECT_FALSE(PathExists(path));
}

TEST_F(Progress, CountsItemsInTheOverallBar) {
  Prepare(Level7());
  const std::string arguments = Quoted(scratch_.Make("small.txt", "x")) + " " + Quoted(Large("big.dat"));
  const Program program(exe_, arguments);
  const MainWindow main(program);
  Confirm(program, main);
  const StatusWindow status(program);
  status.WaitWork("big.dat");
  {
    const Hold hold(program, status);
    EXPECT_EQ(ReadProgress(status.overall).position, 50);
    EXPECT_EQ(status.window.Text(), "50% - Wipe Operation");
  }
  Close(program, main, kComplete);
}

TEST_F(Progress, IsNotDisturbedByACloseOfTheHiddenMainWindow) {
  Prepare(Level7());
  const std::string path = Large("big.dat");
  const Program program(exe_, Quoted(path));
  const MainWindow main(program);
  Confirm(program, main);
  const StatusWindow status(program);
  status.WaitWork("big.dat");
  main.window.Close();
  status.WaitChange();
  Close(program, main, kComplete);
  EXPECT_EQ(main.list.Rows(), 1);
  EXPECT_FALSE(PathExists(path));
  main.window.Close();
  EXPECT_EQ(program.WaitExit(), 0u);
}

TEST_F(Progress, StandsInFrontOfOtherProgramsAndSoDoesWhatFollows) {
  Prepare(Level7());
  const Program program(exe_, Quoted(Large("big.dat")));
  const MainWindow main(program);
  const OtherProgram other(main.window);
  Confirm(program, main);
  const StatusWindow status(program);
  status.WaitWork("big.dat");
  WaitInFront(status.window);
  TakePicture(status.window, "wiping-in-front", When::AtOnce);
  {
    const MessageBoxView box = WaitClosingBox(program);
    WaitInFront(box.window);
    EXPECT_EQ(box.window.Owner(), main.window);
  }
  Close(program, main, kComplete);
  WaitInFront(main.window);
  EXPECT_FALSE(other.WasInFront());
}

// As a keyboard repeats it. Posted, since Wine takes a key for released when another window comes to the
// front.
void RepeatEnter(Window window) {
  constexpr LPARAM kHeldEnter = 0x401C0001;
  window.Post(WM_KEYDOWN, VK_RETURN, kHeldEnter);
}

// One hold of Enter neither confirms the wipe that it has begun, nor asks for its end.
TEST_F(Progress, GivesItsCancelTheKeyboardAndNothingAnEnterThatIsHeldDown) {
  Prepare(Level7());
  const Program program(exe_, Quoted(Large("big.dat")));
  const MainWindow main(program);
  main.WaitJobTools(true);
  main.PressTool("Wipe Now");
  {
    const MessageBoxView box = program.WaitBox("Wipe Operation");
    RepeatEnter(box.window.Child("OK"));
    TypeKey(box.window, VK_TAB);  // looked at behind what was posted
    Await("the focus of Cancel", [&] { return box.window.Child("Cancel").HasFocus(); });
    box.Answer("OK");
  }
  const StatusWindow status(program);
  status.WaitWork("big.dat");
  EXPECT_TRUE(status.cancel.HasFocus());
  RepeatEnter(status.cancel);
  // Messages are looked at with each line; the first one may have been on its way.
  for (int lines = 0; lines < 2; ++lines) status.WaitChange();
  EXPECT_TRUE(program.Boxes().empty()) << program.Describe();
  TypeKey(status.window, VK_RETURN);
  program.WaitBox("Cancel").Answer("No");
  Close(program, main, kComplete);
}

TEST_F(Progress, DrawsBarsOfTheWantedLook) {
  for (const bool visual : {true, false}) {
    SCOPED_TRACE(visual ? "visual style" : "plain");
    SettingsFile settings = Level7();
    settings.progressBars = visual ? 1 : 0;
    Prepare(settings);
    const Program program(exe_, Quoted(Large("big.dat")));
    const MainWindow main(program);
    Confirm(program, main);
    const StatusWindow status(program);
    status.WaitWork("big.dat");
    {
      const Hold hold(program, status);
      TakePicture(status.window, visual ? "wiping-bars-visual" : "wiping-bars-plain");
      const auto pixels = [](Window bar, std::uint32_t colour) {
        const Picture picture = GrabScreen(bar.ScreenRect());
        return std::count(picture.pixels.begin(), picture.pixels.end(), colour);
      };
      for (Window bar : {status.current, status.overall}) {
        EXPECT_GT(pixels(bar, visual ? kBlue : kGreen), 10);
        EXPECT_EQ(pixels(bar, visual ? kGreen : kBlue), 0);
      }
    }
    Close(program, main, kComplete);
  }
}

// A wipe of four files, caught at the second.
class Cancelling : public WipingTest {
 protected:
  void SetUp() override {
    Prepare(Level7());
    paths_ = {scratch_.Make("first.txt", Marked(kMark, 3000)), Large("second.dat"),
              scratch_.Make("third.txt", Marked("never reached ", 3000), FILE_ATTRIBUTE_ARCHIVE),
              scratch_.Make("fourth.dat", Marked("never reached ", 1u << 20))};
    for (const std::string& path : paths_) arguments_ += (arguments_.empty() ? "" : " ") + Quoted(path);
  }

  static void ExpectQuestion(const MessageBoxView& box, const StatusWindow& status) {
    ExpectBox(box, "Cancel", "Cancel the current operation?", BoxIcon::Question, {"Yes", "No"}, "Yes");
    EXPECT_EQ(box.window.Owner(), status.window);
  }

  // By No at the first question, then by Yes; `ask` makes the program ask.
  template <typename Ask>
  void CancelBy(Ask&& ask, const std::string& picture) {
    const std::string third = ReadFileBytes(paths_[2]);
    const std::string fourth = ReadFileBytes(paths_[3]);
    const StampWindow stamps;
    const Program program(exe_, arguments_);
    const MainWindow main(program);
    main.list.WaitRows(4);
    Confirm(program, main);
    const StatusWindow status(program);
    status.WaitWork("second.dat");
    ask(status);
    {
      const MessageBoxView box = program.WaitBox("Cancel");
      TakePicture(box.window, picture);
      ExpectQuestion(box, status);
      // The engine stands still while the question is open.
      const std::string line = status.Line();
      EXPECT_FALSE(WaitFor([&] { return status.Line() != line; }, Limit(700)));
      box.Answer("No");
    }
    status.WaitChange();
    EXPECT_TRUE(status.window.IsVisible());
    EXPECT_FALSE(main.window.IsVisible());
    ask(status);
    program.WaitBox("Cancel").Answer("Yes");
    status.window.WaitGone();
    {
      const MessageBoxView box = WaitClosingBox(program);
      TakePicture(box.window, picture + "-closing");
      EXPECT_EQ(program.Windows().size(), 2u) << program.Describe();
    }
    Close(program, main, kCancelled);
    TakePicture(main.window, picture + "-main");

    const Report report = ReadReport(stamps);
    EXPECT_THAT(report.files, ElementsAre(paths_[0], paths_[1]));
    EXPECT_THAT(report.errors, ElementsAre(StartsWith(paths_[1] + " - "), kCancelLine));
    EXPECT_FALSE(PathExists(paths_[0]));
    // What the file system has given it is overwritten up to the end, which may be behind the content's.
    // Under Wine that counts the block that a file in many pieces has for their list.
    EXPECT_THAT(ReadFileBytes(paths_[1]).size(), AllOf(Ge(kLargeBytes), Le(kLargeBytes + (1u << 20))))
        << "what isn't wholly overwritten is not deleted";
    EXPECT_EQ(ReadFileBytes(paths_[2]), third);
    EXPECT_EQ(ReadFileBytes(paths_[3]), fourth);
    EXPECT_EQ(main.list.Rows(), 4);
    ExpectWiped(main, 0);
    ExpectUntouched(main, 1, "256.00 MB");
    ExpectUntouched(main, 2, "2.93 KB");
    ExpectUntouched(main, 3, "1.00 MB");
    WipeTheRest(program, main);
  }

  // The job is open still, and a cancel of one run is none of the next.
  void WipeTheRest(const Program& program, const MainWindow& main) const {
    const StampWindow stamps;
    Confirm(program, main);
    Close(program, main, kComplete);
    const Report report = ReadReport(stamps);
    EXPECT_THAT(report.files, ElementsAre(paths_[1], paths_[2], paths_[3]));
    EXPECT_THAT(report.errors, ElementsAre());
    for (const std::string& path : paths_) EXPECT_FALSE(PathExists(path)) << path;
    EXPECT_FALSE(FolderHolds(scratch_.Path(), kMark));
  }

  std::vector<std::string> paths_;
  std::string arguments_;
};

TEST_F(Cancelling, ByTheButtonAsksAndStopsBehindTheFileInWork) {
  CancelBy([](const StatusWindow& status) { status.cancel.Press(); }, "wiping-cancel");
}

TEST_F(Cancelling, ByTheCloseBoxAsksTheSame) {
  CancelBy([](const StatusWindow& status) { status.window.Close(); }, "wiping-close");
}

TEST_F(Cancelling, LeavesWhatFollowsInFrontOfOtherPrograms) {
  const Program program(exe_, arguments_);
  const MainWindow main(program);
  main.list.WaitRows(4);
  const OtherProgram other(main.window);
  Confirm(program, main);
  const StatusWindow status(program);
  status.WaitWork("second.dat");
  status.cancel.Press();
  EXPECT_FALSE(other.WasInFront());
  program.WaitBox("Cancel").Answer("Yes");
  const MessageBoxView box = WaitClosingBox(program);
  // The user's Yes has left the program without a window for a moment.
  WaitInFront(box.window);
  box.Answer("No");
  main.window.WaitEnabled();
}

TEST_F(Cancelling, IsNotMeantByEsc) {
  const Program program(exe_, arguments_);
  const MainWindow main(program);
  main.list.WaitRows(4);
  Confirm(program, main);
  const StatusWindow status(program);
  status.WaitWork("second.dat");
  status.window.PostKey(VK_ESCAPE);
  status.WaitChange();
  EXPECT_EQ(program.Windows().size(), 1u) << program.Describe();
  Close(program, main, kComplete);
}

}  // namespace
}  // namespace zq::test
