// Form: the base of every window of the program, made from a dialog template.
//
// A form is created hidden and can be filled before it is shown; it is shown without a modal state or
// with one, and can live on hidden. Closing it asks QueryUnload, runs Unloaded, destroys the window and
// gives up the form's default instance (see Default.h).
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controls/DialogScaling.h"
#include "debug/LiveCount.h"

namespace zq {

class Control;

enum class CloseReason { User, Program };

class Form {
 public:
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;
  virtual ~Form();

  // Makes the hidden window and runs Load. What Load raises goes to the caller, with the window gone.
  void Create();

  void Show();
  void Hide();
  // Disables `owner`, centres the form over it and runs a message loop until the form closes.
  void ShowModal(HWND owner);
  void Repaint();

  // Closes the form for the program. QueryUnload is asked, and may refuse.
  void Unload();

  HWND Handle() const { return hwnd_; }
  bool IsVisible() const { return ::IsWindowVisible(hwnd_) != FALSE; }
  void SetCaption(const std::string& text);
  // That the window is laid out for: its monitor's.
  int Dpi() const { return scaling_.Dpi(); }

  // The form of a top-level window, or null for a window that isn't a form's.
  static Form* FromHandle(HWND hwnd);

  // True if the message was a shortcut of this form and has been carried out.
  virtual bool TranslateShortcut(MSG&) { return false; }

  // A closed form is destroyed once none of its code is on the stack any more.
  static void Retire(std::unique_ptr<Form> form);
  static void DestroyClosed();

  // For Default: what gives up the instance when the form has closed.
  void OnClosed(std::function<void()> closed) { closed_ = std::move(closed); }

 protected:
  explicit Form(int dialogId) : dialogId_(dialogId) {}

  virtual void Load() {}
  virtual bool QueryUnload(CloseReason) { return true; }  // false keeps the form open
  virtual void Unloaded() {}
  virtual void Activated() {}
  // The window has come to a monitor of another resolution. Size, font and the controls of the template have
  // followed; what the form sizes itself, such as lists of pictures and columns, is to follow now.
  virtual void DpiChanged() {}
  // Shows the form by a command of ShowWindow; the first time its first control gets the focus, or the one
  // that StartAt names.
  void ShowAs(int showCommand);
  // Where the focus is once the form is shown for the first time. A constructor's statement.
  void StartAt(const Control& control) { start_ = &control; }
  // Esc asks for what the close box asks for. A constructor's statement; without it Esc does nothing.
  void CloseOnEsc() { closesOnEsc_ = true; }
  // A message that the form handles itself gives its result.
  virtual std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

 private:
  friend class Control;

  static INT_PTR CALLBACK DialogProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
  INT_PTR Process(UINT message, WPARAM wParam, LPARAM lParam);
  bool DispatchCommand(WPARAM wParam);
  bool DispatchDraw(LPARAM lParam);
  bool DispatchNotify(LPARAM lParam);
  void Close(CloseReason reason);
  void FollowDpi(int dpi, const RECT& place);

  const int dialogId_;
  HWND hwnd_ = nullptr;
  std::optional<std::string> caption_;  // the last that was set
  HWND modalOwner_ = nullptr;
  bool modal_ = false;
  bool focusGiven_ = false;
  bool closesOnEsc_ = false;
  const Control* start_ = nullptr;  // null for the first one
  int depth_ = 0;                   // how often this form's code is on the stack
  std::vector<Control*> controls_;
  DialogScaling scaling_;
  std::function<void()> closed_;
  [[no_unique_address]] debug::Alive<debug::Kind::Form> alive_;
};

}  // namespace zq
