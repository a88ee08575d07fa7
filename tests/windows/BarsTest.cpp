// What the main window really shows: its size, the pictures of the tools and the rows, bars with and without
// visual style, and a box of the system's over it.
#include <windows.h>
#include <commctrl.h>
#include <gmock/gmock.h>
#include <shellapi.h>
#include <uxtheme.h>

#include <algorithm>
#include <map>
#include <set>

#include "Drawing.h"
#include "MainFormTest.h"
#include "RealBoxes.h"
#include "core/main/CommandTable.h"
#include "platform/win32/Wide.h"
#include "platform/win32/Win32MessageBoxes.h"
#include "support/driver/Driver.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

class BarsTest : public MainFormTest {
 protected:
  static int Dpi(frmMain& main) { return static_cast<int>(::GetDpiForWindow(WindowOf(main))); }

  static void ExpectDesignSize(frmMain& main) {
    RECT client{};
    ::GetClientRect(WindowOf(main), &client);
    EXPECT_EQ(client.right * 1440, 10710 * Dpi(main));
    EXPECT_EQ(client.bottom * 1440, 6930 * Dpi(main));
  }

  // The bar of the tools and the status bar; the tools' own windows have no theme to ask for under Wine.
  static void ExpectThemed(frmMain& main, bool themed) {
    for (const char* windowClass : {REBARCLASSNAMEA, STATUSCLASSNAMEA}) {
      const std::vector<HWND> bars = Below(main, windowClass);
      ASSERT_EQ(bars.size(), 1U) << windowClass;
      EXPECT_EQ(::GetWindowTheme(bars[0]) != nullptr, themed) << windowClass;
    }
  }

  Win32MessageBoxes boxes_;
  Platform withRealBoxes_{fake_.files, boxes_, fake_.process, fake_.regional, fake_.registry};
};

TEST_F(BarsTest, WindowHasItsDesignSizeUntilItIsShownMaximised) {
  Put({}, {});
  ExpectDesignSize(Default<frmMain>::Touch());
}

TEST_F(BarsTest, WindowComesBackAtItsDesignSizeFromTheFirstStartsMaximisedOne) {
  Put({}, {});
  frmMain& main = Open();
  ASSERT_TRUE(::IsZoomed(WindowOf(main)));
  ::ShowWindow(WindowOf(main), SW_RESTORE);
  PumpMessages();
  ExpectDesignSize(main);
}

TEST_F(BarsTest, ToolsShowThePicturesThatBelongToThem) {
  frmMain& main = Open();
  const int pixels = ::MulDiv(32, Dpi(main), 96);
  const COLORREF ground = RGB(255, 0, 255);
  const std::vector<std::vector<const char*>> wanted{{"newlarge", "openlarge", "savelarge"},
                                                     {"addfileslarge", "addfolderlarge"},
                                                     {"MainLarge", "wipespacelarge"}};
  std::set<std::vector<std::uint32_t>> looks;
  const std::vector<HWND> bands = Below(main, TOOLBARCLASSNAMEA);
  ASSERT_EQ(bands.size(), wanted.size());
  for (const HWND band : bands) {
    // The bands come in the order of the windows' stack; the command of the first tool tells which one it is.
    const auto count = static_cast<std::size_t>(::SendMessageA(band, TB_BUTTONCOUNT, 0, 0));
    TBBUTTON button{};
    ASSERT_TRUE(::SendMessageA(band, TB_GETBUTTON, 0, reinterpret_cast<LPARAM>(&button)));
    char caption[64] = "";
    ::SendMessageA(band, TB_GETBUTTONTEXTA, static_cast<WPARAM>(button.idCommand),
                   reinterpret_cast<LPARAM>(caption));
    const std::string first = caption;
    const auto& names = wanted[first == "New Job" ? 0 : first == "Add Files" ? 1 : 2];
    ASSERT_EQ(count, names.size()) << first;
    const auto images = reinterpret_cast<HIMAGELIST>(::SendMessageA(band, TB_GETIMAGELIST, 0, 0));
    int width = 0;
    int height = 0;
    ASSERT_TRUE(::ImageList_GetIconSize(images, &width, &height)) << first;
    EXPECT_EQ(width, pixels);
    EXPECT_EQ(height, pixels);
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_TRUE(::SendMessageA(band, TB_GETBUTTON, i, reinterpret_cast<LPARAM>(&button)));
      const Picture shown = DrawOfList(images, button.iBitmap, ground, pixels);
      EXPECT_TRUE(ShowsSomething(shown)) << names[i];
      EXPECT_TRUE(shown == DrawListed(LoadResourceIcon(names[i], pixels).Get(), ground, pixels)) << names[i];
      looks.insert(shown.pixels);
    }
  }
  EXPECT_EQ(looks.size(), 7U) << "pictures of different tools look the same";
}

