// DialogScaling: a dialog's size, font and controls at the resolution of the monitor that it is on.
#pragma once

#include <windows.h>

#include <vector>

#include "platform/win32/UniqueHandle.h"

namespace zq {

// Does what the system's dialog manager does for some dialogs on some systems when a window comes to a
// monitor of another resolution, and does it from the sizes of the start, so that the way there and back
// leaves no rounding. A fixed dialog takes the size that its template has in the new font; a window that can
// be sized keeps its own, scaled.
class DialogScaling {
 public:
  // Once the dialog exists. From now on the dialog manager leaves it as it is.
  void Attach(HWND dialog);

  int Dpi() const { return dpi_; }
  HFONT Font() const { return font_ ? font_.Get() : designFont_; }

  // The whole window's size that belongs to `dpi`.
  SIZE WindowSizeAt(int dpi);

  // Gives the dialog's font to the controls that had the former one, and places the controls anew. The window
  // stays as it is.
  void ChangeTo(int dpi);

 private:
  struct Child {
    HWND window;
    RECT design;  // in the dialog's client area, at the resolution of the start
    RECT placed;  // where it was put last
  };
  struct Units {
    int x;
    int y;
  };

  void RememberDesign();
  UniqueFont FontAt(int dpi) const;
  Units UnitsOf(HFONT font) const;
  bool CanBeSized() const;
  SIZE FrameAt(int dpi) const;

  HWND dialog_ = nullptr;
  int dpi_ = 96;
  int designDpi_ = 0;  // 0 as long as nothing has changed
  HFONT designFont_ = nullptr;
  SIZE designClient_{};
  UniqueFont font_;
  std::vector<Child> children_;
};

}  // namespace zq
