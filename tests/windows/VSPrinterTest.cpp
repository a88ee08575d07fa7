#include <oleacc.h>

#include <algorithm>
#include <future>
#include <thread>

#include "ReportStage.h"
#include "controls/VSPrinter.h"

namespace zq::test {
namespace {

using testing::HasSubstr;
using testing::Not;

// Reads the menu that comes up while the program shows it, and chooses from it by the keyboard.
class MenuUser {
 public:
  explicit MenuUser(std::vector<MSG> keys) : keys_(std::move(keys)) {
    present = this;
    timer_ = ::SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) {
      if (present) present->Look();
    });
  }
  ~MenuUser() {
    ::KillTimer(nullptr, timer_);
    present = nullptr;
  }
  MenuUser(const MenuUser&) = delete;
  MenuUser& operator=(const MenuUser&) = delete;

  std::vector<std::string> items;  // a checked one with a star in front
 private:
  void Look() {
    const HWND popup = ::FindWindowW(L"#32768", nullptr);
    if (!popup || !::IsWindowVisible(popup)) return;
    // What was posted has been taken before the timer comes again.
    if (++looks_ > 100) ::EndMenu();
    if (looks_ > 1) return;
    constexpr UINT kGetMenu = 0x01E1;  // MN_GETHMENU
    const auto menu = reinterpret_cast<HMENU>(::SendMessageW(popup, kGetMenu, 0, 0));
    for (int i = 0; i < ::GetMenuItemCount(menu); ++i) {
      wchar_t text[100] = L"";
      ::GetMenuStringW(menu, static_cast<UINT>(i), text, static_cast<int>(std::size(text)), MF_BYPOSITION);
      const UINT state = ::GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION);
      items.push_back(((state & MF_CHECKED) != 0 ? "*" : "") + FromWide(text));
    }
    TakePicture(Window(popup), "report-zoom-menu", When::AtOnce);
    for (const MSG& key : keys_) ::PostMessageW(::GetFocus(), key.message, key.wParam, 0);
  }
  static inline MenuUser* present = nullptr;
  const std::vector<MSG> keys_;
  int looks_ = 0;
  UINT_PTR timer_ = 0;
};

class VSPrinterTest : public ReportStage {
 protected:
  VSPrinter& Show(const ReportData& report) {
    WriteReport(report);
    frmPrintReport& form = Default<frmPrintReport>::Touch();
    form.Show();
    // No larger than the screen, as a modal window is.
    RECT work{};
    RECT place{};
    ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    ::GetWindowRect(form.Handle(), &place);
    ::SetWindowPos(form.Handle(), nullptr, 0, 0, std::min(place.right - place.left, work.right),
                   std::min(place.bottom - place.top, work.bottom), SWP_NOZORDER);
    ::UpdateWindow(form.VS1.Preview().Handle());
    return form.VS1;
  }
  static void Take(const std::string& name) {
    ::UpdateWindow(Default<frmPrintReport>::Touch().Handle());
    TakePicture(Window(Default<frmPrintReport>::Touch().Handle()), name);
  }
  static std::string PageShown(VSPrinter& printer) {
    return printer.Bar().Text(kBarPage) + " " + printer.Bar().Text(kBarPageCount);
  }
};

TEST_F(VSPrinterTest, OpensAtHundredPerCentOnTheFirstPage) {
  VSPrinter& printer = Show(Example());
  EXPECT_EQ(printer.Zoom(), 100);
  EXPECT_EQ(printer.Bar().Text(kBarZoom), "&Zoom: 100%");
  EXPECT_EQ(PageShown(printer), "1 of 1");
  EXPECT_EQ(::GetFocus(), printer.Preview().Handle());
  for (const PreviewBarId id : {kBarFirst, kBarPrevious, kBarNext, kBarLast})
    EXPECT_FALSE(::IsWindowEnabled(printer.Bar().Item(id))) << id;
  Take("report-100");
}