TEST_F(BarsTest, BandsAreReadOutByTheNamesOfTheirGroups) {
  frmMain& main = Open();
  std::map<std::string, std::string> names;  // by the first tool of the band
  for (const HWND band : Below(main, TOOLBARCLASSNAMEA)) {
    TBBUTTON button{};
    ASSERT_TRUE(::SendMessageA(band, TB_GETBUTTON, 0, reinterpret_cast<LPARAM>(&button)));
    char caption[64] = "";
    ::SendMessageA(band, TB_GETBUTTONTEXTA, static_cast<WPARAM>(button.idCommand),
                   reinterpret_cast<LPARAM>(caption));
    char name[64] = "";
    ::GetWindowTextA(band, name, sizeof name);
    names[caption] = name;
  }
  EXPECT_THAT(names,
              ElementsAre(Pair("Add Files", "Items"), Pair("New Job", "Job"), Pair("Wipe Now", "Wiping")));
}

// As the tool bar's own tip window asks.
TEST_F(BarsTest, ToolsTellWhatTheyDoAndTheirKeys) {
  frmMain& main = Open();
  std::vector<std::string> tips;
  for (const HWND band : Below(main, TOOLBARCLASSNAMEA)) {
    const auto count = static_cast<std::size_t>(::SendMessageA(band, TB_BUTTONCOUNT, 0, 0));
    for (std::size_t i = 0; i < count; ++i) {
      TBBUTTON button{};
      ASSERT_TRUE(::SendMessageA(band, TB_GETBUTTON, i, reinterpret_cast<LPARAM>(&button)));
      const auto tipWindow = reinterpret_cast<HWND>(::SendMessageA(band, TB_GETTOOLTIPS, 0, 0));
      ASSERT_NE(tipWindow, nullptr);
      NMTTDISPINFOW asked{};
      asked.hdr = {tipWindow, static_cast<UINT_PTR>(button.idCommand), static_cast<UINT>(TTN_GETDISPINFOW)};
      asked.lpszText = asked.szText;
      ::SendMessageW(band, WM_NOTIFY, asked.hdr.idFrom, reinterpret_cast<LPARAM>(&asked));
      tips.push_back(asked.lpszText ? FromWide(asked.lpszText) : "");
    }
  }
  EXPECT_THAT(tips, UnorderedElementsAre(
                        "Close the open job and start a new one (Ctrl+N)", "Open a saved job (Ctrl+O)",
                        "Save the open job (Ctrl+S)", "Add files to the job", "Add a folder to the job",
                        "Wipe all items of the job (F10)", "Wipe the free space of a drive"));
}

