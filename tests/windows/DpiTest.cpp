// A window that comes to a monitor of another resolution, as the system tells it: all in it follows, and on
// the way back it is as it was.
#include <gmock/gmock.h>

#include <cstdlib>
#include <ostream>

#include "Driving.h"
#include "MainFormTest.h"
#include "ancillary/frmAbout.h"
#include "ancillary/frmOpen.h"
#include "ancillary/frmWelcome.h"
#include "jobs/frmEdit.h"
#include "jobs/frmFolder.h"
#include "jobs/frmNew.h"
#include "jobs/frmOpenJob.h"
#include "jobs/frmSave.h"
#include "support/driver/Picture.h"
#include "wipe/frmStatus.h"

namespace zq::test {
namespace {

using testing::ElementsAreArray;

// A window in a form: where it lies, and how high the letters of its font are.
struct Laid {
  std::string what;
  RECT place;
  LONG fontHeight;

  bool operator==(const Laid& other) const {
    return what == other.what && ::EqualRect(&place, &other.place) && fontHeight == other.fontHeight;
  }
  friend std::ostream& operator<<(std::ostream& out, const Laid& laid) {
    return out << laid.what << ' ' << laid.place.left << ' ' << laid.place.top << ' ' << laid.place.right
               << ' ' << laid.place.bottom << ", font " << laid.fontHeight;
  }
};

LOGFONTW FontOf(HWND window) {
  LOGFONTW font{};
  const auto handle = reinterpret_cast<HFONT>(::SendMessageW(window, WM_GETFONT, 0, 0));
  if (handle) ::GetObjectW(handle, sizeof font, &font);
  return font;
}

// All that is in the form, by its places on the form's client area.
std::vector<Laid> LayoutOf(Form& form) {
  std::pair<HWND, std::vector<Laid>> search{form.Handle(), {}};
  ::EnumChildWindows(
      form.Handle(),
      [](HWND window, LPARAM param) -> BOOL {
        auto& [parent, all] = *reinterpret_cast<std::pair<HWND, std::vector<Laid>>*>(param);
        wchar_t name[64] = L"";
        ::GetClassNameW(window, name, static_cast<int>(std::size(name)));
        Laid laid{std::to_string(::GetDlgCtrlID(window)), {}, FontOf(window).lfHeight};
        for (const wchar_t* c = name; *c; ++c) laid.what += static_cast<char>(*c);
        ::GetWindowRect(window, &laid.place);
        ::MapWindowPoints(HWND_DESKTOP, parent, reinterpret_cast<POINT*>(&laid.place), 2);
        all.push_back(laid);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.second;
}

SIZE ClientOf(Form& form) {
  RECT client{};
  ::GetClientRect(form.Handle(), &client);
  return {client.right, client.bottom};
}

// As the system does it: the question for the size, and the change with the place that came of it.
void ComeTo(Form& form, int dpi) {
  RECT place{};
  ::GetWindowRect(form.Handle(), &place);
  SIZE size{::MulDiv(place.right - place.left, dpi, form.Dpi()),
            ::MulDiv(place.bottom - place.top, dpi, form.Dpi())};
  ::SendMessageW(form.Handle(), WM_GETDPISCALEDSIZE, static_cast<WPARAM>(dpi),
                 reinterpret_cast<LPARAM>(&size));
  const RECT suggested{place.left, place.top, place.left + size.cx, place.top + size.cy};
  ::SendMessageW(form.Handle(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
  PumpMessages();
  EXPECT_EQ(form.Dpi(), dpi);
}

class DpiTest : public MainFormTest {
 protected:
  static int OtherDpi(Form& form) { return form.Dpi() == 96 ? 144 : 96; }

  static std::string PictureName(const std::string& form, int from, int to) {
    return "dpi-" + form + "-" + std::to_string(from) + "-" + std::to_string(to);
  }

  // The dialog there and back.
  static void ExpectFollows(Form& form, const std::string& name) {
    form.Show();
    PumpMessages();
    const int dpi = form.Dpi();
    const int other = OtherDpi(form);
    const std::vector<Laid> before = LayoutOf(form);
    const SIZE client = ClientOf(form);
    RECT window{};
    ::GetWindowRect(form.Handle(), &window);
    EXPECT_FALSE(before.empty()) << name;

    ComeTo(form, other);
    TakePicture(Window(form.Handle()), PictureName(name, dpi, other));
    const std::vector<Laid> after = LayoutOf(form);
    ASSERT_EQ(after.size(), before.size()) << name;
    for (std::size_t i = 0; i < before.size(); ++i) {
      ExpectScaled(before[i].place, after[i].place, dpi, other, name + " " + before[i].what);
      EXPECT_EQ(after[i].fontHeight, ::MulDiv(before[i].fontHeight, other, dpi)) << name << before[i].what;
    }
    ExpectNothingCut(form, name);
    const SIZE grown = ClientOf(form);
    ExpectScaled({0, 0, client.cx, client.cy}, {0, 0, grown.cx, grown.cy}, dpi, other, name);

    ComeTo(form, dpi);
    EXPECT_THAT(LayoutOf(form), ElementsAreArray(before)) << name;
    RECT back{};
    ::GetWindowRect(form.Handle(), &back);
    EXPECT_TRUE(::EqualRect(&back, &window)) << name;
  }

  // Letters don't grow quite as resolutions do, and dialogs go by their letters.
  static void ExpectScaled(const RECT& before, const RECT& after, int dpi, int other,
                           const std::string& what) {
    const auto expect = [&](LONG from, LONG to) {
      const int wanted = ::MulDiv(static_cast<int>(from), other, dpi);
      EXPECT_NEAR(wanted, to, 2 + wanted / 8) << what;
    };
    expect(before.right - before.left, after.right - after.left);
    expect(before.bottom - before.top, after.bottom - after.top);
    expect(before.left, after.left);
    expect(before.top, after.top);
  }

  // Every text has the room that it needs in the new font.
  static void ExpectNothingCut(Form& form, const std::string& name) {
    for (HWND child = ::GetWindow(form.Handle(), GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT)) {
      wchar_t className[32] = L"";
      ::GetClassNameW(child, className, static_cast<int>(std::size(className)));
      wchar_t text[600] = L"";
      ::GetWindowTextW(child, text, static_cast<int>(std::size(text)));
      if (::lstrcmpiW(className, L"Static") != 0 || !text[0] || !::IsWindowVisible(child)) continue;
      RECT room{};
      ::GetClientRect(child, &room);
      RECT needed{0, 0, room.right, 0};
      const HDC context = ::GetDC(child);
      const HGDIOBJ font =
          ::SelectObject(context, reinterpret_cast<HFONT>(::SendMessageW(child, WM_GETFONT, 0, 0)));
      ::DrawTextW(context, text, -1, &needed, DT_CALCRECT | DT_WORDBREAK | DT_EXPANDTABS);
      ::SelectObject(context, font);
      ::ReleaseDC(child, context);
      // The room below the last letters' baseline may be a pixel short.
      EXPECT_LE(needed.bottom, room.bottom + 1) << name << ": " << ::GetDlgCtrlID(child);
      EXPECT_LE(needed.right, room.right) << name << ": " << ::GetDlgCtrlID(child);
    }
  }

  // The arrangement of the bands is kept in pixels of 96 dpi, so that they may come back a little beside.
  static void ExpectSame(std::vector<Laid> now, const std::vector<Laid>& before) {
    ASSERT_EQ(now.size(), before.size());
    for (std::size_t i = 0; i < now.size(); ++i) {
      const RECT& wanted = before[i].place;
      RECT& place = now[i].place;
      if (now[i].what.ends_with("ToolbarWindow32") && std::abs(place.left - wanted.left) <= 2 &&
          std::abs(place.right - wanted.right) <= 2) {
        place.left = wanted.left;
        place.right = wanted.right;
      }
    }
    EXPECT_THAT(now, ElementsAreArray(before));
  }

  static HIMAGELIST PicturesOf(const ListView& list) {
    return ListView_GetImageList(list.Handle(), LVSIL_SMALL);
  }
  static int PicturePixels(const ListView& list) {
    int width = 0;
    int height = 0;
    ::ImageList_GetIconSize(PicturesOf(list), &width, &height);
    return width;
  }
  static int PictureCount(const ListView& list) { return ::ImageList_GetImageCount(PicturesOf(list)); }
  static int WidthOfIcon(HICON icon) {
    ICONINFO info{};
    BITMAP bitmap{};
    if (!::GetIconInfo(icon, &info)) return 0;
    ::GetObjectW(info.hbmMask, sizeof bitmap, &bitmap);
    ::DeleteObject(info.hbmMask);
    ::DeleteObject(info.hbmColor);
    return static_cast<int>(bitmap.bmWidth);
  }

  template <class FormType>
  void ExpectFollows(std::unique_ptr<FormType> form, const std::string& name) {
    form->Create();
    ExpectFollows(*form, name);
    form->Unload();
  }
};

TEST_F(DpiTest, DialogsFollow) {
  fake_.files.AddFolder("C:\\Zeroquill\\Jobs");
  fake_.files.AddFile("C:\\Zeroquill\\Jobs\\Monthly.zqj", "\"1/2/2026 10:00:00 AM\"\r\n");
  frmMain& main = Open();
  state_.AppFolder = "C:\\Zeroquill\\";
  ExpectFollows(std::make_unique<frmAbout>(), "about");
  ExpectFollows(std::make_unique<frmWelcome>(state_, fake_.platform), "welcome");
  ExpectFollows(std::make_unique<frmNew>(state_), "new");
  ExpectFollows(std::make_unique<frmSave>(state_, fake_.platform), "save");
  ExpectFollows(std::make_unique<frmEdit>(state_, fake_.platform, main.Jobs()), "edit");
  ExpectFollows(std::make_unique<frmStatus>(state_, fake_.platform, main.Driver()), "status");
}

TEST_F(DpiTest, DialogsWithAListOrATreeFollow) {
  fake_.files.AddFolder("C:\\Zeroquill\\Jobs");
  fake_.files.AddFile("C:\\Zeroquill\\Jobs\\Monthly.zqj", "\"1/2/2026 10:00:00 AM\"\r\n");
  frmMain& main = Open();
  state_.AppFolder = "C:\\Zeroquill\\";
  ExpectFollows(std::make_unique<frmFolder>(state_, fake_.platform, main.Jobs()), "folder");

  frmOpenJob form(state_, fake_.platform);
  form.Create();
  const int dpi = form.Dpi();
  const int other = OtherDpi(form);
  ExpectFollows(form, "open-job");
  ComeTo(form, other);
  EXPECT_EQ(PicturePixels(form.ListView1), ::MulDiv(16, other, 96));
  RECT list{};
  ::GetClientRect(form.ListView1.Handle(), &list);
  EXPECT_EQ(form.ListView1.ColumnWidth(0) + form.ListView1.ColumnWidth(1),
            list.right - ::GetSystemMetricsForDpi(SM_CXVSCROLL, static_cast<UINT>(other)));
  ComeTo(form, dpi);
  EXPECT_EQ(PicturePixels(form.ListView1), ::MulDiv(16, dpi, 96));
  form.Unload();
}

// The splash is its picture.
TEST_F(DpiTest, SplashTakesThePictureOfItsResolution) {
  frmOpen splash(fake_.platform, [] {});
  splash.Create();
  splash.Show();
  const int dpi = splash.Dpi();
  const SIZE before = ClientOf(splash);
  ComeTo(splash, OtherDpi(splash));
  const SIZE after = ClientOf(splash);
  EXPECT_NEAR(after.cx, ::MulDiv(before.cx, splash.Dpi(), dpi), 1);
  EXPECT_NEAR(after.cy, ::MulDiv(before.cy, splash.Dpi(), dpi), 1);
  ComeTo(splash, dpi);
  EXPECT_EQ(ClientOf(splash).cx, before.cx);
  EXPECT_EQ(ClientOf(splash).cy, before.cy);
}

TEST_F(DpiTest, BoldTextStaysBold) {
  frmAbout form;
  form.Create();
  const HWND label = Item(form, IDC_frmAbout_Label1);
  ASSERT_EQ(FontOf(label).lfWeight, FW_BOLD);
  const LONG before = FontOf(label).lfHeight;
  const int dpi = form.Dpi();
  ComeTo(form, OtherDpi(form));
  EXPECT_EQ(FontOf(label).lfWeight, FW_BOLD);
  EXPECT_EQ(FontOf(label).lfHeight, ::MulDiv(before, form.Dpi(), dpi));
  form.Unload();
}

TEST_F(DpiTest, MainWindowFollowsWithItsBarsAndItsList) {
  frmMain& main = Open();
  Form& form = main;
  const int dpi = form.Dpi();
  const int other = OtherDpi(form);
  const std::vector<Laid> before = LayoutOf(form);

  for (const int now : {other, dpi, other}) {
    ComeTo(form, now);
    EXPECT_EQ(PicturePixels(main.ListView1), ::MulDiv(16, now, 96));
    for (const HWND bar : Below(main, "ToolbarWindow32")) {
      const auto pictures = reinterpret_cast<HIMAGELIST>(::SendMessageW(bar, TB_GETIMAGELIST, 0, 0));
      int width = 0;
      int height = 0;
      ::ImageList_GetIconSize(pictures, &width, &height);
      EXPECT_EQ(width, ::MulDiv(32, now, 96));
    }
    const LONG letters = FontOf(form.Handle()).lfHeight;
    for (const char* name : {"ToolbarWindow32", "SysListView32", "SysHeader32", "msctls_statusbar32"}) {
      for (const HWND window : Below(main, name)) EXPECT_EQ(FontOf(window).lfHeight, letters) << name;
    }
    for (const WPARAM which : {ICON_SMALL, ICON_BIG}) {
      const int metric = which == ICON_SMALL ? SM_CXSMICON : SM_CXICON;
      EXPECT_EQ(WidthOfIcon(reinterpret_cast<HICON>(::SendMessageW(form.Handle(), WM_GETICON, which, 0))),
                ::GetSystemMetricsForDpi(metric, static_cast<UINT>(now)));
    }
    const RECT area = main.DockStudio1.ClientArea();
    const RECT list = main.ListView1.Place();
    EXPECT_TRUE(::EqualRect(&area, &list)) << "the list fills what the bars leave";
    EXPECT_EQ(main.ListView1.ColumnWidth(0), (list.right - list.left) / 2);
    TakePicture(Window(form.Handle()), PictureName("main", now == dpi ? other : dpi, now));
    if (now == dpi) ExpectSame(LayoutOf(form), before);
  }
}

// The pictures of file types were drawn by the shell, and are drawn anew.
TEST_F(DpiTest, RowsKeepTheirPictures) {
  fake_.files.AddFile("C:\\a.txt", "a");
  fake_.files.AddFile("C:\\b.bmp", "b");
  fake_.process.commandLine = "C:\\a.txt C:\\b.bmp";
  frmMain& main = Open();
  const int pictures = PictureCount(main.ListView1);
  ASSERT_EQ(main.Jobs().Count(), 2u);
  EXPECT_EQ(pictures, 4) << "folder, file, and the two types";
  ComeTo(main, OtherDpi(main));
  EXPECT_EQ(PictureCount(main.ListView1), pictures);
}

// Saved by the system's resolution, whatever the window's: it comes back where it was.
TEST_F(DpiTest, PlaceOnAnotherMonitorIsSavedByTheSystemsResolution) {
  RECT saved{};
  {
    frmMain& main = Open();
    Form& form = main;
    ComeTo(form, OtherDpi(form));
    ::SetWindowPos(form.Handle(), nullptr, 150, 90, 810, 570, SWP_NOZORDER | SWP_NOACTIVATE);
    ::GetWindowRect(form.Handle(), &saved);
    form.Unload();
    Form::DestroyClosed();
  }
  Form& form = Open();
  RECT back{};
  ::GetWindowRect(form.Handle(), &back);
  EXPECT_TRUE(::EqualRect(&back, &saved))
      << back.left << ' ' << back.top << ' ' << back.right << ' ' << back.bottom;
}

}  // namespace
}  // namespace zq::test
