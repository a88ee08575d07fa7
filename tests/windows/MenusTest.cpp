// The menus as the system holds them: captions, separators, pictures, what is greyed, what a choice runs.
#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "Drawing.h"
#include "Driving.h"
#include "MainFormTest.h"
#include "core/main/CommandTable.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Item {
  const char* tool;     // "" for a separator
  const char* text;     // caption and shortcut, as the menu shows them
  const char* picture;  // "" for none
};

struct NamedMenu {
  const char* caption;
  std::vector<Item> items;
};

constexpr Item kSeparator{"", "", ""};

// clang-format off
const std::vector<NamedMenu> kMenus{
    {"&File",
     {{"mnuFileNew",              "&New Wiping Job\tCtrl+N",        "newsmall"},
      {"mnuFileOpen",             "&Open Wiping Job...\tCtrl+O",    "opensmall"},
      {"mnuFileSave",             "&Save Wiping Job\tCtrl+S",       "savesmall"},
      kSeparator,
      {"mnuFileClose",            "&Close Wiping Job\tCtrl+W",      ""},
      {"mnuFileDelete",           "&Delete Open Job\tCtrl+D",       ""},
      kSeparator,
      {"mnuFileView",             "&View Last Report...",           "report"},
      {"mnuFilePreferences",      "&Preferences...",                ""},
      kSeparator,
      {"mnuFileLaunch",           "&Launch Explorer Manager",       ""},
      kSeparator,
      {"mnuFileQuickWipeBin",     "&QuickWipe Bin\tCtrl+Q",         "MainSmall"},
      kSeparator,
      {"mnuFileExit",             "E&xit Zeroquill",                ""}}},
    {"&Actions",
     {{"mnuActionsAddFiles",      "Add F&iles...",                  "addfilessmall"},
      {"mnuActionsAddFolder",     "Add F&older...",                 "addfoldersmall"},
      kSeparator,
      {"mnuActionsRemove",        "&Remove Selected Item\tDelete",  "delete"},
      {"mnuActionsEdit",          "&Edit Folder Item...",           ""},
      kSeparator,
      {"mnuActionsWipeFreeSpace", "Wipe &Free Space...",            "wipspacesmall"},
      kSeparator,
      {"mnuActionsWipeNow",       "&Wipe Now\tF10",                 "MainSmall"}}},
    {"&Help",
     {{"mnuHelpContents",         "&Contents\tF1",                  "help"},
      kSeparator,
      {"mnuHelpWebPage",          "Zeroquill &Web Page",            ""},
      kSeparator,
      {"mnuHelpAbout",            "&About Zeroquill",               ""}}},
};
// clang-format on

// An item of a menu, as the system tells it.
struct Seen {
  std::string text;
  bool separator = false;
  bool greyed = false;
  UINT id = 0;
  HMENU popup = nullptr;
  HBITMAP picture = nullptr;
};

Seen Read(HMENU menu, int place) {
  char text[200] = "";
  MENUITEMINFOA info{};
  info.cbSize = sizeof info;
  info.fMask = MIIM_FTYPE | MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_STRING | MIIM_BITMAP;
  info.dwTypeData = text;
  info.cch = sizeof text;
  EXPECT_TRUE(::GetMenuItemInfoA(menu, static_cast<UINT>(place), TRUE, &info));
  return {.text = text,
          .separator = (info.fType & MFT_SEPARATOR) != 0,
          .greyed = (info.fState & MFS_GRAYED) != 0,
          .id = info.wID,
          .popup = info.hSubMenu,
          .picture = info.hbmpItem};
}

class MenusTest : public MainFormTest {
 protected:
  static HMENU Popup(frmMain& main, int place) { return ::GetSubMenu(::GetMenu(WindowOf(main)), place); }

  static int Dpi(frmMain& main) { return static_cast<int>(::GetDpiForWindow(WindowOf(main))); }
  static int Pixels(frmMain& main) { return ::MulDiv(16, Dpi(main), 96); }

