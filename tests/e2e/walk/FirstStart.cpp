// From the first start to the first look around.
#include "e2e/walk/Scenes.h"
#include "e2e/walk/Steps.h"

namespace zq::test {

void FirstStart(Walk& walk) {
  walk.Launch();
  Window splash;
  Await("the splash", [&] {
    for (const Window window : walk.Run().Windows()) splash = window;
    return static_cast<bool>(splash);
  });
  EXPECT_EQ(splash.Text(), "");
  // It is there for two seconds, whatever else the machine does.
  walk.visits.See("frmOpen", splash, "", When::AtOnce);
  walk.WaitMain();

  walk.ExpectSettingsOnDisc();
  EXPECT_TRUE(PathExists(walk.folder + "\\Jobs\\."));
  EXPECT_TRUE(PathExists(walk.folder + "\\Report\\."));
  EXPECT_FALSE(PathExists(walk.layoutPath));
  EXPECT_TRUE(::IsZoomed(walk.Main().window.Handle())) << "without a placement";

  const Window welcome = walk.Dialog("frmWelcome", "Welcome to Zeroquill");
  EXPECT_FALSE(PathExists(walk.markerPath));
  welcome.Child("OK").Press();
  welcome.WaitGone();
  walk.Main().window.WaitEnabled();
  EXPECT_EQ(ReadFileBytes(walk.markerPath), "");
  walk.visits.See("frmMain", walk.Main().window, "empty");
}

void SecondStart(Walk& walk) {
  // What a second instance would take for damaged, and write anew.
  WriteFileBytes(walk.settingsPath, "the first instance's");
  {
    const Program second(walk.exe, Quoted(walk.scratch / "letter.txt"));
    EXPECT_EQ(second.WaitExit(), 0u);
  }
  EXPECT_EQ(ReadFileBytes(walk.settingsPath), "the first instance's");
  EXPECT_EQ(walk.Main().list.Rows(), 0);
  WriteFileBytes(walk.settingsPath, walk.settings.Bytes());
}

void LookAround(Walk& walk) {
  SeeMenus(walk, "empty");

  walk.Command("mnuHelpAbout");
  const Window about = walk.Dialog("frmAbout", "About Zeroquill");
  about.Child("OK").Press();
  about.WaitGone();

  walk.Command("mnuFileView");
  walk.Answer("report-none", "OK");

  walk.Command("OpenJob");
  const Window open = walk.Dialog("frmOpenJob", "Open Job", "no-jobs");
  EXPECT_FALSE(open.Child("OK").IsEnabled());
  PressHelp(walk, open, "of-open-job");
  open.Child("Close").Press();
  open.WaitGone();

  for (const char* command : {"NewJob", "mnuFileNew"}) {
    walk.Command(command);
    const Window note = walk.Dialog("frmNew", "New Job");
    note.Child("OK").Press();
    note.WaitGone();
  }
}

void AskForHelp(Walk& walk) {
  walk.Command("mnuHelpContents");
  SeeHelp(walk, "contents");

  const std::string file = walk.folder + "\\Zeroquill.chm";
  const std::string aside = walk.folder + "\\Zeroquill.aside";
  ASSERT_TRUE(::MoveFileA(file.c_str(), aside.c_str()));
  walk.Command("mnuHelpContents");
  walk.Answer("help-missing", "OK");
  ASSERT_TRUE(::MoveFileA(aside.c_str(), file.c_str()));

  // Another program's matter: nothing of it comes back.
  walk.Command("mnuHelpWebPage");
  walk.Command("mnuHelpAbout");
  const Window about = walk.Run().WaitWindow("About Zeroquill");
  EXPECT_TRUE(walk.Run().Boxes().empty());
  about.Child("OK").Press();
  about.WaitGone();
}

}  // namespace zq::test
