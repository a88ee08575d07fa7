// From the start of the program to its end: splash, first start, welcome, second instance, exit.
#include <chrono>

#include "e2e/Zeroquill.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;

class Start : public ZeroquillTest {};

using Clock = std::chrono::steady_clock;

// `notYet` is the last moment at which there was none to be seen.
Window WaitSplash(const Program& program, Clock::time_point& notYet) {
  Window splash;
  Await("the splash", [&] {
    const Clock::time_point now = Clock::now();
    for (Window window : program.Windows()) splash = window;
    if (!splash) notYet = now;
    return static_cast<bool>(splash);
  });
  return splash;
}

struct Times {
  FILETIME created;
  FILETIME written;
};

Times TimesOf(const std::string& path) {
  WIN32_FIND_DATAA data{};
  HANDLE find = ::FindFirstFileA(path.c_str(), &data);
  if (find == INVALID_HANDLE_VALUE) throw DriverError("no file " + path);
  ::FindClose(find);
  return {data.ftCreationTime, data.ftLastWriteTime};
}

void ExpectSameTimes(const Times& before, const Times& now) {
  EXPECT_EQ(::CompareFileTime(&before.created, &now.created), 0);
  EXPECT_EQ(::CompareFileTime(&before.written, &now.written), 0);
}

TEST_F(Start, SplashThatIsClosedEndsTheProgramAndTheNextStartIsTheFirstAgain) {
  Prepare();
  {
    Clock::time_point notYet = Clock::now();
    const Program program(exe_);
    WaitSplash(program, notYet).Close();
    EXPECT_EQ(program.WaitExit(), 0u);
  }
  const Program program(exe_);
  const MainWindow main(program);
  EXPECT_TRUE(main.window.IsVisible());
}

TEST_F(Start, ShowsTheSplashForTwoSecondsAndThenTheMainWindow) {
  Prepare();
  Clock::time_point notYet = Clock::now();
  const Program program(exe_);
  const Window splash = WaitSplash(program, notYet);
  EXPECT_EQ(splash.Text(), "");
  EXPECT_EQ(splash.Style() & (WS_CAPTION | WS_THICKFRAME), 0);
  const RECT window = splash.ScreenRect();
  const RECT picture = splash.ChildOfClass("Static").ScreenRect();
  EXPECT_TRUE(::EqualRect(&window, &picture)) << "the splash is not exactly its picture";
  EXPECT_GT(window.right - window.left, 200);
  EXPECT_GT(window.bottom - window.top, 100);
  TakePicture(splash, "start-splash");
  EXPECT_EQ(program.Windows().size(), 1u);

  const MainWindow main(program);
  const Clock::time_point mainSeen = Clock::now();
  // However late a loaded machine lets this test look, the splash came after `notYet`.
  EXPECT_GT(mainSeen - notYet, std::chrono::milliseconds(1700));
  splash.WaitGone();
  EXPECT_EQ(program.Windows().size(), 1u) << program.Describe();
  TakePicture(main.window, "start-main");
}

TEST_F(Start, WritesTheDefaultsAndMakesTheFoldersAtTheFirstStart) {
  const Program program(exe_);
  const MainWindow main(program);
  const std::string settings = ReadFileBytes(settingsPath_);
  EXPECT_EQ(settings.size(), 322u);
  EXPECT_EQ(settings, std::string("\x03\0\0\0", 4) + std::string(150, ' ') + std::string(150, '\0') +
                          std::string("\0\0\0\0\x01\0\x08\0\0\0\0\0\0\0\x01\0\x01\0", 18));
  EXPECT_EQ(ReadFileBytes(placementPath_), std::string(8, '\0'));
  EXPECT_TRUE(PathExists(folder_ + "\\Jobs\\."));
  EXPECT_TRUE(PathExists(folder_ + "\\Report\\."));
  EXPECT_TRUE(::IsZoomed(main.window.Handle())) << "without a placement the window is maximised";
}

TEST_F(Start, ShowsTheWelcomeAtTheFirstStart) {
  const Program program(exe_);
  const MainWindow main(program);
  const Window welcome = program.WaitWindow("Welcome to Zeroquill");
  TakePicture(welcome, "start-welcome");
  ExpectLabelsFit(welcome);
  EXPECT_EQ(welcome.Owner(), main.window);
  EXPECT_FALSE(main.window.IsEnabled());
  EXPECT_EQ(welcome.Style() & WS_THICKFRAME, 0);
  EXPECT_FALSE(PathExists(markerPath_));

  std::vector<std::string> labels;
  for (Window child : welcome.Children()) {
    if (child.ClassName() == "Static" && (child.Style() & SS_TYPEMASK) == SS_LEFT) {
      EXPECT_TRUE(child.IsVisible());
      labels.push_back(child.Text());
    }
  }
  EXPECT_THAT(
      labels,
      ElementsAre(
          "Important Information about Zeroquill",
          "Zeroquill allows you to securely delete files and folders from your system.  When you delete a "
          "file normally, the file is not truly removed from you system.  It can still, in most cases, be "
          "recovered by file recovery software.  With Zeroquill, you can ensure that “wiped” files are not "
          "recoverable by any means.",
          "This allows you to ensure your privacy and that sensitive or confidential data cannot be "
          "recovered when you choose to remove it from your system.",
          "If the information you are choosing to “wipe” is extremely confidential and you need to ensure "
          "it cannot be recovered, use the File/Preferences option and set your Security Level to 7.  No "
          "software or hardware tools have ever been able to recover data that has been wiped using this "
          "level of security.",
          "One last note:  Use Zeroquill with caution.  Ensure you are only wiping the files you want to be "
          "wiped.  Once a file has been wiped using Zeroquill, it cannot be recovered."));

  // OK is the default button, so the Enter key presses it.
  EXPECT_EQ(welcome.Child("OK").Text(), "&OK");
  TypeKey(welcome, VK_RETURN);
  welcome.WaitGone();
  main.window.WaitEnabled();
  Await("the marker", [&] { return PathExists(markerPath_); });
  EXPECT_EQ(ReadFileBytes(markerPath_), "");
}