  // What the menu's owner draws when it is asked for an item's picture.
  static Picture DrawnFor(frmMain& main, UINT id, UINT state, COLORREF ground) {
    return DrawOn(ground, Pixels(main), [&](HDC to) {
      DRAWITEMSTRUCT draw{};
      draw.CtlType = ODT_MENU;
      draw.itemID = id;
      draw.itemAction = ODA_DRAWENTIRE;
      draw.itemState = state;
      draw.hDC = to;
      draw.rcItem = {0, 0, Pixels(main), Pixels(main)};
      EXPECT_TRUE(::SendMessageW(WindowOf(main), WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&draw)));
    });
  }

  static bool IsGrey(const Picture& picture) {
    return std::all_of(picture.pixels.begin(), picture.pixels.end(), [](std::uint32_t pixel) {
      const std::uint32_t blue = pixel & 0xFF;
      return (pixel >> 8 & 0xFF) == blue && (pixel >> 16 & 0xFF) == blue;
    });
  }

  // Calls `look` with each item of the table and what the system has at its place.
  template <typename Look>
  static void ForEach(frmMain& main, const Look& look) {
    for (std::size_t m = 0; m < kMenus.size(); ++m) {
      const HMENU popup = Popup(main, static_cast<int>(m));
      for (std::size_t i = 0; i < kMenus[m].items.size(); ++i) {
        const Item& item = kMenus[m].items[i];
        SCOPED_TRACE(std::string(kMenus[m].caption) + " " + std::to_string(i) + " " + item.tool);
        look(item, Read(popup, static_cast<int>(i)));
      }
    }
  }

  // The greyed tools, in the order of the menus, once each menu has opened.
  static std::vector<std::string> Greyed(frmMain& main) {
    for (std::size_t m = 0; m < kMenus.size(); ++m) {
      const HMENU popup = Popup(main, static_cast<int>(m));
      ::SendMessageA(WindowOf(main), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(popup),
                     static_cast<LPARAM>(m));
    }
    std::vector<std::string> tools;
    ForEach(main, [&](const Item& item, const Seen& seen) {
      if (seen.greyed && !seen.separator) tools.push_back(item.tool);
    });
    return tools;
  }

  void OpenByCommandLine(const std::string& jobBytes) {
    fake_.files.AddFolder("C:\\Zeroquill\\Jobs");
    fake_.files.AddFile("C:\\Zeroquill\\Jobs\\Papers.zqj", jobBytes);
    fake_.process.commandLine = "\"C:\\Zeroquill\\Jobs\\Papers.zqj\"";
  }
};

TEST_F(MenusTest, HaveTheirCaptionsAndSeparatorsInOrder) {
  frmMain& main = Open();
  const HMENU bar = ::GetMenu(WindowOf(main));
  ASSERT_EQ(::GetMenuItemCount(bar), static_cast<int>(kMenus.size()));
  for (std::size_t m = 0; m < kMenus.size(); ++m) {
    const Seen menu = Read(bar, static_cast<int>(m));
    EXPECT_EQ(menu.text, kMenus[m].caption);
    EXPECT_FALSE(menu.greyed);
    ASSERT_NE(menu.popup, nullptr);
    ASSERT_EQ(::GetMenuItemCount(menu.popup), static_cast<int>(kMenus[m].items.size()));
  }
  ForEach(main, [](const Item& item, const Seen& seen) {
    EXPECT_EQ(seen.separator, *item.tool == '\0');
    EXPECT_EQ(seen.text, item.text);
    EXPECT_EQ(seen.popup, nullptr);
  });
}

