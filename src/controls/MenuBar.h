// MenuBar: the menus of a window, each tool of which is a command.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "controls/MenuPictures.h"
#include "controls/Tools.h"

namespace zq {

class MenuBar {
 public:
  // Gives `owner` the menus. Their tools are commands from `firstId` on, in order; separators have none.
  // `menus` stays where it is for as long as the bar lives.
  void Create(HWND owner, std::span<const Menu> menus, UINT firstId);

  // Small pictures beside the captions, as they belong to `dpi` and the present colours.
  void LoadPictures(int dpi, MenuLook look = PresentMenuLook());

  // For the owner, which draws the pictures where the menus don't; false for what isn't theirs.
  bool OnMeasureItem(MEASUREITEMSTRUCT& item) const { return pictures_.Measure(item); }
  bool OnDrawItem(const DRAWITEMSTRUCT& item) const { return pictures_.Draw(item); }

  // The tools that are commands, in the order of their ids.
  const std::vector<const Tool*>& Tools() const { return tools_; }
  bool Holds(UINT id) const { return id >= firstId_ && id < firstId_ + tools_.size(); }

  void SetEnabled(UINT id, bool enabled);
  bool IsEnabled(UINT id) const;
  void SetChecked(UINT id, bool checked);

  std::string_view NameOf(HMENU menu) const;      // "" for a menu of somebody else's
  HMENU MenuOf(std::string_view menuName) const;  // null for an unknown name

 private:
  void ShowPicture(UINT id);

  HMENU bar_ = nullptr;  // the window destroys it, and with it its menus
  UINT firstId_ = 0;
  std::span<const Menu> menus_;
  std::vector<HMENU> popups_;       // in the order of `menus_`
  std::vector<const Tool*> tools_;  // the id is the place here behind the first
  std::vector<HMENU> popupOfTool_;  // beside `tools_`
  MenuPictures pictures_;
};

// The key as a menu shows it behind a caption: "Ctrl+N", "Delete"; "" for none.
std::string ShortcutText(const Shortcut& shortcut);

}  // namespace zq
