#include "controls/PreviewWindow.h"

#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <utility>

#include "controls/Pictures.h"
#include "controls/WindowDc.h"
#include "platform/RunTimeError.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

constexpr wchar_t kClassName[] = L"ZeroquillPreview";
constexpr COLORREF kGround = RGB(128, 128, 128);
constexpr COLORREF kShadow = RGB(80, 80, 80);
constexpr COLORREF kPaperEdge = RGB(64, 64, 64);
constexpr int kShadowPixels = 4;  // at 96 dpi
constexpr int kLineStep = 48;     // of a scroll by one line

void Fill(HDC context, const RECT& rect, COLORREF colour) {
  const UniqueBrush brush(::CreateSolidBrush(colour));
  ::FillRect(context, &rect, brush.Get());
}

bool KeyIsDown(int key) {
  return ::GetKeyState(key) < 0;
}

}  // namespace

PreviewWindow::~PreviewWindow() {
  if (hwnd_) ::SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
}

void PreviewWindow::Create(HWND parent, int id) {
  const HINSTANCE module = ::GetModuleHandleW(nullptr);
  WNDCLASSW windowClass{};
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = &PreviewWindow::Procedure;
  windowClass.hInstance = module;
  windowClass.hCursor = ::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_IBEAM));
  windowClass.lpszClassName = kClassName;
  ::RegisterClassW(&windowClass);  // fails where it has been registered before
  ::CreateWindowExW(WS_EX_CLIENTEDGE, kClassName, L"Report pages",
                    WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_HSCROLL | WS_VSCROLL, 0, 0, 0, 0, parent,
                    reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), module, this);
  if (!hwnd_) throw RunTimeError(ErrorNumber::OutOfMemory);
}

LRESULT CALLBACK PreviewWindow::Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    auto* created =
        static_cast<PreviewWindow*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
    created->hwnd_ = hwnd;
    ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
  }
  auto* window = reinterpret_cast<PreviewWindow*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
  if (!window) return ::DefWindowProcW(hwnd, message, wParam, lParam);
  if (message == WM_NCDESTROY) {
    ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
    window->hwnd_ = nullptr;
    return ::DefWindowProcW(hwnd, message, wParam, lParam);
  }
  try {
    return window->OnMessage(message, wParam, lParam);
  } catch (...) {
    ReportAndEnd(std::current_exception());
  }
}

LRESULT PreviewWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  const POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  switch (message) {
    case WM_PAINT:
      Paint();
      return 0;
    case WM_ERASEBKGND:
      return 1;  // all of it is painted anyway
    case WM_SIZE:
      Replan();
      return 0;
    case WM_GETOBJECT:
      if (const LRESULT answer = AnswerWithDocument(hwnd_, wParam, lParam, spoken_)) return answer;
      break;
    case WM_GETDLGCODE:
      return DLGC_WANTARROWS;
    case WM_KEYDOWN:
      if (OnKey(wParam)) return 0;
      break;
    case WM_VSCROLL:
      OnScroll(SB_VERT, LOWORD(wParam));
      return 0;
    case WM_HSCROLL:
      OnScroll(SB_HORZ, LOWORD(wParam));
      return 0;
    case WM_MOUSEWHEEL:
      OnWheel(wParam, KeyIsDown(VK_SHIFT));
      return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      ::InvalidateRect(hwnd_, nullptr, FALSE);
      return 0;
    case WM_LBUTTONDOWN:
      OnButtonDown(point);
      return 0;
    case WM_MOUSEMOVE:
      if (selecting_) OnMouseMove(point);
      return 0;
    case WM_LBUTTONUP:
      if (selecting_) ::ReleaseCapture();
      return 0;
    case WM_CAPTURECHANGED:
      selecting_ = false;
      return 0;
    default:
      break;
  }
  return ::DefWindowProcW(hwnd_, message, wParam, lParam);
}

ViewSize PreviewWindow::View() const {
  RECT client{};
  ::GetClientRect(hwnd_, &client);
  return {client.right, client.bottom};
}

int PreviewWindow::PageCount() const {
  return layout_ ? static_cast<int>(layout_->pages.size()) : 1;
}

int PreviewWindow::Page() const {
  return plan_.PageAtView(scrollY_);
}

bool PreviewWindow::HasPagesBehind() const {
  return Page() + plan_.Columns() < PageCount() && scrollY_ < plan_.MaxScrollY();
}

void PreviewWindow::ShowDocument(const Document& document, const PageLayout& layout, TextMeasure& measure) {
  document_ = &document;
  layout_ = &layout;
  measure_ = &measure;
  painter_ = std::make_unique<PagePainter>(document, layout, measure);
  selectionAnchor_ = selectionEnd_ = 0;
  scrollX_ = scrollY_ = 0;
  Replan();
}

