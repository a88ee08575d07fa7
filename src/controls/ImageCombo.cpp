#include "controls/ImageCombo.h"

#include <algorithm>
#include <iterator>

#include "controls/ScreenReaderName.h"
#include "platform/RunTimeError.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

wchar_t Upper(wchar_t letter) {
  ::CharUpperBuffW(&letter, 1);
  return letter;
}

}  // namespace

void ImageCombo::Attached() {
  ::SetWindowSubclass(DropDown(), &ImageCombo::SubclassProcedure, 0, reinterpret_cast<DWORD_PTR>(this));
  // The label stands in front of the whole; the focus goes to the list inside, which has nothing in front.
  NameForScreenReaders(DropDown(), WindowText(::GetWindow(Handle(), GW_HWNDPREV)));
}

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

void ImageCombo::FitList() {
  constexpr int kMostVisible = 12;
  // Room for whatever borders there are: a list that is a pixel short leaves out an item.
  const int borders = 2 * ::GetSystemMetrics(SM_CYEDGE);
  RECT closed{};
  ::GetWindowRect(DropDown(), &closed);
  const auto itemHeight = static_cast<int>(::SendMessageW(Handle(), CB_GETITEMHEIGHT, 0, 0));
  const int listHeight = std::clamp(Count(), 1, kMostVisible) * itemHeight + borders;
  // The height that is set is that of both; the control itself stays as high as it is.
  ::SetWindowPos(DropDown(), nullptr, 0, 0, closed.right - closed.left,
                 closed.bottom - closed.top + listHeight, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void ImageCombo::Select(int item) {
  if (item < 1 || item > Count()) throw RunTimeError(ErrorNumber::ElementNotFound);
  ::SendMessageW(Handle(), CB_SETCURSEL, static_cast<WPARAM>(item - 1), 0);
}

std::string ImageCombo::ItemText(int item) const {
  if (item < 1 || item > Count()) throw RunTimeError(ErrorNumber::ElementNotFound);
  return FromWide(WideText(item));
}

std::wstring ImageCombo::WideText(int item) const {
  wchar_t text[260] = L"";
  COMBOBOXEXITEMW wanted{};
  wanted.mask = CBEIF_TEXT;
  wanted.iItem = item - 1;
  wanted.pszText = text;
  wanted.cchTextMax = static_cast<int>(std::size(text));
  if (!::SendMessageW(Handle(), CBEM_GETITEMW, 0, reinterpret_cast<LPARAM>(&wanted))) return {};
  return wanted.pszText;  // which may be a text of the control's own in place of a copy
}

void ImageCombo::SelectByLetter(wchar_t letter) {
  const int count = Count();
  for (int step = 1; step <= count; ++step) {
    const int item = (Selected() - 1 + step) % count + 1;
    const std::wstring text = WideText(item);
    if (text.empty() || Upper(text.front()) != Upper(letter)) continue;
    Select(item);
    return;
  }
}

// Nothing is raised here: each item that is asked for is there.
LRESULT CALLBACK ImageCombo::SubclassProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                               UINT_PTR id, DWORD_PTR self) {
  if (message == WM_CHAR) {
    reinterpret_cast<ImageCombo*>(self)->SelectByLetter(static_cast<wchar_t>(wParam));
    return 0;
  }
  if (message == WM_NCDESTROY) ::RemoveWindowSubclass(hwnd, &ImageCombo::SubclassProcedure, id);
  return ::DefSubclassProc(hwnd, message, wParam, lParam);
}

}  // namespace zq
