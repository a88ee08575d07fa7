// The report on a printer. What comes out is kept with the pictures, and printing_test.sh looks at its pages.
#include <windows.h>
#include <commdlg.h>
#include <dlgs.h>
#include <winspool.h>

#include <functional>
#include <memory>

#include "../ReportStage.h"
#include "PostScriptPrinter.h"
#include "controls/GdiTextMeasure.h"
#include "controls/PagePainter.h"
#include "controls/Printer.h"
#include "platform/win32/UniqueHandle.h"

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr wchar_t kColour[] = L"Test Colour";
constexpr wchar_t kBlackAlone[] = L"Test Black";
constexpr const wchar_t* kPrintingBox = L"Printing...";
constexpr const wchar_t* kPrintDialog = L"Print";

// So many times `what` stands in `text`.
int CountOf(const std::string& text, const std::string& what) {
  int count = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
  return count;
}

int PagesIn(const std::string& postScript) {
  return CountOf(postScript, "\n%%Page: ");
}

std::string TextOfItem(HWND box, int id) {
  wchar_t text[300] = L"";
  ::GetDlgItemTextW(box, id, text, static_cast<int>(std::size(text)));
  return FromWide(text);
}

// Lets a user act on the window of that title once it is there, while the program shows it. The user is gone
// with this object; the window must have come by then.
class User {
 public:
  // `act` is asked again as long as it gives false.
  User(const wchar_t* title, std::function<bool(HWND window)> act) : title_(title), act_(std::move(act)) {
    present = this;
    timer_ = ::SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) {
      if (present) present->Look();
    });
  }
  ~User() {
    ::KillTimer(nullptr, timer_);
    present = nullptr;
    EXPECT_TRUE(done_) << "the window did not come";
  }
  User(const User&) = delete;
  User& operator=(const User&) = delete;

 private:
  void Look() {
    if (acting_ || done_) return;
    const HWND window = ::FindWindowW(nullptr, title_);
    if (!window || !::IsWindowVisible(window)) return;
    acting_ = true;  // it may take messages itself
    done_ = act_(window);
    acting_ = false;
  }
  static inline User* present = nullptr;
  const wchar_t* title_;
  std::function<bool(HWND window)> act_;
  bool acting_ = false;
  bool done_ = false;
  UINT_PTR timer_ = 0;
};

void Click(HWND dialog, int id) {
  ::PostMessageW(::GetDlgItem(dialog, id), BM_CLICK, 0, 0);
}

class Printing : public ReportStage {
 protected:
  void SetUp() override {
    RequireCage();
    ReportStage::SetUp();
    colour_ = std::make_unique<PostScriptPrinter>(kColour, port_, Colours::All);
    black_ = std::make_unique<PostScriptPrinter>(kBlackAlone, port_, Colours::BlackAlone);
    colour_->MakeDefault();
    fake.boxes.answers = {MessageAnswer::Ok};
  }

  VSPrinter& Load(const ReportData& report) {
    WriteReport(report);
    return Default<frmPrintReport>::Touch().VS1;
  }
  VSPrinter& Show(const ReportData& report) {
    VSPrinter& VS1 = Load(report);
    Default<frmPrintReport>::Touch().Show();
    return VS1;
  }

  // On a paper of the system's numbers.
  UniqueDc Open(const wchar_t* printer, short paper = DMPAPER_A4) const {
    DEVMODEW mode{};
    mode.dmSize = sizeof mode;
    mode.dmFields = DM_PAPERSIZE;
    mode.dmPaperSize = paper;
    return UniqueDc(::CreateDCW(L"WINSPOOL", printer, nullptr, &mode));
  }
  PrintOrder Order(const UniqueDc& printer) const {
    PrintOrder order;
    order.printer = printer.Get();
    order.lastPage = 0x7FFFFFFF;
    order.device = kColour;
    order.port = ToWide(port_);
    return order;
  }

