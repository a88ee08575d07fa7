#include "controls/Form.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "controls/Control.h"
#include "controls/MessageLoop.h"
#include "platform/RunTimeError.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

std::vector<std::unique_ptr<Form>>& ClosedForms() {
  static std::vector<std::unique_ptr<Form>> forms;
  return forms;
}

// The forms that have a window: few, so a walk over them is as good as a map.
std::vector<Form*>& OpenForms() {
  static std::vector<Form*> forms;
  return forms;
}

// Dialogs stand in the middle of their owner, kept on its monitor; of the monitor, where the owner isn't
// to be seen. One that the user can size is no larger than the monitor's work area.
void CentreOver(HWND window, HWND owner) {
  RECT ownerRect{};
  RECT rect{};
  ::GetWindowRect(owner, &ownerRect);
  ::GetWindowRect(window, &rect);
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  ::GetMonitorInfoW(::MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST), &monitor);
  if (::IsIconic(owner) || !::IsWindowVisible(owner)) ownerRect = monitor.rcWork;
  const RECT& work = monitor.rcWork;
  LONG width = rect.right - rect.left;
  LONG height = rect.bottom - rect.top;
  UINT keepSize = SWP_NOSIZE;
  if ((::GetWindowLongW(window, GWL_STYLE) & WS_THICKFRAME) != 0) {
    width = std::min(width, work.right - work.left);
    height = std::min(height, work.bottom - work.top);
    keepSize = 0;
  }
  const LONG left = (ownerRect.left + ownerRect.right - width) / 2;
  const LONG top = (ownerRect.top + ownerRect.bottom - height) / 2;
  ::SetWindowPos(window, nullptr, std::max(work.left, std::min(left, work.right - width)),
                 std::max(work.top, std::min(top, work.bottom - height)), width, height,
                 keepSize | SWP_NOZORDER | SWP_NOACTIVATE);
}

class DepthGuard {
 public:
  explicit DepthGuard(int& depth) : depth_(depth) { ++depth_; }
  ~DepthGuard() { --depth_; }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;

 private:
  int& depth_;
};

}  // namespace

Form::~Form() {
  std::erase(OpenForms(), this);
  if (!hwnd_) return;
  ::SetWindowLongPtrW(hwnd_, DWLP_USER, 0);
  ::DestroyWindow(hwnd_);
}

void Form::Create() {
  ::CreateDialogParamW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(dialogId_), nullptr,
                       &Form::DialogProcedure, reinterpret_cast<LPARAM>(this));
  if (!hwnd_) throw RunTimeError(ErrorNumber::OutOfMemory);
  scaling_.Attach(hwnd_);
  for (Control* control : controls_) control->Attach();
  // Not inside WM_INITDIALOG: a failure has to reach the caller without crossing the system's frames.
  Load();
}

void Form::Show() {
  ShowAs(SW_SHOW);
}

void Form::ShowAs(int showCommand) {
  ::ShowWindow(hwnd_, showCommand);
  if (std::exchange(focusGiven_, true)) return;
  const HWND first = start_ ? start_->Handle() : ::GetNextDlgTabItem(hwnd_, nullptr, FALSE);
  if (first) ::SendMessageW(hwnd_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(first), TRUE);
}

void Form::Hide() {
  ::ShowWindow(hwnd_, SW_HIDE);
}