// Text of one row stands on one line, by the middle of what holds it.
TEST_F(VSPrinterTest, BoxesOfTheBarAreAsHighAsTheirText) {
  VSPrinter& printer = Show(Example());
  for (const PreviewBarId id : {kBarPage, kBarFind}) {
    const HWND box = printer.Bar().Item(id);
    RECT text{};
    RECT client{};
    ::SendMessageW(box, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&text));
    ::GetClientRect(box, &client);
    const HDC dc = ::GetDC(box);
    const HGDIOBJ before = ::SelectObject(dc, reinterpret_cast<HFONT>(::SendMessageW(box, WM_GETFONT, 0, 0)));
    TEXTMETRICW metrics{};
    ::GetTextMetricsW(dc, &metrics);
    ::SelectObject(dc, before);
    ::ReleaseDC(box, dc);
    const LONG above = text.top;
    const LONG below = client.bottom - text.top - metrics.tmHeight;
    EXPECT_GE(below, 0) << id << ": the text is cut off";
    EXPECT_LE(below - above, 4) << id << ": the text stands too high";
  }
}

TEST_F(VSPrinterTest, ButtonsGoThroughThePages) {
  VSPrinter& printer = Show(Long(400));
  const std::string count = printer.Bar().Text(kBarPageCount);
  const int pages = printer.Preview().PageCount();
  ASSERT_GT(pages, 4);
  PressBar(printer, kBarNext);
  EXPECT_EQ(PageShown(printer), "2 " + count);
  PressBar(printer, kBarNext);
  PressBar(printer, kBarPrevious);
  EXPECT_EQ(PageShown(printer), "2 " + count);
  PressBar(printer, kBarLast);
  EXPECT_EQ(PageShown(printer), std::to_string(pages) + " " + count);
  EXPECT_FALSE(::IsWindowEnabled(printer.Bar().Item(kBarNext)));
  PressBar(printer, kBarFirst);
  EXPECT_EQ(PageShown(printer), "1 " + count);
  EXPECT_FALSE(::IsWindowEnabled(printer.Bar().Item(kBarFirst)));
}

TEST_F(VSPrinterTest, PageBoxGoesToThePageThatIsTyped) {
  VSPrinter& printer = Show(Long(400));
  const HWND box = printer.Bar().Item(kBarPage);
  const auto type = [&](const char* text) {
    ::SetWindowTextA(box, text);
    EXPECT_TRUE(Translate(printer, box, VK_RETURN));
    return printer.Bar().Text(kBarPage);
  };
  EXPECT_EQ(type("3"), "3");
  EXPECT_EQ(printer.Preview().Page(), 2);
  EXPECT_EQ(type("0"), "1");
  EXPECT_EQ(type("999999"), std::to_string(printer.Preview().PageCount()));
  EXPECT_EQ(type(""), "1");
}

TEST_F(VSPrinterTest, KeysScroll) {
  VSPrinter& printer = Show(Long(400));
  Key(printer, VK_END);
  EXPECT_EQ(printer.Preview().Page(), printer.Preview().PageCount() - 1);
  Key(printer, VK_HOME);
  EXPECT_EQ(printer.Preview().Page(), 0);
  for (int i = 0; i < 3; ++i) Key(printer, VK_NEXT);
  EXPECT_GE(printer.Preview().Page(), 1);
  for (int i = 0; i < 3; ++i) Key(printer, VK_PRIOR);
  EXPECT_EQ(printer.Preview().Page(), 0);
  {
    const HeldKey control(VK_CONTROL);
    Key(printer, VK_NEXT);
    EXPECT_EQ(printer.Preview().Page(), 1);
    Key(printer, VK_PRIOR);
    EXPECT_EQ(printer.Preview().Page(), 0);
  }
}

TEST_F(VSPrinterTest, WheelScrollsAndWithControlZooms) {
  VSPrinter& printer = Show(Long(400));
  const auto wheel = [&](int delta, WORD keys) {
    ::SendMessageW(printer.Preview().Handle(), WM_MOUSEWHEEL, MAKEWPARAM(keys, static_cast<WORD>(delta)), 0);
  };
  for (int i = 0; i < 30; ++i) wheel(-120, 0);
  EXPECT_GE(printer.Preview().Page(), 1);
  wheel(120, MK_CONTROL);
  EXPECT_EQ(printer.Zoom(), 125);
  wheel(-60, MK_CONTROL);
  EXPECT_EQ(printer.Zoom(), 125) << "half a notch of a fine wheel";
  wheel(-60, MK_CONTROL);
  EXPECT_EQ(printer.Zoom(), 100);
}

