#include "controls/Printer.h"

#include <winspool.h>

#include <array>
#include <cmath>
#include <cstdlib>

#include "controls/Control.h"
#include "controls/MessageLoop.h"
#include "controls/PagePainter.h"
#include "platform/Twips.h"
#include "platform/win32/Wide.h"
#include "resource.h"

namespace zq {
namespace {

constexpr wchar_t kDocumentName[] = L"Zeroquill Report";

// What an English user reads as one sentence, over three lines.
std::string PageLine(int page) {
  return WithPageNumber("Now printing Page %d of", page);
}

std::string PrinterLine(const std::string& device, const std::string& port) {
  return "on the " + device + " on " + port;
}

class PrintingBox final : public Form {
 public:
  PrintingBox() : Form(IDD_PrintingBox) {
    cmdCancel.Click = [this] { Cancelled = true; };
  }

  Label lblPage{*this, IDC_PrintingBox_lblPage};
  Label lblPrinter{*this, IDC_PrintingBox_lblPrinter};
  Button cmdCancel{*this, IDC_PrintingBox_cmdCancel};
  bool Cancelled = false;

 private:
  // The close box and Esc cancel, and the box goes when the job has ended.
  bool QueryUnload(CloseReason reason) override {
    if (reason == CloseReason::User) Cancelled = true;
    return reason == CloseReason::Program;
  }
  bool TranslateShortcut(MSG& message) override {
    if (message.message != WM_KEYDOWN || message.wParam != VK_ESCAPE) return false;
    Cancelled = true;
    return true;
  }
};

// The box of the job that runs: the system's question whether to go on has no room for more.
PrintingBox* runningBox = nullptr;

BOOL CALLBACK GoOnPrinting(HDC, int) {
  PumpMessages();
  return runningBox && runningBox->Cancelled ? FALSE : TRUE;
}

class GdiPrinter final : public PrinterDevice {
 public:
  GdiPrinter(const PrintOrder& order, PagePainter& painter, PrintingBox& box)
      : order_(order), painter_(painter), box_(box) {}

  DWORD SystemError() const { return systemError_; }

  bool StartDocument() override {
    DOCINFOW info{};
    info.cbSize = sizeof info;
    info.lpszDocName = kDocumentName;
    if (!order_.output.empty()) info.lpszOutput = order_.output.c_str();
    ::SetAbortProc(order_.printer, &GoOnPrinting);
    return Check(::StartDocW(order_.printer, &info));
  }
  bool StartPage() override { return Check(::StartPage(order_.printer)); }
  bool EndPage() override { return Check(::EndPage(order_.printer)); }
  bool EndDocument() override { return Check(::EndDoc(order_.printer)); }
  void Abort() override { ::AbortDoc(order_.printer); }

  void DrawPage(int page) override {
    PageCanvas canvas;
    canvas.context = order_.printer;
    canvas.pixelsPerTwipX = ::GetDeviceCaps(order_.printer, LOGPIXELSX) / static_cast<double>(kTwipsPerInch);
    canvas.pixelsPerTwipY = ::GetDeviceCaps(order_.printer, LOGPIXELSY) / static_cast<double>(kTwipsPerInch);
    // The printer counts from the corner of what it can print on, the page from the paper's.
    canvas.left = -::GetDeviceCaps(order_.printer, PHYSICALOFFSETX);
    canvas.top = -::GetDeviceCaps(order_.printer, PHYSICALOFFSETY);
    canvas.clip = {0, 0, ::GetDeviceCaps(order_.printer, PHYSICALWIDTH),
                   ::GetDeviceCaps(order_.printer, PHYSICALHEIGHT)};
    canvas.colours = order_.colours;
    painter_.Draw(page, canvas);
  }

  void NowPrinting(int page) override {
    box_.lblPage.SetText(PageLine(page + 1));
    PumpMessages();
  }
  bool Cancelled() override { return box_.Cancelled; }

 private:
  bool Check(int result) {
    if (result > 0) return true;
    systemError_ = ::GetLastError();
    // The driver has asked something itself, such as a file's name, and the user has left it.
    if (systemError_ == ERROR_CANCELLED || systemError_ == ERROR_PRINT_CANCELLED) box_.Cancelled = true;
    return false;
  }

  const PrintOrder& order_;
  PagePainter& painter_;
  PrintingBox& box_;
  DWORD systemError_ = 0;
};

// Where there is no printer: the paper that people of the region print on.
PageSetup RegionsPaper() {
  constexpr Twips kLetter[] = {12240, 15840};
  constexpr Twips kA4[] = {11906, 16838};
  std::array<wchar_t, 4> paper{};
  const int length = ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_IPAPERSIZE, paper.data(),
                                       static_cast<int>(paper.size()));
  const bool letter = length > 0 && (paper[0] == L'1' || paper[0] == L'5') && paper[1] == 0;
  return letter ? SetupFor(kLetter[0], kLetter[1]) : SetupFor(kA4[0], kA4[1]);
}

// Its name; "" where there is none, which is so only where there is no printer at all.
std::wstring DefaultPrinter() {
  DWORD length = 0;
  ::GetDefaultPrinterW(nullptr, &length);
  if (length == 0) return L"";
  std::wstring name(length, L'\0');
  if (!::GetDefaultPrinterW(name.data(), &length)) return L"";
  name.resize(length - 1);
  return name;
}

}  // namespace

PageSetup PaperOf(HDC printer) {
  const auto twips = [printer](int size, int resolution) {
    const int perInch = ::GetDeviceCaps(printer, resolution);
    if (perInch <= 0) return 0;
    return static_cast<Twips>(
        std::lround(::GetDeviceCaps(printer, size) * static_cast<double>(kTwipsPerInch) / perInch));
  };
  const Twips width = twips(PHYSICALWIDTH, LOGPIXELSX);
  const Twips height = twips(PHYSICALHEIGHT, LOGPIXELSY);
  if (width <= 0 || height <= 0) return RegionsPaper();
  return SetupFor(width, height);
}

bool HasPrinter() {
  return !DefaultPrinter().empty();
}

PageSetup PaperOfDefaultPrinter() {
  const std::wstring name = DefaultPrinter();
  if (name.empty()) return RegionsPaper();
  const UniqueDc printer(::CreateICW(L"WINSPOOL", name.c_str(), nullptr, nullptr));
  return printer ? PaperOf(printer.Get()) : RegionsPaper();
}

PrintOutcome PrintDocument(HWND owner, const PrintOrder& order, const Document& document,
                           const PageLayout& layout, TextMeasure& measure, DWORD& systemError) {
  PagePainter painter(document, layout, measure);
  PrintingBox box;
  box.Create();
  ::SetWindowLongPtrW(box.Handle(), GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
  box.lblPrinter.SetText(PrinterLine(FromWide(order.device), FromWide(order.port)));
  box.lblPage.SetText(PageLine(order.firstPage));
  const bool ownerWasEnabled = !::EnableWindow(owner, FALSE);
  box.Show();
  box.Repaint();

  runningBox = &box;
  GdiPrinter printer(order, painter, box);
  const PrintOutcome outcome =
      PrintPages(printer, PagesToPrint(order.firstPage, order.lastPage, static_cast<int>(layout.pages.size()),
                                       order.copies, order.collated));
  systemError = printer.SystemError();
  runningBox = nullptr;

  // Before the box goes, or the activation would pass to another program.
  if (ownerWasEnabled) ::EnableWindow(owner, TRUE);
  box.Unload();
  return outcome;
}

}  // namespace zq
