// ProgressBarEx: a progress bar with its percentage as text on it, in two looks.
#pragma once

#include <functional>

#include "controls/Control.h"
#include "controls/SystemColours.h"

namespace zq {

// The looks: the stored one, and the plain bar of one colour.
inline constexpr int kProgressStylePlain = 0;
inline constexpr int kProgressStyleVisual = 5;

inline constexpr COLORREF kProgressColourStored = 0xC56A31;
inline constexpr COLORREF kProgressColourPlain = 0x2BD228;

// Painted by us over the system's progress class, and answers for its position: a screen reader asks for
// that.
class ProgressBarEx : public Control {
 public:
  using Control::Control;

  // In percent. A value beyond 0 to 100 is kept as it is and drawn as an empty or a full bar.
  void SetValue(int value);
  int Value() const { return value_; }

  void SetStyle(int style);
  void SetColour(COLORREF colour);

  // Whether a contrast theme is on, whose colours win; a test says so itself.
  std::function<bool()> ContrastTheme = IsContrastTheme;

  // The plain green look, for users who have switched visual styles off.
  void UsePlainLook() {
    SetStyle(kProgressStylePlain);
    SetColour(kProgressColourPlain);
  }

 protected:
  void Attached() override;

 private:
  static LRESULT CALLBACK SubclassProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR id, DWORD_PTR self);
  void Paint(HDC target) const;

  int value_ = 0;
  int style_ = kProgressStyleVisual;
  COLORREF colour_ = kProgressColourStored;
};

}  // namespace zq