TEST_F(VSPrinterTest, ControlKeysZoom) {
  VSPrinter& printer = Show(Example());
  const HeldKey control(VK_CONTROL);
  const HWND view = printer.Preview().Handle();
  EXPECT_TRUE(Translate(printer, view, VK_OEM_PLUS));
  EXPECT_EQ(printer.Zoom(), 125);
  EXPECT_TRUE(Translate(printer, view, VK_SUBTRACT));
  EXPECT_TRUE(Translate(printer, view, VK_OEM_MINUS));
  EXPECT_EQ(printer.Zoom(), 75);
  EXPECT_TRUE(Translate(printer, view, '0'));
  EXPECT_EQ(printer.Zoom(), 100);
}

TEST_F(VSPrinterTest, ShowsEachZoom) {
  VSPrinter& printer = Show(Long(700));
  const struct {
    ZoomMode mode;
    double percent;
    const char* name;
  } kZooms[] = {{ZoomMode::WholePage, 0, "report-whole-page"}, {ZoomMode::PageWidth, 0, "report-page-width"},
                {ZoomMode::TwoPages, 0, "report-two-pages"},   {ZoomMode::Thumbnail, 0, "report-thumbnail"},
                {ZoomMode::Percent, 50, "report-50"},          {ZoomMode::Percent, 200, "report-200"}};
  for (const auto& zoom : kZooms) {
    printer.Preview().SetZoom(zoom.mode, zoom.percent);
    printer.Preview().GoToPage(0);
    Take(zoom.name);
    if (zoom.mode == ZoomMode::Percent) {
      EXPECT_EQ(printer.Zoom(), zoom.percent);
    }
    EXPECT_EQ(printer.Preview().Mode(), zoom.mode);
  }
}

// Two pages side by side count as one place; where all are seen there is nowhere to go.
TEST_F(VSPrinterTest, ButtonsAreEnabledAsFarAsThereIsAPageToGoTo) {
  VSPrinter& printer = Show(Long(700));
  const auto enabled = [&](PreviewBarId id) { return ::IsWindowEnabled(printer.Bar().Item(id)) != FALSE; };
  printer.Preview().SetZoom(ZoomMode::Thumbnail);
  EXPECT_EQ(printer.Bar().Text(kBarPage), "1");
  for (const PreviewBarId id : {kBarFirst, kBarPrevious, kBarNext, kBarLast}) EXPECT_FALSE(enabled(id)) << id;

  printer.Preview().SetZoom(ZoomMode::TwoPages);
  EXPECT_TRUE(enabled(kBarNext));
  PressBar(printer, kBarNext);
  EXPECT_EQ(printer.Bar().Text(kBarPage), "3");
  EXPECT_TRUE(enabled(kBarFirst));
  PressBar(printer, kBarLast);
  EXPECT_FALSE(enabled(kBarNext));
  EXPECT_FALSE(enabled(kBarLast));
  EXPECT_TRUE(enabled(kBarPrevious));
}

TEST_F(VSPrinterTest, ZoomListGivesItsChoices) {
  VSPrinter& printer = Show(Long(700));
  const auto choose = [&](std::vector<std::pair<UINT, WPARAM>> keys) {
    std::vector<MSG> messages;
    for (const auto& [message, key] : keys) messages.push_back({nullptr, message, key, 0, 0, {}});
    MenuUser user(messages);
    PressBar(printer, kBarZoom);
    return user.items;
  };
  EXPECT_THAT(choose({{WM_CHAR, 'w'}}),
              testing::ElementsAre("Whole &Page", "Page &Width", "&Two Pages", "Thumb&nail", "", "10%", "25%",
                                   "50%", "75%", "*100%", "125%", "150%", "200%", "300%", "400%", "500%"));
  EXPECT_EQ(printer.Preview().Mode(), ZoomMode::PageWidth);
  EXPECT_EQ(choose({{WM_CHAR, 'n'}}).at(1), "*Page &Width");
  EXPECT_EQ(printer.Preview().Mode(), ZoomMode::Thumbnail);
  choose({{WM_KEYDOWN, VK_UP}, {WM_KEYDOWN, VK_RETURN}});
  EXPECT_EQ(printer.Preview().Mode(), ZoomMode::Percent);
  EXPECT_EQ(printer.Zoom(), 500);
  choose({{WM_KEYDOWN, VK_ESCAPE}});
  EXPECT_EQ(printer.Zoom(), 500);
}