TEST_F(MenusTest, ShowThePicturesThatBelongToTheirTools) {
  frmMain& main = Open();
  std::set<std::string> names;
  std::set<std::vector<std::uint32_t>> looks;
  ForEach(main, [&](const Item& item, const Seen& seen) {
    if (*item.picture == '\0') {
      EXPECT_EQ(seen.picture, nullptr);
      return;
    }
    EXPECT_EQ(seen.picture, HBMMENU_CALLBACK);
    // Highlighted, it stands on whatever the menu has drawn below it.
    for (const UINT state : {0U, static_cast<UINT>(ODS_SELECTED)}) {
      const COLORREF ground = ::GetSysColor(state ? COLOR_HIGHLIGHT : COLOR_MENU);
      const Picture shown = DrawnFor(main, seen.id, state, ground);
      EXPECT_TRUE(ShowsSomething(shown));
      EXPECT_TRUE(shown == DrawIcon(LoadResourceIcon(item.picture, Pixels(main)).Get(), ground, Pixels(main)))
          << "it isn't the picture " << item.picture;
      if (state) continue;
      names.insert(item.picture);
      looks.insert(shown.pixels);
    }
  });
  EXPECT_EQ(names.size(), 10U);
  EXPECT_EQ(looks.size(), names.size()) << "pictures of different names look the same";
}

TEST_F(MenusTest, LeaveAGapBetweenPictureAndCaption) {
  frmMain& main = Open();
  ForEach(main, [&](const Item& item, const Seen& seen) {
    MEASUREITEMSTRUCT measure{};
    measure.CtlType = ODT_MENU;
    measure.itemID = seen.id;
    const LRESULT measured =
        ::SendMessageW(WindowOf(main), WM_MEASUREITEM, 0, reinterpret_cast<LPARAM>(&measure));
    EXPECT_EQ(measured != 0, *item.picture != '\0');
    if (!measured) return;
    EXPECT_EQ(static_cast<int>(measure.itemHeight), Pixels(main));
    EXPECT_EQ(static_cast<int>(measure.itemWidth), Pixels(main) + ::MulDiv(4, Dpi(main), 96));
  });
}

TEST_F(MenusTest, GreyThePictureWithItsCaption) {
  frmMain& main = Open();
  const COLORREF ground = ::GetSysColor(COLOR_MENU);
  ASSERT_EQ(GetRValue(ground), GetBValue(ground));
  ForEach(main, [&](const Item& item, const Seen& seen) {
    if (*item.picture == '\0') return;
    const Picture live = DrawnFor(main, seen.id, 0, ground);
    for (const UINT state : {ODS_GRAYED | ODS_DISABLED, ODS_GRAYED | ODS_DISABLED | ODS_SELECTED}) {
      const Picture greyed = DrawnFor(main, seen.id, state, ground);
      EXPECT_TRUE(ShowsSomething(greyed));
      EXPECT_FALSE(greyed == live);
      EXPECT_TRUE(IsGrey(greyed));
    }
    EXPECT_FALSE(IsGrey(live));
  });
}

// Menus with a visual style are given bitmaps, which they blend themselves.
TEST_F(MenusTest, AreGivenBitmapsWhereTheyBlendThem) {
  const HWND owner = ::CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200, nullptr,
                                       nullptr, nullptr, nullptr);
  const BarsDesign design = MainBars();
  MenuBar bar;
  bar.Create(owner, design.menus, 100);
  bar.LoadPictures(144, MenuLook::Blended);
  const HMENU file = ::GetSubMenu(::GetMenu(owner), 0);
  const HBITMAP live = Read(file, 0).picture;
  BITMAP bitmap{};
  ASSERT_EQ(::GetObjectW(live, sizeof bitmap, &bitmap), static_cast<int>(sizeof bitmap));
  EXPECT_EQ(bitmap.bmWidth, 24 + 6) << "the gap belongs to it";
  EXPECT_EQ(bitmap.bmHeight, 24);
  EXPECT_EQ(bitmap.bmBitsPixel, 32);
  const auto look = [&](HBITMAP shown) { return DrawBitmap(shown, 24); };
  EXPECT_FALSE(IsGrey(look(live)));
  bar.SetEnabled(100, false);
  EXPECT_TRUE(IsGrey(look(Read(file, 0).picture)));
  bar.SetEnabled(100, true);
  EXPECT_EQ(Read(file, 0).picture, live);
  bar.SetEnabled(100, false);
  bar.LoadPictures(96, MenuLook::Blended);
  ASSERT_EQ(::GetObjectW(Read(file, 0).picture, sizeof bitmap, &bitmap), static_cast<int>(sizeof bitmap));
  EXPECT_EQ(bitmap.bmHeight, 16);
  EXPECT_TRUE(IsGrey(DrawBitmap(Read(file, 0).picture, 16))) << "greyed as its item is";
  EXPECT_EQ(Read(file, 4).picture, nullptr);
  ::DestroyWindow(owner);
}

