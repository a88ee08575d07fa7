// How the job list looks to the user, pixel by pixel, and what its keys and its tip do.
#include <windows.h>
#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "Driving.h"
#include "Ink.h"
#include "MainFormTest.h"
#include "controls/Pictures.h"
#include "controls/RowColours.h"
#include "jobs/frmEdit.h"
#include "platform/win32/Wide.h"
#include "support/driver/Picture.h"
#include "support/driver/Wait.h"
#include "support/driver/Window.h"

namespace zq::test {
namespace {

std::string LongFolder() {
  std::string folder = "C:\\";
  for (int i = 0; i < 12; ++i) folder += "a folder on the way " + std::to_string(i) + "\\";
  return folder;
}

class ListViewTest : public MainFormTest {
 protected:
  frmMain& OpenWith(const std::vector<std::string>& paths) {
    frmMain& main = Open();
    for (const std::string& path : paths) {
      JobRow row;
      row.NameAndLocation = path;
      row.Size = "12.00 KB";
      main.Jobs().Add(row);
    }
    PumpMessages();
    ::SetForegroundWindow(WindowOf(main));
    main.ListView1.SetFocus();
    Painted(main);
    return main;
  }
  static void Painted(frmMain& main) {
    PumpMessages();
    ::RedrawWindow(WindowOf(main), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  }

  static RECT PartOf(frmMain& main, int row, int part) {
    RECT rect{};
    const HWND list = main.ListView1.Handle();
    ListView_GetItemRect(list, row - 1, &rect, part);
    ::MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
  }
  // A row's text, without the edges, on which grid lines and the focus are drawn.
  static Picture TextOf(frmMain& main, int row) {
    RECT rect = PartOf(main, row, LVIR_LABEL);
    ::InflateRect(&rect, -2, -2);
    return GrabScreen(rect);
  }
  static Picture IconOf(frmMain& main, int row) {
    RECT rect = PartOf(main, row, LVIR_ICON);
    ::InflateRect(&rect, 0, -2);
    return GrabScreen(rect);
  }

  static std::string ItemText(frmMain& main, int row) {
    wchar_t text[1000] = L"";
    LVITEMW item{};
    item.pszText = text;
    item.cchTextMax = 1000;
    ::SendMessageW(main.ListView1.Handle(), LVM_GETITEMTEXTW, static_cast<WPARAM>(row - 1),
                   reinterpret_cast<LPARAM>(&item));
    return FromWide(text);
  }
};

TEST_F(ListViewTest, ACutPathShowsItsNameAndKeepsItsText) {
  frmMain& main = OpenWith({LongFolder() + "first.txt", LongFolder() + "other.doc", "C:\\short.txt"});
  main.Jobs().Select(3);
  Painted(main);
  EXPECT_FALSE(TextOf(main, 1) == TextOf(main, 2)) << "the names alone tell them apart";
  EXPECT_EQ(ItemText(main, 1), LongFolder() + "first.txt");
  TakePicture(Window(WindowOf(main)), "list-cut-paths");
}

TEST_F(ListViewTest, ATipHasTheWholePathWhereItIsCutAlone) {
  const std::string path = LongFolder() + "first.txt";
  frmMain& main = OpenWith({path, "C:\\short.txt"});
  const auto rest = [&](int row) {
    const RECT label = PartOf(main, row, LVIR_LABEL);
    MoveMouseTo({label.left + 20, (label.top + label.bottom) / 2});
  };
  const auto visibleTip = [&] {
    PumpMessages();
    for (Window window : TopLevelWindows([](Window candidate) {
           return candidate.IsVisible() && candidate.ClassName() == TOOLTIPS_CLASSA &&
                  candidate.ProcessId() == ::GetCurrentProcessId();
         })) {
      return window.Handle();
    }
    return HWND{nullptr};
  };
  rest(1);
  HWND shown = nullptr;
  Await("the tip", [&] { return (shown = visibleTip()) != nullptr; });
  std::string text = Window(shown).Text();
  std::erase(text, '\r');
  std::erase(text, '\n');
  EXPECT_EQ(text, path);
  PumpMessages();
  TakePicture(Window(shown), "list-tip");
  rest(2);
  Await("the tip to go", [&] { return visibleTip() == nullptr; });
  EXPECT_FALSE(WaitFor([&] { return visibleTip() != nullptr; }, Limit(1500)));
  MoveMouseTo({0, 0});
}

TEST_F(ListViewTest, AGhostedRowLooksSoInEveryState) {
  frmMain& main = OpenWith({"C:\\live.txt", "C:\\gone.txt"});
  main.Jobs().SetGhosted(2, true);
  main.Jobs().SetSize(2, "0 Bytes");
  struct Case {
    const char* name;
    bool selected, focused;
  };
  for (const Case& state :
       {Case{"plain", false, true}, Case{"chosen", true, true}, Case{"chosen-elsewhere", true, false}}) {
    SCOPED_TRACE(state.name);
    const auto look = [&](int row) {
      main.Jobs().Select(state.selected ? row : 0);
      ::SetFocus(state.focused ? main.ListView1.Handle() : nullptr);
      Painted(main);
      TakePicture(Window(WindowOf(main)), std::string("list-ghosted-") + state.name + std::to_string(row));
      return std::pair(TextOf(main, row), IconOf(main, row));
    };
    const auto live = look(1);
    const auto gone = look(2);
    EXPECT_EQ(GroundOf(live.first), GroundOf(gone.first));
    EXPECT_LT(InkContrast(gone.first), 0.75 * InkContrast(live.first));
    EXPECT_LT(InkContrast(gone.second), 0.75 * InkContrast(live.second)) << "the picture";
  }
}

int redrawings = 0;
LRESULT CALLBACK CountRedrawings(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
  if (message == LVM_REDRAWITEMS) ++redrawings;
  return ::DefSubclassProc(hwnd, message, wParam, lParam);
}

TEST_F(ListViewTest, ARowThatChangesWhileItIsHiddenIsDrawnWhenItIsShownAgain) {
  frmMain& main = OpenWith({"C:\\wiped.txt", "C:\\seen.txt"});
  const Picture before = TextOf(main, 1);
  redrawings = 0;
  ASSERT_TRUE(::SetWindowSubclass(main.ListView1.Handle(), &CountRedrawings, 1, 0));
  main.Hide();
  main.Jobs().SetGhosted(1, true);
  EXPECT_EQ(redrawings, 0);
  main.Show();
  PumpMessages();
  const Picture after = TextOf(main, 1);
  EXPECT_FALSE(after == before);
  EXPECT_LT(InkContrast(after), 0.75 * InkContrast(before));

  const Picture seen = TextOf(main, 2);
  main.Jobs().SetGhosted(2, true);
  PumpMessages();
  EXPECT_EQ(redrawings, 1);
  EXPECT_FALSE(TextOf(main, 2) == seen);
}

TEST_F(ListViewTest, TheChosenRowStandsOutWhileTheFocusIsElsewhere) {
  frmMain& main = OpenWith({"C:\\one.txt", "C:\\two.txt"});
  main.Jobs().Select(1);
  Painted(main);
  EXPECT_EQ(GroundOf(TextOf(main, 1)), ::GetSysColor(COLOR_HIGHLIGHT));
  ::SetFocus(nullptr);
  Painted(main);
  EXPECT_GE(Contrast(GroundOf(TextOf(main, 1)), ::GetSysColor(COLOR_WINDOW)), 3.0);
  EXPECT_GE(InkContrast(TextOf(main, 1)), 4.5);
  EXPECT_EQ(GroundOf(TextOf(main, 2)), ::GetSysColor(COLOR_WINDOW));
}

TEST_F(ListViewTest, AnEmptyListSaysWhatToDoInGrey) {
  frmMain& main = OpenWith({});
  const auto inside = [&] {
    RECT rect{};
    ::GetWindowRect(main.ListView1.Handle(), &rect);
    rect.top += ScaleForDpi(40, static_cast<Form&>(main).Dpi());  // below the header and the first row
    ::InflateRect(&rect, -10, -10);
    return GrabScreen(rect);
  };
  EXPECT_GT(InkContrast(inside()), 2.0);
  EXPECT_LT(InkContrast(inside()), 8.0) << "not as if it were a row";
  TakePicture(Window(WindowOf(main)), "list-empty");
  ::SetWindowPos(WindowOf(main), nullptr, 0, 0, 700, 400, SWP_NOMOVE | SWP_NOZORDER);
  PumpMessages();
  const Picture moved = inside();
  Painted(main);
  EXPECT_TRUE(inside() == moved) << "it moves with the window and leaves nothing behind";

  JobRow row;
  row.NameAndLocation = "C:\\a.txt";
  main.Jobs().Add(row);
  PumpMessages();
  EXPECT_LT(InkContrast(inside()), 1.1) << "gone with the first row";
  main.Jobs().Clear();
  PumpMessages();
  EXPECT_GT(InkContrast(inside()), 2.0);
}

TEST_F(ListViewTest, TheHeaderShowsTheWholeCaptionOfTheFirstColumn) {
  frmMain& main = OpenWith({});
  const HWND header = ListView_GetHeader(main.ListView1.Handle());
  // From the first to the last pixel of a caption.
  const auto width = [&](std::wstring caption) {
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT;
    column.pszText = caption.data();
    ::SendMessageW(main.ListView1.Handle(), LVM_SETCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    Painted(main);
    RECT rect{};
    Header_GetItemRect(header, 0, &rect);
    ::MapWindowPoints(header, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    ::InflateRect(&rect, -3, -3);
    const Picture picture = GrabScreen(rect);
    int first = picture.width;
    int last = 0;
    for (int x = 0; x < picture.width; ++x) {
      for (int y = 0; y < picture.height; ++y) {
        if (Contrast(ColourOf(picture.At(x, y)), GroundOf(picture)) < 3) continue;
        first = std::min(first, x);
        last = std::max(last, x);
      }
    }
    return last - first + 1;
  };
  const int with = width(L"Name & Location");
  EXPECT_GT(with, width(L"Name  Location") + 4);
  EXPECT_NEAR(with, width(L"Name # Location"), 3);
}

TEST_F(ListViewTest, NoScrollBarAcrossIsNeededAtTheDesignSize) {
  std::vector<std::string> paths;
  for (int i = 0; i < 200; ++i) paths.push_back("C:\\file" + std::to_string(i) + ".txt");
  Put({}, {.Width = 10710 + 120, .Height = 6930, .Left = 0, .Top = 0});
  frmMain& main = OpenWith(paths);
  const LONG_PTR style = ::GetWindowLongPtrW(main.ListView1.Handle(), GWL_STYLE);
  EXPECT_TRUE(style & WS_VSCROLL);
  EXPECT_FALSE(style & WS_HSCROLL);
  TakePicture(Window(WindowOf(main)), "list-design-size");
}

TEST_F(ListViewTest, NewRowsAreShownThoughTheFirstIsSelected) {
  std::vector<std::string> paths;
  for (int i = 0; i < 200; ++i) paths.push_back("C:\\file" + std::to_string(i) + ".txt");
  frmMain& main = OpenWith(paths);
  const HWND list = main.ListView1.Handle();
  for (int i = 0; i < 3; ++i) {
    JobRow row;
    row.NameAndLocation = "C:\\new" + std::to_string(i) + ".txt";
    main.Jobs().Add(row);
  }
  main.Jobs().Select(1);
  main.Jobs().Reveal(201);
  PumpMessages();
  EXPECT_EQ(main.ListView1.SelectedRow(), 1);
  EXPECT_GE(ListView_GetTopIndex(list) + ListView_GetCountPerPage(list), 203);
}

TEST_F(ListViewTest, ATypedLetterGoesToTheNextRowWhosePathOrNameBeginsSo) {
  frmMain& main =
      OpenWith({"C:\\data\\README", "C:\\data\\other.txt", "C:\\papers\\report.doc", "D:\\a.txt"});
  main.Jobs().Select(2);
  const auto type = [&](wchar_t letter) {
    ::SendMessageW(main.ListView1.Handle(), WM_CHAR, letter, 1);
    return std::pair(main.ListView1.SelectedRow(), main.Jobs().SelectedRow());
  };
  EXPECT_EQ(type('r'), std::pair(3, 3)) << "behind the row that is chosen";
}

TEST_F(ListViewTest, EnterEditsTheChosenFolderAndNothingElse) {
  Default<frmEdit>::SetFactory(
      [this] { return std::make_unique<frmEdit>(state_, fake_.platform, Default<frmMain>::Touch().Jobs()); });
  frmMain& main = OpenWith({"C:\\file.txt"});
  JobRow folder;
  folder.NameAndLocation = "C:\\Papers";
  folder.FolderMask = "*.*";
  folder.SubFolders = kYes;
  main.Jobs().Add(folder);
  PumpMessages();
  const auto press = [&](LPARAM lParam) {
    bool looked = false;
    bool edited = false;
    Later([&] {  // inside the dialog's loop, or ours
      edited = Default<frmEdit>::IsLoaded();
      if (edited) Default<frmEdit>::Touch().Unload();
      looked = true;
    });
    ::PostMessageW(main.ListView1.Handle(), WM_KEYDOWN, VK_RETURN, lParam);
    Await("a look", [&] {
      PumpMessages();
      return looked;
    });
    return edited;
  };
  main.Jobs().Select(1);
  EXPECT_FALSE(press(0x001C0001)) << "a file";
  main.Jobs().Select(2);
  EXPECT_TRUE(press(0x001C0001));
  EXPECT_FALSE(press(0x401C0001)) << "held down since something else";
}

}  // namespace
}  // namespace zq::test