// With the same room at twice the resolution captions run into one another.
TEST_F(BarsTest, CaptionsOfToolsStandApartAtEveryResolution) {
  const HWND owner = ::CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW, 0, 0, 900, 300, nullptr,
                                       nullptr, nullptr, nullptr);
  {
    const BarsDesign design = MainBars();
    ToolBands bands;
    bands.Create(owner, design.toolBar, design.bandNames, 100);
    for (const int dpi : {96, 192}) {
      bands.LoadPictures(dpi);
      int tools = 0;
      for (HWND band = nullptr;
           (band = ::FindWindowExW(bands.Handle(), band, TOOLBARCLASSNAMEW, nullptr)) != nullptr;) {
        const HDC screen = ::GetDC(band);
        const HGDIOBJ before =
            ::SelectObject(screen, reinterpret_cast<HFONT>(::SendMessageW(band, WM_GETFONT, 0, 0)));
        for (std::size_t i = 0; i < bands.Tools().size(); ++i) {
          RECT button{};
          if (!::SendMessageW(band, TB_GETRECT, 100 + i, reinterpret_cast<LPARAM>(&button))) continue;
          const std::wstring caption = ToWide(bands.Tools()[i]->caption);
          SIZE size{};
          ::GetTextExtentPoint32W(screen, caption.c_str(), static_cast<int>(caption.size()), &size);
          EXPECT_EQ(button.right - button.left, std::max(size.cx, 32L * dpi / 96) + 10 * dpi / 96)
              << bands.Tools()[i]->caption << " at " << dpi;
          ++tools;
        }
        ::SelectObject(screen, before);
        ::ReleaseDC(band, screen);
      }
      EXPECT_EQ(tools, 7);
    }
  }
  ::DestroyWindow(owner);
}

TEST_F(BarsTest, WindowKeepsListAndBarsUsableHoweverSmallTheUserMakesIt) {
  frmMain& main = Open();
  ::SetWindowPos(WindowOf(main), nullptr, 0, 0, 10, 10, SWP_NOMOVE | SWP_NOZORDER);
  PumpMessages();
  RECT client{};
  ::GetClientRect(WindowOf(main), &client);
  EXPECT_GE(client.right * 1440, 6900 * Dpi(main));
  RECT list{};
  ::GetWindowRect(main.ListView1.Handle(), &list);
  EXPECT_GE((list.bottom - list.top) * 1440, 1800 * Dpi(main));
  // The headers can be read.
  const HWND header = ListView_GetHeader(main.ListView1.Handle());
  const HDC screen = ::GetDC(header);
  const HGDIOBJ before =
      ::SelectObject(screen, reinterpret_cast<HFONT>(::SendMessageW(header, WM_GETFONT, 0, 0)));
  for (int column = 0; const wchar_t* text : {L"Name & Location", L"Size", L"Folder Mask", L"Sub Folders"}) {
    SIZE size{};
    ::GetTextExtentPoint32W(screen, text, ::lstrlenW(text), &size);
    EXPECT_GT(main.ListView1.ColumnWidth(column), size.cx) << FromWide(text);
    ++column;
  }
  ::SelectObject(screen, before);
  ::ReleaseDC(header, screen);
  TakePicture(Window(WindowOf(main)), "smallest");
}

TEST_F(BarsTest, HaveTheUsersVisualStyleWhereTheSettingWantsIt) {
  ExpectThemed(Open(), true);
}

TEST_F(BarsTest, HaveNoVisualStyleWhereTheSettingDoesNotWantIt) {
  SettingsRecord settings;
  settings.ToolBars = 0;
  Put(settings, {.Width = 12000, .Height = 6000, .Left = 0, .Top = 0});
  ExpectThemed(Open(), false);
}

TEST_F(BarsTest, TakeTheVisualStyleOffAndGetItBack) {
  frmMain& main = Open();
  main.DockStudio1.SetVisualStyle(kVisualStyleOff);
  ExpectThemed(main, false);
  main.DockStudio1.SetVisualStyle(kVisualStyleThemed);
  ExpectThemed(main, true);
}

