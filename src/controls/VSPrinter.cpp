#include "controls/VSPrinter.h"

#include <algorithm>
#include <cstdlib>
#include <exception>

#include "controls/ExportFile.h"
#include "controls/document/RtfWriter.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr int kPreviewId = 100;
// The zoom menu's commands: the stored list first, then the percentages.
constexpr UINT kFirstModeCommand = 1;
constexpr UINT kFirstPercentCommand = 100;

bool KeyIsDown(int key) {
  return ::GetKeyState(key) < 0;
}

}  // namespace

VSPrinter::VSPrinter(Form& form, int id, FoldCase fold) : Control(form, id), fold_(std::move(fold)) {
  preview_.ViewChange = [this] { ShowView(); };
  preview_.CopyFailed = [this](const std::string& text) {
    if (CopyFailed) CopyFailed(text);
  };
}

VSPrinter::~VSPrinter() {
  if (Handle() && ::IsWindow(Handle())) ::RemoveWindowSubclass(Handle(), &VSPrinter::SubclassProcedure, 0);
}

void VSPrinter::Attached() {
  ::SetWindowSubclass(Handle(), &VSPrinter::SubclassProcedure, 0, reinterpret_cast<DWORD_PTR>(this));
  // Tab has to reach what is inside; the pages come first.
  ::SetWindowLongPtrW(Handle(), GWL_EXSTYLE,
                      ::GetWindowLongPtrW(Handle(), GWL_EXSTYLE) | WS_EX_CONTROLPARENT);
  preview_.Create(Handle(), kPreviewId);
  bar_.Create(Handle(), reinterpret_cast<HFONT>(::SendMessageW(form().Handle(), WM_GETFONT, 0, 0)));
  barHeight_ = bar_.Arrange();
  OnSize();
}

LRESULT CALLBACK VSPrinter::SubclassProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                              UINT_PTR id, DWORD_PTR self) {
  auto* printer = reinterpret_cast<VSPrinter*>(self);
  try {
    switch (message) {
      case WM_SIZE:
        printer->OnSize();
        break;
      case WM_COMMAND:
        printer->OnBarCommand(LOWORD(wParam), HIWORD(wParam));
        return 0;
      case WM_SETFONT:
        printer->bar_.SetFont(reinterpret_cast<HFONT>(wParam));
        break;
      case WM_DPICHANGED_AFTERPARENT:
        printer->barHeight_ = printer->bar_.Arrange();
        printer->OnSize();
        break;
      case WM_NCDESTROY:
        ::RemoveWindowSubclass(hwnd, &VSPrinter::SubclassProcedure, id);
        break;
      default:
        break;
    }
  } catch (...) {
    ReportAndEnd(std::current_exception());
  }
  return ::DefSubclassProc(hwnd, message, wParam, lParam);
}

void VSPrinter::OnSize() {
  if (!preview_.Handle()) return;
  RECT client{};
  ::GetClientRect(Handle(), &client);
  ::MoveWindow(preview_.Handle(), 0, barHeight_, client.right, std::max<int>(client.bottom - barHeight_, 0),
               TRUE);
}

void VSPrinter::DocumentEnded() {
  layout_ = LayOut(Content(), PaperOfDefaultPrinter(), measure_);
  // A file that can't be written is passed over: the document is there to be read and printed all the same.
  if (!ExportFile().empty()) WriteExportFile(ExportFile(), ToRtf(Content(), layout_.setup));
  preview_.ShowDocument(Content(), layout_, measure_);
}

void VSPrinter::UsePaper(const PageSetup& setup) {
  if (setup == layout_.setup) return;
  layout_ = LayOut(Content(), setup, measure_);
  preview_.ShowDocument(Content(), layout_, measure_);
}

void VSPrinter::ShowView() {
  bar_.ShowPage(preview_.Page() + 1, preview_.PageCount());
  bar_.EnablePaging(preview_.HasPagesBefore(), preview_.HasPagesBehind());
  bar_.ShowZoom(preview_.Percent());
}

void VSPrinter::OnBarCommand(int id, WORD code) {
  if (id == kBarFind && code == EN_CHANGE) bar_.ShowFound("");
  if (code != BN_CLICKED) return;
  switch (id) {
    case kBarPrint:
      PrintWithDialog();
      break;
    case kBarFirst:
      preview_.GoToPage(0);
      break;
    case kBarPrevious:
      preview_.GoToPage(preview_.Page() - preview_.PagesInRow());
      break;
    case kBarNext:
      preview_.GoToPage(preview_.Page() + preview_.PagesInRow());
      break;
    case kBarLast:
      preview_.GoToPage(preview_.PageCount() - 1);
      break;
    case kBarZoom:
      ShowZoomMenu();
      break;
    case kBarFindNext:
      Find(false);
      break;
    case kBarFindPrevious:
      Find(true);
      break;
    default:
      break;
  }
}