void PreviewWindow::SetZoom(ZoomMode mode, double percent) {
  mode_ = mode;
  percent_ = std::clamp(percent, kLeastZoom, kMostZoom);
  Replan();
}

// Lays the pages out for the view's size and the zoom; what stands at the view's top stays there.
void PreviewWindow::Replan() {
  if (!layout_) return;
  const int page = std::min(Page(), PageCount() - 1);
  const PixelRect before = plan_.PageRect(page);
  const double into = static_cast<double>(scrollY_ - before.top) / std::max(before.bottom - before.top, 1);
  plan_ = PreviewPlan(layout_->setup.width, layout_->setup.height, PageCount(),
                      static_cast<int>(::GetDpiForWindow(hwnd_)), View(), mode_, percent_);
  const PixelRect after = plan_.PageRect(page);
  const bool atPageTop = into <= 0;
  scrollY_ = atPageTop ? plan_.ScrollYOf(page)
                       : after.top + static_cast<int>(std::lround(into * (after.bottom - after.top)));
  scrollX_ = std::clamp(scrollX_, 0, plan_.MaxScrollX());
  scrollY_ = std::clamp(scrollY_, 0, plan_.MaxScrollY());
  UpdateScrollBars();
  ::InvalidateRect(hwnd_, nullptr, FALSE);
  TellChange();
}

void PreviewWindow::TellChange() {
  if (ViewChange) ViewChange();
  if (std::exchange(toldPage_, Page()) != Page()) TellTextChanged(hwnd_);
}

std::string PreviewWindow::PageText() const {
  if (!document_ || !layout_) return {};
  const LaidPage& page = layout_->pages[static_cast<std::size_t>(Page())];
  if (page.firstLine == page.endLine) return {};
  return TextToCopy(*document_, {layout_->lines[page.firstLine].begin, layout_->lines[page.endLine - 1].end});
}

void PreviewWindow::UpdateScrollBars() {
  const ViewSize view = View();
  SCROLLINFO info{};
  info.cbSize = sizeof info;
  // Kept where they are, so that the view's size doesn't depend on the zoom that depends on it.
  info.fMask = SIF_ALL | SIF_DISABLENOSCROLL;
  info.nMax = plan_.Canvas().height - 1;
  info.nPage = static_cast<UINT>(view.height);
  info.nPos = scrollY_;
  ::SetScrollInfo(hwnd_, SB_VERT, &info, TRUE);
  info.nMax = plan_.Canvas().width - 1;
  info.nPage = static_cast<UINT>(view.width);
  info.nPos = scrollX_;
  ::SetScrollInfo(hwnd_, SB_HORZ, &info, TRUE);
}

void PreviewWindow::ScrollTo(int x, int y) {
  x = std::clamp(x, 0, plan_.MaxScrollX());
  y = std::clamp(y, 0, plan_.MaxScrollY());
  if (x == scrollX_ && y == scrollY_) return;
  ::ScrollWindowEx(hwnd_, scrollX_ - x, scrollY_ - y, nullptr, nullptr, nullptr, nullptr, SW_INVALIDATE);
  scrollX_ = x;
  scrollY_ = y;
  UpdateScrollBars();
  TellChange();
}

void PreviewWindow::GoToPage(int page) {
  ScrollTo(scrollX_, plan_.ScrollYOf(std::clamp(page, 0, PageCount() - 1)));
}

void PreviewWindow::OnScroll(int bar, int request) {
  SCROLLINFO info{};
  info.cbSize = sizeof info;
  info.fMask = SIF_TRACKPOS;
  ::GetScrollInfo(hwnd_, bar, &info);
  const bool vertical = bar == SB_VERT;
  const int line = ScaleForDpi(kLineStep, static_cast<int>(::GetDpiForWindow(hwnd_)));
  const int page = std::max((vertical ? View().height : View().width) - line, line);
  int place = vertical ? scrollY_ : scrollX_;
  switch (request) {
    case SB_LINEUP:
      place -= line;
      break;
    case SB_LINEDOWN:
      place += line;
      break;
    case SB_PAGEUP:
      place -= page;
      break;
    case SB_PAGEDOWN:
      place += page;
      break;
    case SB_TOP:
      place = 0;
      break;
    case SB_BOTTOM:
      place = vertical ? plan_.MaxScrollY() : plan_.MaxScrollX();
      break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
      place = info.nTrackPos;
      break;
    default:
      return;
  }
  ScrollTo(vertical ? scrollX_ : place, vertical ? place : scrollY_);
}

