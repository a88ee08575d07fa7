// The program's pictures on the grounds that they come to stand on.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Drawing.h"
#include "Ink.h"
#include "platform/win32/Wide.h"

namespace zq::test {
namespace {

constexpr int kPixels = 32;

// The outline of a picture that is pale within, in per cent of what is drawn.
constexpr int kLeastPart = 15;

std::vector<std::wstring> PictureNames() {
  std::vector<std::wstring> names;
  ::EnumResourceNamesW(
      nullptr, MAKEINTRESOURCEW(14),  // RT_GROUP_ICON
      [](HMODULE, LPCWSTR, LPWSTR name, LONG_PTR param) -> BOOL {
        if (!IS_INTRESOURCE(name)) reinterpret_cast<std::vector<std::wstring>*>(param)->push_back(name);
        return TRUE;
      },
      reinterpret_cast<LONG_PTR>(&names));
  return names;
}

// How much of what is drawn stands out from the ground by the 3:1 that a sign needs, in per cent.
int SharpPart(HICON icon, COLORREF ground) {
  // Where two grounds come out alike, the picture covers them.
  const Picture here = DrawIcon(icon, ground, kPixels);
  const Picture elsewhere = DrawIcon(icon, ground ^ 0xFFFFFF, kPixels);
  int drawn = 0;
  int sharp = 0;
  for (std::size_t i = 0; i < here.pixels.size(); ++i) {
    if (here.pixels[i] != elsewhere.pixels[i]) continue;
    ++drawn;
    if (Contrast(ColourOf(here.pixels[i]), ground) >= 3) ++sharp;
  }
  return drawn == 0 ? 0 : 100 * sharp / drawn;
}

TEST(Pictures, CanBeMadeOutOnWhiteAndOnTheBlackOfAContrastTheme) {
  const std::vector<std::wstring> names = PictureNames();
  EXPECT_GE(names.size(), 30U);
  for (const std::wstring& name : names) {
    const UniqueIcon icon(static_cast<HICON>(::LoadImageW(::GetModuleHandleW(nullptr), name.c_str(),
                                                          IMAGE_ICON, kPixels, kPixels, LR_DEFAULTCOLOR)));
    ASSERT_TRUE(icon) << FromWide(name);
    for (const COLORREF ground : {RGB(255, 255, 255), RGB(0, 0, 0)})
      EXPECT_GE(SharpPart(icon.Get(), ground), kLeastPart) << FromWide(name) << " on " << ground;
  }
}

}  // namespace
}  // namespace zq::test
