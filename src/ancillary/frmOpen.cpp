#include "ancillary/frmOpen.h"

#include <utility>

#include "controls/Pictures.h"
#include "platform/Process.h"

namespace zq {
namespace {

constexpr UINT_PTR kTimer1 = 1;
constexpr UINT kTimer1Milliseconds = 2000;

struct SplashPicture {
  int dpi;  // drawn for this resolution
  const char* name;
};

constexpr SplashPicture kPictures[] = {{96, "splash96"}, {144, "splash144"}, {192, "splash192"}};

// The largest picture that isn't drawn for more than `dpi`: never scaled, so always crisp.
const char* PictureFor(int dpi) {
  const char* name = kPictures[0].name;
  for (const SplashPicture& picture : kPictures) {
    if (picture.dpi <= dpi) name = picture.name;
  }
  return name;
}

}  // namespace

frmOpen::frmOpen(Platform& platform, std::function<void()> showMain)
    : Form(IDD_frmOpen), platform_(platform), showMain_(std::move(showMain)) {
}

void frmOpen::Load() {
  ShowPicture();
  PrevInstanceFound = false;
  if (platform_.process.EarlierInstanceRuns()) {
    PrevInstanceFound = true;
    Unload();
    return;
  }
  ::SetTimer(Handle(), kTimer1, kTimer1Milliseconds, nullptr);
}

// The window takes exactly the picture's size, in the middle of the screen.
void frmOpen::ShowPicture() {
  UniqueBitmap picture = LoadPng(PictureFor(Dpi()));
  BITMAP size{};
  if (!picture || !::GetObjectW(picture.Get(), sizeof size, &size)) return;
  ::SendMessageW(Picture1.Handle(), STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(picture.Get()));
  picture_ = std::move(picture);  // the one before is shown until here
  Picture1.Move({0, 0, size.bmWidth, size.bmHeight});
  RECT work{};
  ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  ::SetWindowPos(Handle(), nullptr, (work.left + work.right - size.bmWidth) / 2,
                 (work.top + work.bottom - size.bmHeight) / 2, size.bmWidth, size.bmHeight,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

std::optional<LRESULT> frmOpen::OnMessage(UINT message, WPARAM wParam, LPARAM) {
  if (message != WM_TIMER || wParam != kTimer1) return std::nullopt;
  Timer1_Timer();
  return 0;
}

void frmOpen::Timer1_Timer() {
  // Loading the main window can show a message box, whose loop would bring the next tick.
  if (timerFired_) return;
  timerFired_ = true;
  Hide();
  showMain_();
  ::KillTimer(Handle(), kTimer1);
  Unload();
}

void frmOpen::Unloaded() {
  // Closed by the user meanwhile, it leaves nothing behind that would ever show a window, but a process
  // that turns away each later start.
  if (PrevInstanceFound || !timerFired_) platform_.process.End();
}

}  // namespace zq