void Form::Repaint() {
  ::RedrawWindow(hwnd_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void Form::SetCaption(const std::string& text) {
  // The system draws the whole caption anew, and tells the task bar, whatever the text was.
  if (caption_ == text) return;
  caption_ = text;
  ::SetWindowTextW(hwnd_, ToWide(text).c_str());
}

void Form::ShowModal(HWND owner) {
  const DepthGuard guard(depth_);
  ::SetWindowLongPtrW(hwnd_, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
  const int dpi = Dpi();
  CentreOver(hwnd_, owner);
  if (Dpi() != dpi) CentreOver(hwnd_, owner);  // it has taken another size on the owner's monitor
  modalOwner_ = owner;
  modal_ = true;
  ::EnableWindow(owner, FALSE);
  Show();
  MSG message{};
  while (modal_) {
    if (::GetMessageW(&message, nullptr, 0, 0) <= 0) {
      ::PostQuitMessage(static_cast<int>(message.wParam));
      break;
    }
    DispatchToForms(message);
  }
}

void Form::Unload() {
  Close(CloseReason::Program);
}

void Form::Close(CloseReason reason) {
  if (!hwnd_) return;
  const DepthGuard guard(depth_);
  if (!QueryUnload(reason)) return;
  // QueryUnload may ask a question, and be closed by another way meanwhile.
  if (!hwnd_) return;
  Unloaded();
  // Before the window goes, or the activation would pass to another program.
  if (modal_) ::EnableWindow(modalOwner_, TRUE);
  modal_ = false;
  const HWND window = hwnd_;
  hwnd_ = nullptr;
  std::erase(OpenForms(), this);
  ::SetWindowLongPtrW(window, DWLP_USER, 0);
  ::DestroyWindow(window);
  if (closed_) closed_();
}

Form* Form::FromHandle(HWND hwnd) {
  for (Form* form : OpenForms()) {
    if (form->hwnd_ == hwnd) return form;
  }
  return nullptr;
}

void Form::Retire(std::unique_ptr<Form> form) {
  if (form) ClosedForms().push_back(std::move(form));
}

void Form::DestroyClosed() {
  std::erase_if(ClosedForms(), [](const std::unique_ptr<Form>& form) { return form->depth_ == 0; });
}

INT_PTR CALLBACK Form::DialogProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  Form* form = nullptr;
  if (message == WM_INITDIALOG) {
    form = reinterpret_cast<Form*>(lParam);
    ::SetWindowLongPtrW(hwnd, DWLP_USER, lParam);
    form->hwnd_ = hwnd;
    OpenForms().push_back(form);
  } else {
    form = reinterpret_cast<Form*>(::GetWindowLongPtrW(hwnd, DWLP_USER));
  }
  if (!form) return FALSE;
  try {
    const DepthGuard guard(form->depth_);
    return form->Process(message, wParam, lParam);
  } catch (...) {
    ReportAndEnd(std::current_exception());
  }
}

INT_PTR Form::Process(UINT message, WPARAM wParam, LPARAM lParam) {
  if (const std::optional<LRESULT> result = OnMessage(message, wParam, lParam)) {
    if (hwnd_) ::SetWindowLongPtrW(hwnd_, DWLP_MSGRESULT, *result);
    return TRUE;
  }
  switch (message) {
    case WM_INITDIALOG:
      return FALSE;  // a focus given now would activate the window while it is hidden
    case WM_COMMAND:
      return DispatchCommand(wParam);
    case WM_NOTIFY:
      return DispatchNotify(lParam);
    case WM_DRAWITEM:
      return DispatchDraw(lParam);
    case WM_CLOSE:
      // Not passed on: the dialog manager would turn it into a press of Cancel.
      Close(CloseReason::User);
      return TRUE;
    case WM_GETFONT:
      // The dialog manager knows the font of the start alone.
      if (!scaling_.Font()) return FALSE;
      ::SetWindowLongPtrW(hwnd_, DWLP_MSGRESULT, reinterpret_cast<LONG_PTR>(scaling_.Font()));
      return TRUE;
    case WM_GETDPISCALEDSIZE:
      if (::IsIconic(hwnd_)) return FALSE;
      *reinterpret_cast<SIZE*>(lParam) = scaling_.WindowSizeAt(static_cast<int>(wParam));
      ::SetWindowLongPtrW(hwnd_, DWLP_MSGRESULT, TRUE);
      return TRUE;
    case WM_DPICHANGED:
      FollowDpi(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
      return TRUE;
    case WM_SYSCOLORCHANGE:
      // The system tells top-level windows alone.
      ::EnumChildWindows(
          hwnd_,
          [](HWND child, LPARAM) -> BOOL {
            ::SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
            return TRUE;
          },
          0);
      return FALSE;
    case WM_ACTIVATE:
      if (LOWORD(wParam) != WA_INACTIVE) Activated();
      return FALSE;
    default:
      return FALSE;
  }
}

void Form::FollowDpi(int dpi, const RECT& place) {
  scaling_.ChangeTo(dpi);
  ::SetWindowPos(hwnd_, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
  for (Control* control : controls_) control->DpiChanged();
  DpiChanged();
  ::RedrawWindow(hwnd_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

std::optional<LRESULT> Form::OnMessage(UINT, WPARAM, LPARAM) {
  return std::nullopt;
}

bool Form::DispatchCommand(WPARAM wParam) {
  // Esc comes as a command of IDCANCEL even where no such button exists, and no control has that number.
  if (LOWORD(wParam) == IDCANCEL) {
    if (closesOnEsc_) Close(CloseReason::User);
    return closesOnEsc_;
  }
  for (Control* control : controls_) {
    if (control->Id() == LOWORD(wParam)) {
      control->OnCommand(HIWORD(wParam));
      return true;
    }
  }
  return false;
}

bool Form::DispatchDraw(LPARAM lParam) {
  const auto& draw = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
  for (Control* control : controls_) {
    if (draw.CtlType == ODT_STATIC && control->Handle() == draw.hwndItem) {
      control->OnDraw(draw);
      return true;
    }
  }
  return false;
}

bool Form::DispatchNotify(LPARAM lParam) {
  const auto* header = reinterpret_cast<const NMHDR*>(lParam);
  for (Control* control : controls_) {
    if (control->Handle() == header->hwndFrom) {
      LRESULT result = 0;
      if (!control->OnNotify(*header, result)) return false;
      if (hwnd_) ::SetWindowLongPtrW(hwnd_, DWLP_MSGRESULT, result);
      return true;
    }
  }
  return false;
}

}  // namespace zq
