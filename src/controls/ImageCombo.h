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

  // Makes the list that drops down as high as its items, up to a dozen of them.
  void FitList();

  // Raises ElementNotFound if there is no such item.
  void Select(int item);
  int Selected() const { return static_cast<int>(::SendMessageW(Handle(), CB_GETCURSEL, 0, 0)) + 1; }

  // Raises ElementNotFound if there is no such item.
  std::string ItemText(int item) const;

 protected:
  // The system's control draws its items itself, so that typing doesn't find them: we do that.
  void Attached() override;

 private:
  static LRESULT CALLBACK SubclassProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR id, DWORD_PTR self);
  // The system's combo box inside.
  HWND DropDown() const {
    return reinterpret_cast<HWND>(::SendMessageW(Handle(), CBEM_GETCOMBOCONTROL, 0, 0));
  }
  // Selects the next item, once round, whose text begins with the letter in whatever case.
  void SelectByLetter(wchar_t letter);
  std::wstring WideText(int item) const;
};

}  // namespace zq