// Held against the shell's own icons and ours, on the screen and not in the picture list alone.
TEST_F(BarsTest, RowsShowTheIconsOfTheirTypes) {
  fake_.files.AddFolder("C:\\papers");
  fake_.files.AddFile("C:\\paper.txt", "a paper");
  fake_.files.AddFile("C:\\program.exe", "a program");
  fake_.files.AddFile("C:\\no type", "a file");
  fake_.files.AddFolder("C:\\Zeroquill\\Jobs");
  fake_.files.AddFile("C:\\Zeroquill\\Jobs\\Papers.zqj",
                      "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"C:\\papers\"\r\n\"*.*\"\r\n\"Yes\"\r\n\"[FILES]\"\r\n"
                      "\"C:\\paper.txt\"\r\n\"C:\\program.exe\"\r\n\"C:\\no type\"\r\n");
  fake_.process.commandLine = "\"C:\\Zeroquill\\Jobs\\Papers.zqj\"";
  frmMain& main = Open();
  main.Jobs().Select(0);
  const HWND list = main.ListView1.Handle();
  const int pixels = ::MulDiv(16, Dpi(main), 96);
  const COLORREF ground = ::GetSysColor(COLOR_WINDOW);
  const auto shellIcon = [&](const char* type) {
    SHFILEINFOA info{};
    EXPECT_TRUE(::SHGetFileInfoA(type, FILE_ATTRIBUTE_NORMAL, &info, sizeof info,
                                 SHGFI_ICON | SHGFI_SMALLICON | SHGFI_USEFILEATTRIBUTES));
    const UniqueIcon icon(info.hIcon);
    return DrawListed(icon.Get(), ground, pixels);
  };
  const Picture wanted[] = {DrawListed(LoadResourceIcon("folder", pixels).Get(), ground, pixels),
                            shellIcon(".TXT"), shellIcon(".EXE"),
                            DrawListed(LoadResourceIcon("file", pixels).Get(), ground, pixels)};
  EXPECT_FALSE(wanted[0] == wanted[3]);
  ASSERT_EQ(main.ListView1.RowCount(), 4);
  ::SetForegroundWindow(WindowOf(main));
  for (int row = 0; row < 4; ++row) {
    SCOPED_TRACE(row);
    EXPECT_TRUE(ShowsSomething(wanted[row]));
    RECT place{};
    ASSERT_TRUE(ListView_GetItemRect(list, row, &place, LVIR_ICON));
    place = {place.left, place.top, place.left + pixels, place.top + pixels};
    ::MapWindowPoints(list, HWND_DESKTOP, reinterpret_cast<POINT*>(&place), 2);
    EXPECT_TRUE(WaitFor([&] {
      PumpMessages();
      return GrabScreen(place) == wanted[row];
    })) << "the icon isn't on the screen";
  }
}

TEST_F(BarsTest, QuickWipeBinCannotBeClosedWhileItWipes) {
  Default<frmMain>::SetFactory([this] { return std::make_unique<frmMain>(state_, withRealBoxes_); });
  frmMain& main = Open();
  ::SetForegroundWindow(WindowOf(main));
  state_.QuickBinBusy = true;
  const HMENU file = ::GetSubMenu(::GetMenu(WindowOf(main)), 0);
  const UINT quickWipeBin = ::GetMenuItemID(file, 12);
  const std::vector<ShownBox> shown =
      AnswerBoxes({{"OK", "bin-busy"}}, [&] { ::SendMessageA(WindowOf(main), WM_COMMAND, quickWipeBin, 0); });
  ASSERT_EQ(shown.size(), 1U);
  ExpectShown(shown[0], WindowOf(main), "Operation",
              "An operation is currently being performed.  The QuickWipe Bin cannot be closed.",
              BoxIcon::Warning, {"OK"}, "OK");
  EXPECT_TRUE(state_.QuickBinBusy);
  EXPECT_TRUE(::IsWindowEnabled(WindowOf(main)));
}

}  // namespace
}  // namespace zq::test