  std::string Printed() const { return ReadFileBytes(port_); }
  // Among the pictures, with the text that each page should hold, a form feed behind each.
  void Keep(const std::string& name, const VSPrinter& VS1) const {
    const std::string folder = PicturesFolder();
    if (folder.empty()) return;
    WriteFileBytes(folder + "\\" + name + ".ps", Printed());
    WriteFileBytes(folder + "\\" + name + ".txt", TextOfPages(VS1));
    KeepRichText(name, VS1);
  }
  // The rich text, and what a reader should find in it: look_at_richtext.py says how that is written.
  void KeepRichText(const std::string& name, const VSPrinter& VS1) const {
    const std::string folder = PicturesFolder();
    if (folder.empty()) return;
    WriteFileBytes(folder + "\\" + name + ".rtf", ReadFileBytes(RtfPath()));
    const Document& document = VS1.Content();
    std::string runs;
    ForEachRun(document, 0, document.text.size(),
               [&](std::size_t begin, std::size_t end, const TextStyle& style) {
                 char head[40];
                 std::snprintf(head, sizeof head, "%g\t%d\t#%02x%02x%02x\t",
                               static_cast<double>(style.points), style.bold ? 1 : 0, style.colour & 0xFFU,
                               style.colour >> 8 & 0xFFU, style.colour >> 16 & 0xFFU);
                 runs += head + document.text.substr(begin, end - begin) + '\x1E';
               });
    WriteFileBytes(folder + "\\" + name + ".runs", runs);
  }
  static std::string PicturesFolder() {
    char folder[MAX_PATH] = "";
    ::GetEnvironmentVariableA("ZQ_PICTURES", folder, sizeof folder);
    return folder;
  }
  static std::string TextOfPages(const VSPrinter& VS1) {
    const Document& document = VS1.Content();
    std::string text;
    for (std::size_t page = 0; page < VS1.Layout().pages.size(); ++page) {
      text += document.header.left + " " + std::to_string(page + 1) + "\n";
      const LaidPage& laid = VS1.Layout().pages[page];
      for (std::size_t i = laid.firstLine; i < laid.endLine; ++i) {
        const LaidLine& line = VS1.Layout().lines[i];
        text += document.text.substr(line.begin, line.end - line.begin) + "\n";
      }
      text += "\f";
    }
    return text;
  }

