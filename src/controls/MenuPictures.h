// MenuPictures: the small pictures beside the captions of a menu.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>
#include <vector>

#include "controls/Tools.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

// How a menu shows a picture. Menus with a visual style blend a bitmap's alpha channel with whatever is below
// it, and would lose that style with a picture that somebody else draws. All others copy or invert a bitmap's
// pixels, black where it is transparent: there the window that owns the menu draws.
enum class MenuLook { Blended, Drawn };
MenuLook PresentMenuLook();

class MenuPictures {
 public:
  // Those of `tools`, which are the commands from `firstId` on, in the size and with the gap to the caption
  // that belong to `dpi`, greyed in the present colours. The bitmaps before are gone: menus that show them
  // are told the new ones at once.
  void Load(std::span<const Tool* const> tools, UINT firstId, int dpi, MenuLook look);

  // What a menu's item is given for its picture; null for a tool without one.
  HBITMAP ForItem(UINT id, bool greyed) const;

  // For the window that is asked to draw; false for what is none of these pictures.
  bool Measure(MEASUREITEMSTRUCT& item) const;
  bool Draw(const DRAWITEMSTRUCT& item) const;

 private:
  struct Picture {
    UniqueBitmap live;
    UniqueBitmap greyed;
  };
  const Picture* Of(UINT id) const;

  UINT firstId_ = 0;
  SIZE size_{};
  MenuLook look_ = MenuLook::Drawn;
  std::vector<Picture> pictures_;  // the id is the place here behind the first
};

}  // namespace zq
