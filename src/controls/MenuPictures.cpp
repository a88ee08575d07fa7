#include "controls/MenuPictures.h"

#include <uxtheme.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "controls/GreyedPicture.h"
#include "controls/Pictures.h"
#include "controls/WindowDc.h"

namespace zq {
namespace {

constexpr int kPicture = 16;  // pixels at 96 dpi
constexpr int kGap = 4;       // to the caption

// A system colour as 0x00RRGGBB.
std::uint32_t SystemColour(int index) {
  const COLORREF colour = ::GetSysColor(index);
  return static_cast<std::uint32_t>(GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour));
}

}  // namespace

MenuLook PresentMenuLook() {
  wchar_t themeFile[MAX_PATH] = {};
  if (!::IsAppThemed() || FAILED(::GetCurrentThemeName(themeFile, static_cast<int>(std::size(themeFile)),
                                                       nullptr, 0, nullptr, 0)))
    return MenuLook::Drawn;
  const std::wstring_view path = themeFile;
  const std::wstring_view name = path.substr(path.rfind(L'\\') + 1);
  constexpr std::wstring_view kAero = L"aero";
  const bool aero = ::CompareStringOrdinal(name.data(), static_cast<int>(std::min(name.size(), kAero.size())),
                                           kAero.data(), static_cast<int>(kAero.size()), TRUE) == CSTR_EQUAL;
  return aero ? MenuLook::Blended : MenuLook::Drawn;
}

void MenuPictures::Load(std::span<const Tool* const> tools, UINT firstId, int dpi, MenuLook look) {
  firstId_ = firstId;
  look_ = look;
  const int pixels = ScaleForDpi(kPicture, dpi);
  size_ = {pixels + ScaleForDpi(kGap, dpi), pixels};
  pictures_.clear();
  for (const Tool* tool : tools) {
    Picture& picture = pictures_.emplace_back();
    if (tool->smallPicture.empty()) continue;
    const std::string name(tool->smallPicture);
    picture.live = LoadAlphaPicture(name.c_str(), pixels, size_, {});
    picture.greyed = LoadAlphaPicture(name.c_str(), pixels, size_, [](std::span<std::uint32_t> all) {
      GreyPicture(all, SystemColour(COLOR_GRAYTEXT), SystemColour(COLOR_MENU));
    });
  }
}

const MenuPictures::Picture* MenuPictures::Of(UINT id) const {
  if (id < firstId_ || id - firstId_ >= pictures_.size()) return nullptr;
  const Picture& picture = pictures_[id - firstId_];
  return picture.live && picture.greyed ? &picture : nullptr;
}

HBITMAP MenuPictures::ForItem(UINT id, bool greyed) const {
  const Picture* picture = Of(id);
  if (!picture) return nullptr;
  if (look_ == MenuLook::Drawn) return HBMMENU_CALLBACK;
  return greyed ? picture->greyed.Get() : picture->live.Get();
}

bool MenuPictures::Measure(MEASUREITEMSTRUCT& item) const {
  if (item.CtlType != ODT_MENU || !Of(item.itemID)) return false;
  item.itemWidth = static_cast<UINT>(size_.cx);
  item.itemHeight = static_cast<UINT>(size_.cy);
  return true;
}

// The menu has drawn the ground, highlighted or not, which stays wherever the picture is transparent.
bool MenuPictures::Draw(const DRAWITEMSTRUCT& item) const {
  const Picture* picture = item.CtlType == ODT_MENU ? Of(item.itemID) : nullptr;
  if (!picture) return false;
  const bool greyed = (item.itemState & (ODS_GRAYED | ODS_DISABLED)) != 0;
  const UniqueDc memory(::CreateCompatibleDC(item.hDC));
  const SelectedObject selected(memory.Get(), greyed ? picture->greyed.Get() : picture->live.Get());
  const LONG top = (item.rcItem.top + item.rcItem.bottom - size_.cy) / 2;
  const BLENDFUNCTION overGround{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
  ::AlphaBlend(item.hDC, item.rcItem.left, top, size_.cx, size_.cy, memory.Get(), 0, 0, size_.cx, size_.cy,
               overGround);
  return true;
}

}  // namespace zq