void VSPrinter::GoToTypedPage() {
  const std::string typed = bar_.Text(kBarPage);
  preview_.GoToPage(std::atoi(typed.c_str()) - 1);
  ShowView();
  ::SendMessageW(bar_.Item(kBarPage), EM_SETSEL, 0, -1);
}

void VSPrinter::ShowZoomMenu() {
  const UniqueMenu menu(::CreatePopupMenu());
  if (!menu) return;
  std::string_view list = kZoomList;
  UINT command = kFirstModeCommand;
  for (;;) {
    const std::size_t bar = list.find('|');
    const auto mode = static_cast<ZoomMode>(static_cast<int>(ZoomMode::WholePage) +
                                            static_cast<int>(command - kFirstModeCommand));
    ::AppendMenuW(menu.Get(), MF_STRING | (preview_.Mode() == mode ? MF_CHECKED : 0U), command,
                  ToWide(list.substr(0, bar)).c_str());
    ++command;
    if (bar == std::string_view::npos) break;
    list.remove_prefix(bar + 1);
  }
  ::AppendMenuW(menu.Get(), MF_SEPARATOR, 0, nullptr);
  command = kFirstPercentCommand;
  for (const int percent : kZoomPercents) {
    const bool present = preview_.Mode() == ZoomMode::Percent && preview_.Percent() == percent;
    ::AppendMenuW(menu.Get(), MF_STRING | (present ? MF_CHECKED : 0U), command,
                  (std::to_wstring(percent) + L"%").c_str());
    ++command;
  }
  RECT place{};
  ::GetWindowRect(bar_.Item(kBarZoom), &place);
  TPMPARAMS keepClear{sizeof keepClear, place};
  const auto chosen = static_cast<UINT>(
      ::TrackPopupMenuEx(menu.Get(), TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RETURNCMD | TPM_VERTICAL, place.left,
                         place.bottom, Handle(), &keepClear));
  if (chosen >= kFirstPercentCommand) {
    preview_.SetZoom(ZoomMode::Percent, kZoomPercents[chosen - kFirstPercentCommand]);
  } else if (chosen >= kFirstModeCommand) {
    preview_.SetZoom(static_cast<ZoomMode>(static_cast<int>(ZoomMode::WholePage) +
                                           static_cast<int>(chosen - kFirstModeCommand)));
  }
}

void VSPrinter::Find(bool backwards) {
  const std::string needle = bar_.Text(kBarFind);
  if (needle.empty()) {
    ::SetFocus(bar_.Item(kBarFind));
    return;
  }
  const TextRange selection = preview_.Selection();
  const auto found =
      FindText(Content(), needle, backwards ? selection.begin : selection.end, backwards, fold_);
  if (!found) {
    bar_.ShowFound("Not found");
    ::MessageBeep(MB_ICONWARNING);
    return;
  }
  bar_.ShowFound("");
  preview_.Select(*found);
}

bool VSPrinter::TranslateKey(const MSG& message) {
  if (message.message != WM_KEYDOWN) return false;
  const bool inPageBox = message.hwnd == bar_.Item(kBarPage);
  const bool inFindBox = message.hwnd == bar_.Item(kBarFind);
  switch (message.wParam) {
    case VK_RETURN:
      if (inPageBox) {
        GoToTypedPage();
      } else if (inFindBox) {
        Find(KeyIsDown(VK_SHIFT));
      } else if (::GetParent(message.hwnd) == Handle() && message.hwnd != preview_.Handle()) {
        ::SendMessageW(message.hwnd, BM_CLICK, 0, 0);
      } else {
        return false;
      }
      return true;
    case VK_ESCAPE:
      ::SetFocus(preview_.Handle());
      return true;
    case VK_F3:
      Find(KeyIsDown(VK_SHIFT));
      return true;
    case VK_PRIOR:
    case VK_NEXT:
      // From the boxes, too, which know nothing better to do with them.
      if (!inPageBox && !inFindBox) return false;
      ::SendMessageW(preview_.Handle(), WM_KEYDOWN, message.wParam, message.lParam);
      return true;
    default:
      return KeyIsDown(VK_CONTROL) && !KeyIsDown(VK_MENU) && OnControlKey(message.wParam);
  }
}

bool VSPrinter::OnControlKey(WPARAM key) {
  const auto focusBox = [this](PreviewBarId id) {
    ::SetFocus(bar_.Item(id));
    ::SendMessageW(bar_.Item(id), EM_SETSEL, 0, -1);
  };
  switch (key) {
    case 'P':
      PrintWithDialog();
      return true;
    case 'F':
      focusBox(kBarFind);
      return true;
    case 'G':
      focusBox(kBarPage);
      return true;
    case VK_ADD:
    case VK_OEM_PLUS:
      SetZoom(ZoomedIn(preview_.Percent()));
      return true;
    case VK_SUBTRACT:
    case VK_OEM_MINUS:
      SetZoom(ZoomedOut(preview_.Percent()));
      return true;
    case '0':
    case VK_NUMPAD0:
      SetZoom(100);
      return true;
    default:
      return false;
  }
}

}  // namespace zq