TEST_F(VSPrinterTest, ZoomKeepsThePlace) {
  VSPrinter& printer = Show(Long(700));
  printer.Preview().GoToPage(5);
  for (const double percent : {200.0, 50.0, 400.0, 100.0}) {
    printer.SetZoom(percent);
    EXPECT_EQ(printer.Preview().Page(), 5) << percent;
  }
}

TEST_F(VSPrinterTest, FindsTextAndBringsItIntoView) {
  VSPrinter& printer = Show(Long(3000));
  const HWND box = printer.Bar().Item(kBarFind);
  {
    const HeldKey control(VK_CONTROL);
    EXPECT_TRUE(Translate(printer, printer.Preview().Handle(), 'F'));
  }
  EXPECT_EQ(::GetFocus(), box);
  ::SetWindowTextA(box, "LETTER 2500.doc");
  EXPECT_TRUE(Translate(printer, box, VK_RETURN));
  const TextRange found = printer.Preview().Selection();
  EXPECT_EQ(printer.Content().text.substr(found.begin, found.end - found.begin), "letter 2500.doc");
  EXPECT_EQ(static_cast<std::size_t>(printer.Preview().Page()),
            PageOfLine(printer.Layout(), LineAt(printer.Layout(), found.begin)));
  Take("report-found");

  ::SetWindowTextA(box, "nowhere in it");
  EXPECT_TRUE(Translate(printer, box, VK_F3));
  EXPECT_EQ(printer.Bar().Text(kBarFound), "Not found");
  EXPECT_EQ(printer.Preview().Selection(), found);
  ::SetWindowTextA(box, "letter 1");
  EXPECT_EQ(printer.Bar().Text(kBarFound), "") << "the answer goes with the question";
  EXPECT_TRUE(Translate(printer, box, VK_ESCAPE));
  EXPECT_EQ(::GetFocus(), printer.Preview().Handle());
}

TEST_F(VSPrinterTest, FindGoesBothWays) {
  VSPrinter& printer = Show(Long(100));
  ::SetWindowTextA(printer.Bar().Item(kBarFind), "letter 1");
  const auto press = [&](PreviewBarId id) {
    PressBar(printer, id);
    return printer.Preview().Selection().begin;
  };
  const std::size_t first = press(kBarFindNext);
  const std::size_t second = press(kBarFindNext);
  const std::size_t third = press(kBarFindNext);
  EXPECT_LT(first, second);
  EXPECT_LT(second, third);
  EXPECT_EQ(press(kBarFindPrevious), second);
  EXPECT_EQ(press(kBarFindPrevious), first);
}

std::wstring ClipboardText() {
  std::wstring text;
  if (!::OpenClipboard(nullptr)) return text;
  const HANDLE memory = ::GetClipboardData(CF_UNICODETEXT);
  if (const auto* content = memory ? static_cast<const wchar_t*>(::GlobalLock(memory)) : nullptr) {
    text = content;
    ::GlobalUnlock(memory);
  }
  ::CloseClipboard();
  return text;
}

TEST_F(VSPrinterTest, CopiesAllOfItsText) {
  VSPrinter& printer = Show(Example());
  const HeldKey control(VK_CONTROL);
  Key(printer, 'A');
  Key(printer, 'C');
  EXPECT_EQ(ClipboardText(), ToWide(TextToCopy(printer.Content(), {0, printer.Content().text.size()})));
}

