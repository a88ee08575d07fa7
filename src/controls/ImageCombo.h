// ImageCombo: a drop-down list whose items have a picture before their text.
#pragma once

#include <string>

#include "controls/Control.h"

namespace zq {

// Items and pictures are counted from 1.
class ImageCombo : public Control {
 public:
  using Control::Control;

  // The list of images stays the caller's, and outlives the control's window.
  void SetImageList(HIMAGELIST images) {
    ::SendMessageW(Handle(), CBEM_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
  }

  // Adds an item behind the others. Raises OutOfMemory if the system can't.
  void Add(const std::string& text, int image);
  int Count() const { return static_cast<int>(::SendMessageW(Handle(), CB_GETCOUNT, 0, 0)); }

  // Raises ElementNotFound if there is no such item.
  void Select(int item);
  int Selected() const { return static_cast<int>(::SendMessageW(Handle(), CB_GETCURSEL, 0, 0)) + 1; }

  // Raises ElementNotFound if there is no such item.
  std::string ItemText(int item) const;
};

}  // namespace zq
