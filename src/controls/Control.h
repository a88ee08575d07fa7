// Control: a window of the system inside a form, with the members and events that the forms use.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <string>

#include "controls/Form.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

// The text of a window of ours, or its caption.
std::string WindowText(HWND hwnd);

// The form's present font, bold.
UniqueFont BoldFontOf(const Form& form);

// Bound to the control `id` of the form's template. Usable once the form has been created.
class Control {
 public:
  Control(Form& form, int id);
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control() = default;

  int Id() const { return id_; }
  HWND Handle() const { return hwnd_; }
  std::string Text() const;
  void SetText(const std::string& text);
  bool IsEnabled() const { return ::IsWindowEnabled(hwnd_) != FALSE; }
  void SetEnabled(bool enabled) { ::EnableWindow(hwnd_, enabled); }
  void SetVisible(bool visible) { ::ShowWindow(hwnd_, visible ? SW_SHOW : SW_HIDE); }
  void SetFocus() { ::SetFocus(hwnd_); }
  // In pixels of the form's client area.
  RECT Place() const;
  void Move(const RECT& rect);

 protected:
  Form& form() const { return form_; }
  // Called once the window exists.
  virtual void Attached() {}
  // The form's resolution is another; the control has its new place.
  virtual void DpiChanged() {}
  virtual void OnCommand(WORD) {}
  virtual bool OnNotify(const NMHDR&, LRESULT&) { return false; }
  virtual void OnDraw(const DRAWITEMSTRUCT&) {}

  // Has all of it drawn when the window is painted next. Asked again before that, which a running wipe does
  // many times, it costs no call of the system; so who uses it says in the drawing that it is Drawn.
  void DrawLater();
  void Drawn() { drawPending_ = false; }

 private:
  friend class Form;
  void Attach();

  Form& form_;
  const int id_;
  HWND hwnd_ = nullptr;
  bool drawPending_ = false;
  [[no_unique_address]] debug::Alive<debug::Kind::Control> alive_;
};

class Label : public Control {
 public:
  using Control::Control;
  void Repaint() { ::UpdateWindow(Handle()); }
  void SetBold();

 protected:
  void DpiChanged() override {
    if (font_) SetBold();
  }

 private:
  UniqueFont font_;
};

// Of several lines, owner-drawn: a text that has no room is drawn with an ellipsis in its middle. A new text
// is drawn when the window is painted, not each time that it is set.
class LongLabel : public Label {
 public:
  using Label::Label;
  void SetText(const std::string& text);

 protected:
  void OnDraw(const DRAWITEMSTRUCT& draw) override;
};

class Button : public Control {
 public:
  using Control::Control;
  std::function<void()> Click;

 protected:
  void OnCommand(WORD code) override {
    if (code == BN_CLICKED && Click) Click();
  }
};

class CheckBox : public Control {
 public:
  using Control::Control;
  std::function<void()> Click;  // by the user

  // 1 ticked, 0 clear.
  void SetValue(int value) {
    ::SendMessageW(Handle(), BM_SETCHECK, value == 1 ? BST_CHECKED : BST_UNCHECKED, 0);
  }
  int Value() const { return ::SendMessageW(Handle(), BM_GETCHECK, 0, 0) == BST_CHECKED ? 1 : 0; }

 protected:
  void OnCommand(WORD code) override {
    if (code == BN_CLICKED && Click) Click();
  }
};

class TextBox : public Control {
 public:
  using Control::Control;
  std::function<void()> Change;  // by the user or by code
  std::function<void()> GotFocus;

  void SelectAll() { ::SendMessageW(Handle(), EM_SETSEL, 0, -1); }

 protected:
  // As long a text as anybody likes.
  void Attached() override { ::SendMessageW(Handle(), EM_LIMITTEXT, 0, 0); }
  void OnCommand(WORD code) override {
    if (code == EN_CHANGE && Change) Change();
    if (code == EN_SETFOCUS && GotFocus) GotFocus();
  }
};

// A picture out of the resources, in the size that the template gives it at 96 dpi.
class Image : public Control {
 public:
  Image(Form& form, int id, const char* pictureName) : Control(form, id), pictureName_(pictureName) {}

 protected:
  void Attached() override { LoadSized(); }
  void DpiChanged() override { LoadSized(); }

 private:
  void LoadSized();

  const char* pictureName_;
  UniqueIcon icon_;
};

}  // namespace zq