TEST_F(Start, LeavesTheMarkerWhenTheWelcomeIsClosedByItsCloseBox) {
  const Program program(exe_);
  const MainWindow main(program);
  const Window welcome = program.WaitWindow("Welcome to Zeroquill");
  welcome.Close();
  welcome.WaitGone();
  main.window.WaitEnabled();
  EXPECT_EQ(ReadFileBytes(markerPath_), "");
}

TEST_F(Start, ShowsTheWelcomeOnceInARunAndNotAtTheNextStart) {
  for (const bool first : {true, false}) {
    SCOPED_TRACE(first ? "first start" : "second start");
    const Program program(exe_);
    const MainWindow main(program);
    if (first) {
      const Window welcome = program.WaitWindow("Welcome to Zeroquill");
      welcome.Child("OK").Press();
      welcome.WaitGone();
    }
    // Another activation; a welcome would come before the box that is asked for after it.
    main.window.Post(WM_SYSCOMMAND, SC_MINIMIZE);
    Await("the window to be minimised", [&] { return ::IsIconic(main.window.Handle()) != 0; });
    main.window.Post(WM_SYSCOMMAND, SC_RESTORE);
    Await("the window to be restored", [&] { return ::IsIconic(main.window.Handle()) == 0; });
    main.ChooseMenu('H', 'A');
    const Window about = program.WaitWindow("About Zeroquill");
    EXPECT_FALSE(program.FindWindow("Welcome to Zeroquill"));
    about.Child("OK").Press();
    about.WaitGone();
    main.window.Close();
    EXPECT_EQ(program.WaitExit(), 0u);
  }
}

// A folder of the marker's name stands in for one that can't be written.
TEST_F(Start, ShowsTheWelcomeAtEachStartWhereTheMarkerCannotBeWritten) {
  Prepare();
  ASSERT_TRUE(::DeleteFileA(markerPath_.c_str()));
  ASSERT_TRUE(::CreateDirectoryA(markerPath_.c_str(), nullptr));
  for (int start = 1; start <= 2; ++start) {
    SCOPED_TRACE(start);
    const Program program(exe_);
    const MainWindow main(program);
    const Window welcome = program.WaitWindow("Welcome to Zeroquill");
    welcome.Child("OK").Press();
    welcome.WaitGone();
    main.window.WaitEnabled();
    main.window.Close();
    EXPECT_EQ(program.WaitExit(), 0u);
  }
}

TEST_F(Start, TurnsAwayASecondInstanceWithoutATrace) {
  Prepare();
  const Program first(exe_);
  const MainWindow main(first);
  // What a second instance would take for damaged, and write anew.
  WriteFileBytes(settingsPath_, "the first instance's");
  WriteFileBytes(placementPath_, "untouched");
  const Times settings = TimesOf(settingsPath_);
  const Times placement = TimesOf(placementPath_);
  {
    const Program second(exe_);
    bool window = false;
    Await("the second instance's end", [&] {
      window = window || !second.Windows().empty();
      return !second.IsRunning();
    });
    EXPECT_FALSE(window) << "the second instance showed a window";
    EXPECT_EQ(second.WaitExit(), 0u);
  }
  EXPECT_EQ(ReadFileBytes(settingsPath_), "the first instance's");
  EXPECT_EQ(ReadFileBytes(placementPath_), "untouched");
  ExpectSameTimes(settings, TimesOf(settingsPath_));
  ExpectSameTimes(placement, TimesOf(placementPath_));

  EXPECT_TRUE(first.IsRunning());
  main.ChooseMenu('H', 'A');
  first.WaitWindow("About Zeroquill").Child("OK").Press();
  first.WaitNoWindow("About Zeroquill");
  main.window.Close();
  EXPECT_EQ(first.WaitExit(), 0u);
  EXPECT_EQ(ReadFileBytes(settingsPath_).size(), 322u);
}

TEST_F(Start, EndsByTheMenuByTheCloseBoxAndByAltF4) {
  Prepare();
  const auto end = [&](auto&& ask) {
    const Program program(exe_);
    const MainWindow main(program);
    ask(main);
    EXPECT_EQ(program.WaitExit(), 0u);
  };
  end([](const MainWindow& main) { main.ChooseMenu('F', 'X'); });
  end([](const MainWindow& main) { main.window.Close(); });
  end([](const MainWindow& main) { TypeKey(main.window, VK_F4, {VK_MENU}); });
}

}  // namespace
}  // namespace zq::test
