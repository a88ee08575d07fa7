// OptionButton: one of several choices that exclude each other. The template makes them one group.
#pragma once

#include "controls/Control.h"

namespace zq {

class OptionButton : public Control {
 public:
  using Control::Control;

  // Setting one clears the others of its group. The group's tab stop goes with it.
  void SetValue(bool value) {
    if (value) {
      for (HWND other = ::GetNextDlgGroupItem(form().Handle(), Handle(), FALSE); other && other != Handle();
           other = ::GetNextDlgGroupItem(form().Handle(), other, FALSE)) {
        ::SendMessageW(other, BM_SETCHECK, BST_UNCHECKED, 0);
      }
    }
    ::SendMessageW(Handle(), BM_SETCHECK, value ? BST_CHECKED : BST_UNCHECKED, 0);
  }
  bool Value() const { return ::SendMessageW(Handle(), BM_GETCHECK, 0, 0) == BST_CHECKED; }
};

}  // namespace zq
