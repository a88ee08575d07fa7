// SystemLongWork: tells Windows of work that takes its time. What of it fails is left out: the work itself
// doesn't depend on it.
#pragma once

#include <windows.h>
#include <shobjidl.h>

#include <functional>
#include <string>
#include <utility>

#include "platform/LongWork.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

class SystemLongWork final : public LongWork {
 public:
  // `mainWindow` gives the window that refuses the end of the session, null when there is none.
  explicit SystemLongWork(std::function<HWND()> mainWindow) : mainWindow_(std::move(mainWindow)) {}

  void Begin(const std::string& reason) override;
  void ShowUncounted() override;
  void ShowPercent(int percent) override;
  void End() noexcept override;
  void CallUser() override;

 private:
  enum class Shown { Nothing, Uncounted, Percent };

  void Show(Shown shown, int percent);
  void Mark(HWND window) const;
  void Watch(HWND window);
  static LRESULT CALLBACK ButtonProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                          UINT_PTR id, DWORD_PTR work);

  std::function<HWND()> mainWindow_;
  ComPointer<ITaskbarList3> taskBar_;
  HWND held_ = nullptr;     // the window that holds up the session's end
  HWND watched_ = nullptr;  // the one whose button shows how far the work is
  Shown shown_ = Shown::Nothing;
  int percent_ = 0;
};

}  // namespace zq
