// DropDownList: a list that drops down, of texts to choose one from.
#pragma once

#include "controls/Control.h"
#include "platform/win32/Wide.h"

namespace zq {

class DropDownList : public Control {
 public:
  using Control::Control;

  void Add(const std::string& text) {
    ::SendMessageW(Handle(), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(text).c_str()));
  }
  // A text that isn't among the items leaves the choice as it is.
  void Select(const std::string& text) {
    const LRESULT item = ::SendMessageW(Handle(), CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                        reinterpret_cast<LPARAM>(ToWide(text).c_str()));
    if (item != CB_ERR) ::SendMessageW(Handle(), CB_SETCURSEL, static_cast<WPARAM>(item), 0);
  }
};

}  // namespace zq