  // A page as the preview draws it, whole, for comparison with what is printed.
  static void KeepScreen(const std::string& name, const VSPrinter& VS1, int page, int dpi) {
    if (PicturesFolder().empty()) return;
    const PageSetup& setup = VS1.Layout().setup;
    Picture picture;
    picture.width = setup.width * dpi / 1440;
    picture.height = setup.height * dpi / 1440;
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const UniqueDc context(::CreateCompatibleDC(nullptr));
    const UniqueBitmap bitmap(::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    ASSERT_TRUE(bitmap);
    const HGDIOBJ before = ::SelectObject(context.Get(), bitmap.Get());
    const RECT paper{0, 0, picture.width, picture.height};
    ::FillRect(context.Get(), &paper, static_cast<HBRUSH>(::GetStockObject(WHITE_BRUSH)));
    PageCanvas canvas;
    canvas.context = context.Get();
    canvas.pixelsPerTwipX = canvas.pixelsPerTwipY = dpi / 1440.0;
    canvas.clip = paper;
    GdiTextMeasure measure;
    PagePainter(VS1.Content(), VS1.Layout(), measure).Draw(page, canvas);
    ::GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    for (int i = 0; i < picture.width * picture.height; ++i) picture.pixels.push_back(pixels[i] & 0xFFFFFF);
    ::SelectObject(context.Get(), before);
    SavePng(picture, PicturesFolder() + "\\" + name + "-screen-" + std::to_string(dpi) + "-" +
                         std::to_string(page + 1) + ".png");
  }

  void ExpectQuietEnd() const {
    EXPECT_THAT(fake.boxes.shown, IsEmpty());
    ExpectWindowsBack();
  }
  static void ExpectWindowsBack() {
    EXPECT_EQ(::FindWindowW(nullptr, kPrintingBox), nullptr);
    EXPECT_TRUE(::IsWindowEnabled(Default<frmPrintReport>::Touch().Handle()));
  }

  const std::string port_ = scratch / "port.ps";
  std::unique_ptr<PostScriptPrinter> colour_;
  std::unique_ptr<PostScriptPrinter> black_;
};

TEST_F(Printing, PaperIsTheDefaultPrinters) {
  const PageSetup setup = PaperOfDefaultPrinter();
  EXPECT_NEAR(setup.width, 11906, 30);
  EXPECT_NEAR(setup.height, 16838, 30);
  EXPECT_EQ(setup.left + 9360, setup.width - setup.right) << "headings keep their width";
}

TEST_F(Printing, PrintsEachPageInColours) {
  VSPrinter& VS1 = Load(Long(150));
  const UniqueDc printer = Open(kColour);
  EXPECT_EQ(VS1.PrintTo(Order(printer)), PrintOutcome::Done);
  ExpectQuietEnd();
  EXPECT_EQ(PagesIn(Printed()), 3);
  EXPECT_EQ(VS1.Preview().PageCount(), 3);
  Keep("a4", VS1);
  for (const int page : {0, 1, 2}) KeepScreen("a4", VS1, page, 96);
  KeepScreen("a4", VS1, 0, 144);
}

// The preview takes on the paper, too.
TEST_F(Printing, PrintsOnLetter) {
  VSPrinter& VS1 = Load(Long(150));
  const UniqueDc printer = Open(kColour, DMPAPER_LETTER);
  EXPECT_EQ(VS1.PrintTo(Order(printer)), PrintOutcome::Done);
  EXPECT_NEAR(VS1.Layout().setup.width, 12240, 30);
  EXPECT_NEAR(VS1.Layout().setup.height, 15840, 30);
  EXPECT_EQ(PagesIn(Printed()), VS1.Preview().PageCount());
  Keep("letter", VS1);
  KeepScreen("letter", VS1, 0, 96);
}

TEST_F(Printing, PrintsEveryScriptAndLongPaths) {
  ReportData report = Example();
  report.files.push_back("C:\\" + std::string(250, 'w') + ".txt");
  report.files.push_back(
      "C:\\many words that go on and on and on and on and on and on and on and on and on and on "
      "and on and on and on and on.txt");
  VSPrinter& VS1 = Load(report);
  const UniqueDc printer = Open(kColour);
  EXPECT_EQ(VS1.PrintTo(Order(printer)), PrintOutcome::Done);
  Keep("scripts", VS1);
  KeepScreen("scripts", VS1, 0, 96);
}

// Not printed: readers of the rich text get each of them back.
TEST_F(Printing, KeepsCharactersOfAllScriptsInTheRichText) {
  ReportData report = Example();
  report.files = LinesOfCharacters();
  const VSPrinter& VS1 = Load(report);
  EXPECT_GT(VS1.Content().text.size(), 25000U);
  KeepRichText("characters", VS1);
}

TEST_F(Printing, PrintsTheRangeAndTheCopies) {
  VSPrinter& VS1 = Load(Long(300));
  ASSERT_GE(VS1.Preview().PageCount(), 4);
  const UniqueDc printer = Open(kColour);
  PrintOrder order = Order(printer);
  order.firstPage = 2;
  order.lastPage = 3;
  order.copies = 2;
  EXPECT_EQ(VS1.PrintTo(order), PrintOutcome::Done);
  EXPECT_EQ(PagesIn(Printed()), 4);
  Keep("copies-by-page", VS1);

  order.collated = true;
  EXPECT_EQ(VS1.PrintTo(order), PrintOutcome::Done);
  EXPECT_EQ(PagesIn(Printed()), 4);
  Keep("copies-collated", VS1);
}

TEST_F(Printing, DialogTakesThePrinterAndThePages) {
  VSPrinter& VS1 = Show(Long(300));
  {
    const User user(kPrintDialog, [](HWND dialog) {
      TakePicture(Window(dialog), "dialog");
      EXPECT_EQ(::GetWindow(dialog, GW_OWNER), Default<frmPrintReport>::Touch().Handle());
      EXPECT_EQ(TextOfItem(dialog, cmb4), FromWide(kColour));
      ::CheckRadioButton(dialog, rad1, rad3, rad3);
      ::SetDlgItemTextW(dialog, edt1, L"2");
      ::SetDlgItemTextW(dialog, edt2, L"3");
      ::SetDlgItemTextW(dialog, edt3, L"2");
      Click(dialog, IDOK);
      return true;
    });
    VS1.PrintWithDialog();
  }
  ExpectQuietEnd();
  EXPECT_EQ(PagesIn(Printed()), 2);
  Keep("dialog", VS1);
}

TEST_F(Printing, DialogLeftPrintsNothing) {
  VSPrinter& VS1 = Show(Example());
  {
    const User user(kPrintDialog, [](HWND dialog) {
      Click(dialog, IDCANCEL);
      return true;
    });
    VS1.PrintWithDialog();
  }
  ExpectQuietEnd();
  EXPECT_FALSE(PathExists(port_));
}

// Windows asks for the file's name where a job goes to this port. Wine makes a file of the port's name.
TEST_F(Printing, DialogPrintsToAFile) {
  constexpr char kFilePort[] = "FILE:";
  ::DeleteFileA(kFilePort);
  VSPrinter& VS1 = Show(Long(30));
  {
    const User user(kPrintDialog, [](HWND dialog) {
      ::CheckDlgButton(dialog, chx1, BST_CHECKED);
      Click(dialog, IDOK);
      return true;
    });
    VS1.PrintWithDialog();
  }
  ExpectQuietEnd();
  EXPECT_FALSE(PathExists(port_)) << "nothing goes to the printer";
  EXPECT_EQ(PagesIn(ReadFileBytes(kFilePort)), 1);
  ::DeleteFileA(kFilePort);
}

// By the button and by the close box.
TEST_F(Printing, CancelEndsTheJobWithoutAWord) {
  VSPrinter& VS1 = Load(Long(3000));
  for (const bool byButton : {true, false}) {
    const UniqueDc printer = Open(kColour);
    std::vector<std::string> texts;
    const User user(kPrintingBox, [&](HWND box) {
      for (const int id :
           {IDC_PrintingBox_lblDocument, IDC_PrintingBox_lblPrinter, IDC_PrintingBox_cmdCancel})
        texts.push_back(TextOfItem(box, id));
      EXPECT_THAT(TextOfItem(box, IDC_PrintingBox_lblPage),
                  testing::MatchesRegex("Now printing Page \\d+ of"));
      EXPECT_FALSE(::IsWindowEnabled(Default<frmPrintReport>::Touch().Handle()));
      TakePicture(Window(box), "printing", When::AtOnce);
      if (byButton) {
        Click(box, IDC_PrintingBox_cmdCancel);
      } else {
        ::PostMessageW(box, WM_CLOSE, 0, 0);
      }
      return true;
    });
    EXPECT_EQ(VS1.PrintTo(Order(printer)), PrintOutcome::Cancelled);
    EXPECT_THAT(texts, ElementsAre("Zeroquill Report", "on the Test Colour on " + port_, "Cancel"));
    ExpectQuietEnd();
    EXPECT_FALSE(PathExists(port_)) << "a part of it came out";
  }
}

TEST_F(Printing, BlackAloneKeepsEachWordReadable) {
  VSPrinter& VS1 = Show(Long(30));
  {
    const User user(kPrintDialog, [](HWND dialog) {
      const HWND printers = ::GetDlgItem(dialog, cmb4);
      const auto index = ::SendMessageW(printers, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                        reinterpret_cast<LPARAM>(kBlackAlone));
      EXPECT_NE(index, CB_ERR);
      ::SendMessageW(printers, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
      ::SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(cmb4, CBN_SELCHANGE), reinterpret_cast<LPARAM>(printers));
      Click(dialog, IDOK);
      return true;
    });
    VS1.PrintWithDialog();
  }
  ExpectQuietEnd();
  EXPECT_EQ(PagesIn(Printed()), 1);
  Keep("black", VS1);
}

TEST_F(Printing, WithoutAPrinterSaysSo) {
  colour_.reset();
  black_.reset();
  VSPrinter& VS1 = Show(Example());
  VS1.PrintWithDialog();
  ASSERT_EQ(fake.boxes.shown.size(), 1U);
  EXPECT_EQ(fake.boxes.shown[0].title, "Print");
  EXPECT_THAT(fake.boxes.shown[0].text, HasSubstr("There is no printer"));
  ExpectWindowsBack();
  const PageSetup setup = PaperOfDefaultPrinter();
  EXPECT_EQ(setup.width, 12240) << "the paper of the tests' region";
}

TEST_F(Printing, PrinterThatCannotPrintIsTold) {
  VSPrinter& VS1 = Load(Example());
  const UniqueDc printer = Open(kColour);
  PrintOrder order = Order(printer);
  order.output = ToWide(scratch / "nowhere\\printed.ps");
  EXPECT_EQ(VS1.PrintTo(order), PrintOutcome::Failed);
  ASSERT_EQ(fake.boxes.shown.size(), 1U);
  EXPECT_EQ(fake.boxes.shown[0].icon, MessageIcon::Exclamation);
  EXPECT_THAT(fake.boxes.shown[0].text, HasSubstr("was not printed completely"));
  ExpectWindowsBack();
}

// What is printed waits on the small drive D:, which gets full.
TEST_F(Printing, PrinterThatFailsInTheMiddleIsTold) {
  if (::GetDriveTypeW(L"D:\\") == DRIVE_NO_ROOT_DIR) GTEST_SKIP() << "this system allows no small drive";
  VSPrinter& VS1 = Load(Long(3000));
  const UniqueDc printer = Open(kColour);
  const std::string filler = "D:\\filler";
  const User user(kPrintingBox, [&](HWND box) {
    if (TextOfItem(box, IDC_PrintingBox_lblPage) == "Now printing Page 1 of") return false;
    ULARGE_INTEGER free{};
    EXPECT_TRUE(::GetDiskFreeSpaceExW(L"D:\\", &free, nullptr, nullptr));
    WriteFileBytes(filler, std::string(free.QuadPart, 'x'));
    return true;
  });
  EXPECT_EQ(VS1.PrintTo(Order(printer)), PrintOutcome::Failed);
  ::DeleteFileA(filler.c_str());
  ASSERT_EQ(fake.boxes.shown.size(), 1U);
  EXPECT_THAT(fake.boxes.shown[0].text, HasSubstr("was not printed completely"));
  ExpectWindowsBack();
}

}  // namespace
}  // namespace zq::test