void PreviewWindow::OnWheel(WPARAM wParam, bool sideways) {
  wheelRest_ += GET_WHEEL_DELTA_WPARAM(wParam);
  const int notches = wheelRest_ / WHEEL_DELTA;
  wheelRest_ %= WHEEL_DELTA;
  if (LOWORD(wParam) & MK_CONTROL) {
    for (int i = 0; i < std::abs(notches); ++i)
      SetZoom(ZoomMode::Percent, notches > 0 ? ZoomedIn(plan_.Percent()) : ZoomedOut(plan_.Percent()));
    return;
  }
  UINT lines = 3;
  ::SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
  const int step =
      lines == WHEEL_PAGESCROLL
          ? View().height
          : static_cast<int>(lines) * ScaleForDpi(kLineStep / 2, static_cast<int>(::GetDpiForWindow(hwnd_)));
  if (sideways) {
    ScrollTo(scrollX_ - notches * step, scrollY_);
  } else {
    ScrollTo(scrollX_, scrollY_ - notches * step);
  }
}

bool PreviewWindow::OnKey(WPARAM key) {
  const bool control = KeyIsDown(VK_CONTROL);
  switch (key) {
    case VK_PRIOR:
      if (control) {
        GoToPage(Page() - plan_.Columns());
      } else {
        OnScroll(SB_VERT, SB_PAGEUP);
      }
      return true;
    case VK_NEXT:
      if (control) {
        GoToPage(Page() + plan_.Columns());
      } else {
        OnScroll(SB_VERT, SB_PAGEDOWN);
      }
      return true;
    case VK_HOME:
      ScrollTo(0, 0);
      return true;
    case VK_END:
      ScrollTo(scrollX_, plan_.MaxScrollY());
      return true;
    case VK_UP:
      OnScroll(SB_VERT, SB_LINEUP);
      return true;
    case VK_DOWN:
      OnScroll(SB_VERT, SB_LINEDOWN);
      return true;
    case VK_LEFT:
      OnScroll(SB_HORZ, SB_LINEUP);
      return true;
    case VK_RIGHT:
      OnScroll(SB_HORZ, SB_LINEDOWN);
      return true;
    case 'A':
      if (control) SelectAll();
      return control;
    case 'C':
    case VK_INSERT:
      if (control) CopySelection();
      return control;
    default:
      return false;
  }
}

void PreviewWindow::Paint() {
  const PaintDc paint(hwnd_);
  const HDC target = paint.Get();
  const RECT& dirty = paint.Dirty();
  const int width = dirty.right - dirty.left;
  const int height = dirty.bottom - dirty.top;
  if (width <= 0 || height <= 0) return;
  const UniqueDc context(::CreateCompatibleDC(target));
  const UniqueBitmap bitmap(::CreateCompatibleBitmap(target, width, height));
  const SelectedObject selected(context.Get(), bitmap.Get());
  ::SetViewportOrgEx(context.Get(), -dirty.left, -dirty.top, nullptr);
  Fill(context.Get(), dirty, kGround);
  if (painter_) DrawPages(context.Get(), dirty);
  ::BitBlt(target, dirty.left, dirty.top, width, height, context.Get(), dirty.left, dirty.top, SRCCOPY);
}

void PreviewWindow::DrawPages(HDC context, const RECT& dirty) {
  const int shadow = ScaleForDpi(kShadowPixels, static_cast<int>(::GetDpiForWindow(hwnd_)));
  int first = 0;
  int end = 0;
  plan_.VisiblePages(scrollY_, first, end);
  for (int page = first; page < end; ++page) {
    const PixelRect place = plan_.PageRect(page);
    const RECT paper{place.left - scrollX_, place.top - scrollY_, place.right - scrollX_,
                     place.bottom - scrollY_};
    Fill(context, {paper.right, paper.top + shadow, paper.right + shadow, paper.bottom + shadow}, kShadow);
    Fill(context, {paper.left + shadow, paper.bottom, paper.right + shadow, paper.bottom + shadow}, kShadow);
    Fill(context, {paper.left - 1, paper.top - 1, paper.right + 1, paper.bottom + 1}, kPaperEdge);
    Fill(context, paper, kWhite);
    RECT seen{};
    if (!::IntersectRect(&seen, &paper, &dirty)) continue;
    PageCanvas canvas;
    canvas.context = context;
    canvas.pixelsPerTwipX = canvas.pixelsPerTwipY = plan_.PixelsPerTwip();
    canvas.left = paper.left;
    canvas.top = paper.top;
    canvas.clip = seen;
    canvas.selection = Selection();
    const int saved = ::SaveDC(context);
    ::IntersectClipRect(context, paper.left, paper.top, paper.right, paper.bottom);
    painter_->Draw(page, canvas);
    ::RestoreDC(context, saved);
  }
}

}  // namespace zq