// Another program that has opened the clipboard, and keeps it until it is told to let go.
class ClipboardHolder {
 public:
  ClipboardHolder()
      : thread_([this] {
          const HWND window =
              ::CreateWindowExW(0, L"Static", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
          held_.set_value(::OpenClipboard(window) != FALSE);
          letGo_.get_future().wait();
          ::CloseClipboard();
          ::DestroyWindow(window);
        }) {
    EXPECT_TRUE(held_.get_future().get());
  }
  ~ClipboardHolder() { LetGo(); }
  ClipboardHolder(const ClipboardHolder&) = delete;
  ClipboardHolder& operator=(const ClipboardHolder&) = delete;

  void LetGo() {
    if (!thread_.joinable()) return;
    letGo_.set_value();
    thread_.join();
  }

 private:
  std::promise<bool> held_;
  std::promise<void> letGo_;
  std::thread thread_;
};

TEST_F(VSPrinterTest, CopyWaitsForAClipboardThatIsInUse) {
  VSPrinter& printer = Show(Example());
  const HeldKey control(VK_CONTROL);
  Key(printer, 'A');
  ClipboardHolder holder;
  int pauses = 0;
  printer.Preview().Pause = [&] {
    if (++pauses == 3) holder.LetGo();
  };
  Key(printer, 'C');
  EXPECT_EQ(pauses, 3);
  EXPECT_EQ(ClipboardText(), ToWide(TextToCopy(printer.Content(), {0, printer.Content().text.size()})));
  EXPECT_TRUE(fake.boxes.shown.empty());
}

TEST_F(VSPrinterTest, CopyThatWaitsInVainSaysSo) {
  VSPrinter& printer = Show(Example());
  const HeldKey control(VK_CONTROL);
  Key(printer, 'A');
  const ClipboardHolder holder;
  int pauses = 0;
  printer.Preview().Pause = [&] { ++pauses; };
  fake.boxes.answers = {MessageAnswer::Ok};
  Key(printer, 'C');
  EXPECT_EQ(pauses, 49);
  ASSERT_EQ(fake.boxes.shown.size(), 1U);
  EXPECT_EQ(fake.boxes.shown[0].title, "Copy");
  EXPECT_THAT(fake.boxes.shown[0].text, testing::HasSubstr("another program is using the clipboard"));
}

TEST_F(VSPrinterTest, MouseSelectsText) {
  VSPrinter& printer = Show(Example());
  const HWND view = printer.Preview().Handle();
  // From the left of the title's line to the right of it.
  const LaidLine* title = nullptr;
  for (const LaidLine& line : printer.Layout().lines) {
    if (!title && line.end > line.begin) title = &line;
  }
  ASSERT_NE(title, nullptr);
  RECT client{};
  ::GetClientRect(view, &client);
  const int dpi = static_cast<int>(::GetDpiForWindow(view));
  const int y = 16 * dpi / 96 + (title->top + title->height / 2) * dpi / 1440;
  ::SendMessageW(view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, y));
  ::SendMessageW(view, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(client.right - 2, y));
  ::SendMessageW(view, WM_LBUTTONUP, 0, MAKELPARAM(client.right - 2, y));
  EXPECT_EQ(printer.Preview().Selection(), (TextRange{title->begin, title->end}));
  Take("report-selected");
}

TEST_F(VSPrinterTest, TabGoesToThePagesAndThroughTheBar) {
  Show(Long(400));
  frmPrintReport& form = Default<frmPrintReport>::Touch();
  const std::vector<int> order = TabOrder(form);
  // At the first page, First and Previous are disabled.
  EXPECT_THAT(order, testing::ElementsAre(100, kBarPrint, kBarPage, kBarNext, kBarLast, kBarZoom, kBarFind,
                                          kBarFindNext, kBarFindPrevious));
}

TEST_F(VSPrinterTest, LabelsFitTheirTexts) {
  VSPrinter& printer = Show(Example());
  printer.Bar().ShowPage(1000, 1000);
  printer.Bar().ShowFound("Not found");
  const HFONT font = reinterpret_cast<HFONT>(::SendMessageW(printer.Bar().Item(kBarPrint), WM_GETFONT, 0, 0));
  const HDC context = ::GetDC(printer.Handle());
  const HGDIOBJ before = ::SelectObject(context, font);
  for (int id = kBarPrint; id <= kBarFound; ++id) {
    const auto item = static_cast<PreviewBarId>(id);
    if (id == kBarFind || (id >= kBarFirst && id <= kBarPrevious) || id == kBarNext || id == kBarLast)
      continue;
    const std::wstring text = ToWide(WithoutAccessKey(printer.Bar().Text(item)));
    SIZE size{};
    ::GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
    RECT client{};
    ::GetClientRect(printer.Bar().Item(item), &client);
    EXPECT_LE(size.cx, client.right) << id;
    EXPECT_LE(size.cy, client.bottom) << id;
  }
  ::SelectObject(context, before);
  ::ReleaseDC(printer.Handle(), context);
}

// As a screen reader asks for what has the focus.
ComPointer<IAccessible> AskFor(HWND window) {
  void* object = nullptr;
  EXPECT_EQ(::AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible, &object),
            S_OK);
  return ComPointer<IAccessible>(static_cast<IAccessible*>(object));
}

VARIANT Self() {
  VARIANT self{};
  self.vt = VT_I4;
  self.lVal = CHILDID_SELF;
  return self;
}