TEST_F(MenusTest, RunTheToolThatStandsAtTheirPlace) {
  frmMain& main = Open();
  std::vector<std::string> ran;
  main.DockStudio1.ToolClick = [&](std::string_view tool) { ran.emplace_back(tool); };
  std::vector<std::string> wanted;
  ForEach(main, [&](const Item& item, const Seen& seen) {
    if (seen.separator) return;
    wanted.emplace_back(item.tool);
    ::SendMessageA(WindowOf(main), WM_COMMAND, seen.id, 0);
  });
  EXPECT_EQ(ran, wanted);
}

TEST_F(MenusTest, TellWhichMenuOpens) {
  frmMain& main = Open();
  std::vector<std::string> opened;
  main.DockStudio1.MenuOpening = [&](std::string_view menu) { opened.emplace_back(menu); };
  Greyed(main);
  EXPECT_THAT(opened, ElementsAre("mnuFile", "mnuActions", "mnuHelp"));
}

TEST_F(MenusTest, GreyWhatNeedsRowsOrAJobAtAnEmptyList) {
  EXPECT_THAT(Greyed(Open()), ElementsAre("mnuFileSave", "mnuFileClose", "mnuFileDelete", "mnuActionsRemove",
                                          "mnuActionsEdit", "mnuActionsWipeNow"));
}

TEST_F(MenusTest, GreyDeleteAndEditForAFileOfNoJob) {
  fake_.files.AddFile("C:\\paper.txt", "a paper");
  fake_.process.commandLine = "C:\\paper.txt";
  EXPECT_THAT(Greyed(Open()), ElementsAre("mnuFileDelete", "mnuActionsEdit"));
}

TEST_F(MenusTest, GreyWhatNeedsRowsForAJobWithoutAny) {
  OpenByCommandLine("\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n");
  EXPECT_THAT(Greyed(Open()), ElementsAre("mnuFileSave", "mnuFileClose", "mnuActionsRemove", "mnuActionsEdit",
                                          "mnuActionsWipeNow"));
}

TEST_F(MenusTest, GreyEditByTheRowThatIsSelected) {
  OpenByCommandLine(
      "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\papers\"\r\n\"*.*\"\r\n\"Yes\"\r\n\"[FILES]\"\r\n\"C:\\a.txt\"\r\n");
  frmMain& main = Open();
  main.Jobs().Select(1);
  EXPECT_THAT(Greyed(main), IsEmpty());
  main.Jobs().Select(2);
  EXPECT_THAT(Greyed(main), ElementsAre("mnuActionsEdit"));
  main.Jobs().Select(1);
  EXPECT_THAT(Greyed(main), IsEmpty());
  main.Jobs().Select(0);
  EXPECT_THAT(Greyed(main), ElementsAre("mnuActionsEdit"));
}

TEST_F(MenusTest, HelpMenuLeadsToContentsAndWebPage) {
  frmMain& main = Open();
  main.DockStudio1.ToolClick("mnuHelpContents");
  main.DockStudio1.ToolClick("mnuHelpWebPage");
  EXPECT_THAT(asked_, ElementsAre("help: contents", "help: web page"));
}

// The key is a tool's. What the system makes of it besides, the request for help on a window, is let go by.
TEST_F(MenusTest, F1ShowsTheContentsOnce) {
  Form& main = Open();
  PostKey(main, VK_F1);
  EXPECT_THAT(asked_, ElementsAre("help: contents"));
  HELPINFO info{};
  info.cbSize = sizeof info;
  ::SendMessageW(main.Handle(), WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
  PumpMessages();
  EXPECT_THAT(asked_, ElementsAre("help: contents"));
}

}  // namespace
}  // namespace zq::test
