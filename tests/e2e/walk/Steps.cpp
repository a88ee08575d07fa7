#include "e2e/walk/Steps.h"

namespace zq::test {

void SeeMenus(Walk& walk, std::string_view part) {
  struct Opened {
    const char* id;
    char letter;
  };
  const Window main = walk.Main().window;
  main.WaitEnabled();
  for (const Opened& menu : {Opened{"mnuFile", 'f'}, Opened{"mnuActions", 'a'}, Opened{"mnuHelp", 'h'}}) {
    // As the system puts it once Alt and the letter have come.
    main.Post(WM_SYSCOMMAND, SC_KEYMENU, menu.letter);
    Await(std::string("the menu ") + menu.id, [&] { return static_cast<bool>(FindMenu(walk.Run())); });
    walk.visits.See(menu.id, FindMenu(walk.Run()), part);
    main.Post(WM_CANCELMODE);
    Await("the end of the menu", [&] { return !FindMenu(walk.Run()); });
  }
}

void SeeHelp(Walk& walk, std::string_view part) {
  const Window help = walk.Run().WaitWindow("Zeroquill Help", "HH Parent");
  walk.visits.See("Help", help, part);
  help.Close();
  help.WaitGone();
}

void PressHelp(Walk& walk, Window dialog, std::string_view part) {
  dialog.Child("Help").Press();
  SeeHelp(walk, part);
  EXPECT_TRUE(dialog.IsVisible() && dialog.IsEnabled());
}

void DropOnList(Walk& walk, const std::vector<std::string>& paths) {
  walk.Main().window.WaitEnabled();
  EXPECT_EQ(DragFilesTo(walk.Main().list.TheWindow().Centre(), paths), static_cast<DWORD>(DROPEFFECT_COPY));
}

void AcceptDialog(Window dialog) {
  dialog.Child("OK").WaitEnabled();
  dialog.Child("OK").Press();
  dialog.WaitGone();
}

void OpenSavedJob(Walk& walk, std::string_view command, const std::string& name) {
  walk.Command(command);
  const Window open = walk.Dialog("frmOpenJob", "Open Job", "jobs");
  const ListView jobs(open.ChildOfClass(WC_LISTVIEWA));
  jobs.Select(jobs.Find(name));
  AcceptDialog(open);
}

std::string JobPanel(const Walk& walk) {
  return StatusPanels(walk.Main().statusBar).at(1);
}

}  // namespace zq::test