std::string Taken(BSTR text) {
  const std::string taken = text ? FromWide(text) : "";
  ::SysFreeString(text);
  return taken;
}

TEST_F(VSPrinterTest, PagesAreADocumentToAScreenReaderThatReadsTheOneInView) {
  VSPrinter& printer = Show(Long(200));
  const ComPointer<IAccessible> pages = AskFor(printer.Preview().Handle());
  ASSERT_TRUE(pages);
  BSTR text = nullptr;
  ASSERT_EQ(pages->get_accName(Self(), &text), S_OK);
  EXPECT_EQ(Taken(text), "Report pages");
  VARIANT role{};
  ASSERT_EQ(pages->get_accRole(Self(), &role), S_OK);
  EXPECT_EQ(role.lVal, ROLE_SYSTEM_DOCUMENT);
  VARIANT states{};
  ASSERT_EQ(pages->get_accState(Self(), &states), S_OK);
  EXPECT_NE(states.lVal & STATE_SYSTEM_READONLY, 0);

  const auto value = [&] {
    BSTR shown = nullptr;
    EXPECT_EQ(pages->get_accValue(Self(), &shown), S_OK);
    return Taken(shown);
  };
  const std::string first = value();
  EXPECT_THAT(first, HasSubstr("Weekly papers"));
  EXPECT_THAT(first, HasSubstr("letter 1.doc"));
  EXPECT_THAT(first, Not(HasSubstr("letter 200.doc")));
  PressBar(printer, kBarLast);
  EXPECT_THAT(value(), HasSubstr("letter 200.doc"));
  EXPECT_THAT(value(), Not(HasSubstr("Weekly papers")));

  Default<frmPrintReport>::Touch().Unload();
  Form::DestroyClosed();
  BSTR gone = nullptr;
  EXPECT_NE(pages->get_accValue(Self(), &gone), S_OK) << "the window is gone, and its text with it";
  EXPECT_EQ(gone, nullptr);
}

// What isn't seen is not even measured.
TEST_F(VSPrinterTest, DrawsOnlyWhatIsSeen) {
  class Counting final : public TextMeasure {
   public:
    LineMetrics Metrics(const FontChoice& font) override { return measure_.Metrics(font); }
    void Edges(const FontChoice& font, std::string_view text, std::vector<Twips>& edges) override {
      bytes += text.size();
      measure_.Edges(font, text, edges);
    }
    std::size_t bytes = 0;

   private:
    GdiTextMeasure measure_;
  };
  VSPrinter& printer = Show(Long(2000));
  const PageLayout& layout = printer.Layout();
  Counting counting;
  PreviewWindow preview;
  preview.Create(Default<frmPrintReport>::Touch().Handle(), 1);
  ::SetWindowPos(preview.Handle(), HWND_TOP, 0, 0, 600, 200, 0);
  preview.ShowDocument(printer.Content(), layout, counting);
  preview.GoToPage(20);
  counting.bytes = 0;
  ::RedrawWindow(preview.Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  const LaidPage& page = layout.pages[20];
  const std::size_t pageBytes = layout.lines[page.endLine - 1].end - layout.lines[page.firstLine].begin;
  EXPECT_GT(counting.bytes, 0U);
  EXPECT_LT(counting.bytes, pageBytes / 2) << "a small part of the page is in the view";
}

TEST_F(VSPrinterTest, ReportOfThirtyThousandLinesOpensAndScrolls) {
  const DWORD start = ::GetTickCount();
  VSPrinter& printer = Show(Long(30000));
  const DWORD opened = ::GetTickCount();
  EXPECT_EQ(printer.Layout().lines.size(), printer.Content().blocks.size()) << "each path fits its line";
  for (int i = 0; i < 50; ++i) {
    printer.Preview().GoToPage(printer.Preview().PageCount() * i / 50);
    ::UpdateWindow(printer.Preview().Handle());
  }
  const DWORD scrolled = ::GetTickCount();
  std::printf("open %lu ms, a page %lu ms\n", opened - start, (scrolled - opened) / 50);
  RecordProperty("open_ms", static_cast<int>(opened - start));
  RecordProperty("page_ms", static_cast<int>((scrolled - opened) / 50));
  EXPECT_EQ(printer.Preview().Page(), printer.Preview().PageCount() * 49 / 50);
}

}  // namespace
}  // namespace zq::test
