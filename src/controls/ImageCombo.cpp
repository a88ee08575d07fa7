#include "controls/ImageCombo.h"

#include "platform/RunTimeError.h"
#include "platform/win32/Wide.h"

namespace zq {

void ImageCombo::Add(const std::string& text, int image) {
  std::wstring wide = ToWide(text);
  COMBOBOXEXITEMW item{};
  item.mask = CBEIF_TEXT | CBEIF_IMAGE | CBEIF_SELECTEDIMAGE;
  item.iItem = -1;  // at the end
  item.pszText = wide.data();
  item.iImage = image - 1;
  item.iSelectedImage = image - 1;
  if (::SendMessageW(Handle(), CBEM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)) < 0)
    throw RunTimeError(ErrorNumber::OutOfMemory);
}

void ImageCombo::Select(int item) {
  if (item < 1 || item > Count()) throw RunTimeError(ErrorNumber::ElementNotFound);
  ::SendMessageW(Handle(), CB_SETCURSEL, static_cast<WPARAM>(item - 1), 0);
}

std::string ImageCombo::ItemText(int item) const {
  if (item < 1 || item > Count()) throw RunTimeError(ErrorNumber::ElementNotFound);
  wchar_t text[260] = L"";
  COMBOBOXEXITEMW wanted{};
  wanted.mask = CBEIF_TEXT;
  wanted.iItem = item - 1;
  wanted.pszText = text;
  wanted.cchTextMax = static_cast<int>(std::size(text));
  if (!::SendMessageW(Handle(), CBEM_GETITEMW, 0, reinterpret_cast<LPARAM>(&wanted)))
    throw RunTimeError(ErrorNumber::ElementNotFound);
  // The control may give a text of its own in place of a copy.
  return FromWide(wanted.pszText);
}

}  // namespace zq
