#include "controls/SystemLongWork.h"

#include <commctrl.h>

#include "platform/win32/Wide.h"

namespace zq {
namespace {

// Comes to a window once its button is on the task bar, and again when the task bar has begun anew.
UINT ButtonCreated() {
  static const UINT message = ::RegisterWindowMessageW(L"TaskbarButtonCreated");
  return message;
}

// The window of this thread that has a button on the task bar now: the one that is shown and that no other
// one owns. Null for none.
HWND WindowWithButton() {
  HWND found = nullptr;
  ::EnumThreadWindows(
      ::GetCurrentThreadId(),
      [](HWND window, LPARAM result) -> BOOL {
        if (!::IsWindowVisible(window) || ::GetWindow(window, GW_OWNER) ||
            (::GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TOOLWINDOW) != 0)
          return TRUE;
        *reinterpret_cast<HWND*>(result) = window;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

}  // namespace

void SystemLongWork::Begin(const std::string& reason) {
  ::SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED);
  held_ = mainWindow_();
  if (held_ && !::ShutdownBlockReasonCreate(held_, ToWide(reason).c_str())) held_ = nullptr;
  ITaskbarList3* taskBar = nullptr;
  if (SUCCEEDED(::CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3,
                                   reinterpret_cast<void**>(&taskBar)))) {
    taskBar_.reset(taskBar);
    if (FAILED(taskBar_->HrInit())) taskBar_.reset();
  }
}

void SystemLongWork::ShowUncounted() {
  Show(Shown::Uncounted, 0);
}

void SystemLongWork::ShowPercent(int percent) {
  Show(Shown::Percent, percent);
}

void SystemLongWork::End() noexcept {
  Show(Shown::Nothing, 0);
  if (watched_) ::RemoveWindowSubclass(watched_, &ButtonProcedure, 0);
  watched_ = nullptr;
  taskBar_.reset();
  if (held_) ::ShutdownBlockReasonDestroy(held_);
  held_ = nullptr;
  ::SetThreadExecutionState(ES_CONTINUOUS);
}

// The button stays marked until the user comes to the window.
void SystemLongWork::CallUser() {
  const HWND window = mainWindow_();
  if (!window || ::GetForegroundWindow() == window) return;
  FLASHWINFO flash{};
  flash.cbSize = sizeof flash;
  flash.hwnd = window;
  flash.dwFlags = FLASHW_ALL | FLASHW_TIMERNOFG;
  flash.uCount = 3;
  ::FlashWindowEx(&flash);
}

void SystemLongWork::Show(Shown shown, int percent) {
  if (!taskBar_) return;
  // To look for the window takes its time, and most events of the work bring nothing new.
  const bool isNew = shown != shown_ || percent != percent_;
  if (!isNew && watched_ && ::IsWindowVisible(watched_)) return;
  const HWND window = WindowWithButton();
  if (window == watched_ && !isNew) return;
  shown_ = shown;
  percent_ = percent;
  Watch(window);
  if (watched_) Mark(watched_);
}

void SystemLongWork::Mark(HWND window) const {
  switch (shown_) {
    case Shown::Nothing:
      taskBar_->SetProgressState(window, TBPF_NOPROGRESS);
      break;
    case Shown::Uncounted:
      taskBar_->SetProgressState(window, TBPF_INDETERMINATE);
      break;
    case Shown::Percent:
      taskBar_->SetProgressState(window, TBPF_NORMAL);
      taskBar_->SetProgressValue(window, static_cast<ULONGLONG>(percent_), 100);
      break;
  }
}

// A button that comes later than its window is marked when it comes.
void SystemLongWork::Watch(HWND window) {
  if (window == watched_) return;
  if (watched_) ::RemoveWindowSubclass(watched_, &ButtonProcedure, 0);
  watched_ = window;
  if (!window) return;
  // The task bar may run with fewer rights than this process.
  ::ChangeWindowMessageFilterEx(window, ButtonCreated(), MSGFLT_ALLOW, nullptr);
  if (!::SetWindowSubclass(window, &ButtonProcedure, 0, reinterpret_cast<DWORD_PTR>(this)))
    watched_ = nullptr;
}

LRESULT CALLBACK SystemLongWork::ButtonProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                                 UINT_PTR id, DWORD_PTR work) {
  auto& self = *reinterpret_cast<SystemLongWork*>(work);
  if (message == WM_NCDESTROY) {
    ::RemoveWindowSubclass(window, &ButtonProcedure, id);
    if (self.watched_ == window) self.watched_ = nullptr;
  } else if (message == ButtonCreated() && self.taskBar_) {
    self.Mark(window);
  }
  return ::DefSubclassProc(window, message, wParam, lParam);
}

}  // namespace zq
