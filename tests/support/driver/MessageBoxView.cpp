#include "support/driver/MessageBoxView.h"

#include <algorithm>
#include <array>
#include <optional>

#include "support/driver/Picture.h"

namespace zq::test {
namespace {

struct KnownIcon {
  BoxIcon icon;
  WORD resource;  // the number of the system's icon, IDI_INFORMATION and so on
  const char* name;
};

constexpr std::array<KnownIcon, 4> kIcons = {{
    {BoxIcon::Information, 32516, "information"},
    {BoxIcon::Question, 32514, "question"},
    {BoxIcon::Warning, 32515, "warning"},
    {BoxIcon::Error, 32513, "error"},
}};

bool IsButton(Window window) {
  return window.ClassName() == "Button";
}
bool IsStatic(Window window) {
  return window.ClassName() == "Static";
}
bool IsIconStatic(Window window) {
  return IsStatic(window) && (window.Style() & SS_TYPEMASK) == SS_ICON && window.IsVisible();
}

// The picture that the icon gives on a plain ground.
Picture DrawIconOn(COLORREF ground, WORD resource, int width, int height) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  HDC dc = ::CreateCompatibleDC(nullptr);
  HBITMAP bitmap = ::CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ old = ::SelectObject(dc, bitmap);
  HBRUSH brush = ::CreateSolidBrush(ground);
  const RECT all{0, 0, width, height};
  ::FillRect(dc, &all, brush);
  ::DrawIconEx(dc, 0, 0, ::LoadIconW(nullptr, MAKEINTRESOURCEW(resource)), width, height, 0, nullptr,
               DI_NORMAL);
  ::GdiFlush();
  const auto* pixels = static_cast<const std::uint32_t*>(bits);
  picture.pixels.assign(pixels, pixels + width * height);
  for (std::uint32_t& pixel : picture.pixels) pixel &= 0x00FFFFFF;
  ::DeleteObject(brush);
  ::SelectObject(dc, old);
  ::DeleteObject(bitmap);
  ::DeleteDC(dc);
  return picture;
}

// Handles of icons mean nothing in another process, so the icon is told by what is on the screen:
// the one of the four whose drawing agrees in nearly all pixels.
std::optional<BoxIcon> ReadIcon(Window iconStatic) {
  const Picture seen = GrabScreen(iconStatic.ScreenRect());
  if (seen.pixels.empty()) return std::nullopt;
  const std::uint32_t corner = seen.At(0, 0);
  const COLORREF ground = RGB(corner >> 16 & 0xFF, corner >> 8 & 0xFF, corner & 0xFF);
  for (const KnownIcon& known : kIcons) {
    const Picture drawn = DrawIconOn(ground, known.resource, seen.width, seen.height);
    std::size_t equal = 0;
    for (std::size_t i = 0; i < seen.pixels.size(); ++i) equal += seen.pixels[i] == drawn.pixels[i];
    if (equal * 100 >= seen.pixels.size() * 98) return known.icon;
  }
  return std::nullopt;
}

}  // namespace

std::string ToString(BoxIcon icon) {
  for (const KnownIcon& known : kIcons) {
    if (known.icon == icon) return known.name;
  }
  return "none";
}

bool MessageBoxView::IsMessageBox(Window window) {
  if (window.ClassName() != "#32770") return false;
  int texts = 0;
  int icons = 0;
  int buttons = 0;
  for (Window child : window.Children()) {
    if (!child.IsVisible()) continue;
    if (IsButton(child)) {
      const int id = child.Id();
      if (id < IDOK || id > IDCONTINUE) return false;
      ++buttons;
    } else if (IsIconStatic(child)) {
      ++icons;
    } else if (IsStatic(child)) {
      ++texts;
    } else {
      return false;
    }
  }
  return texts == 1 && icons <= 1 && buttons >= 1;
}

MessageBoxView::MessageBoxView(Window box) : window(box), title(box.Text()) {
  std::vector<Window> buttonWindows;
  for (Window child : box.Children()) {
    if (!child.IsVisible()) continue;
    if (IsButton(child)) {
      buttonWindows.push_back(child);
    } else if (IsIconStatic(child)) {
      // A box without an icon still has the place for it.
      if (child.Send(STM_GETICON) == 0) continue;
      Await("the icon of the box '" + title + "' to be seen, and known", [&] {
        const std::optional<BoxIcon> read = ReadIcon(child);
        if (read) icon = *read;
        return read.has_value();
      });
    } else {
      text = child.Text();
    }
  }
  std::sort(buttonWindows.begin(), buttonWindows.end(),
            [](Window a, Window b) { return a.ScreenRect().left < b.ScreenRect().left; });

  // The system marks it by its style where it isn't the dialog's first; Wine by the focus alone.
  const LRESULT defaultId = box.Send(DM_GETDEFID);
  const auto isDefault = [&](Window button) {
    return (button.Style() & BS_TYPEMASK) == BS_DEFPUSHBUTTON || button.HasFocus() ||
           (HIWORD(defaultId) == DC_HASDEFID && button.Id() == LOWORD(defaultId));
  };
  for (Window button : buttonWindows) {
    buttons.push_back(WithoutAccessKey(button.Text()));
    if (isDefault(button)) defaultButton = buttons.back();
  }
}

void MessageBoxView::Answer(std::string_view caption) const {
  window.Child(caption).Press();
  window.WaitGone();
}

void MessageBoxView::Dismiss() const {
  window.Close();
  window.WaitGone();
}

}  // namespace zq::test
