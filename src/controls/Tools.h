// The types of which the bars are made: what whoever owns a `DockStudio` says about its menus, its tool bar
// and its status bar.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace zq {

// A key with or without Ctrl. The values are the system's virtual key codes.
struct Shortcut {
  std::uint16_t key = 0;  // 0 for none
  bool ctrl = false;
};

// A row of a menu or a button of the tool bar. One with an empty name is a separator. The texts are constants
// of the program: they outlive the bars.
struct Tool {
  std::string_view name;  // its identity, case respected
  std::string_view caption;
  Shortcut shortcut;
  std::string_view smallPicture;  // "" for none; in menus
  std::string_view largePicture;  // on the tool bar
  std::string_view tip = {};      // what it does, told on the tool bar where the pointer rests
  Shortcut tipShortcut = {};      // the key of the same command elsewhere, told with it
};

struct Menu {
  std::string_view name;
  std::string_view caption;
  std::vector<Tool> tools;
};

// A part of the status bar, in which a text stands.
struct Panel {
  std::string_view name;
  std::string_view text;  // at first
  int width = 0;          // in pixels at 96 dpi; 0 takes what the others leave
};

struct BarsDesign {
  std::vector<Menu> menus;
  std::vector<Tool> toolBar;                // a separator begins a further band
  std::vector<std::string_view> bandNames;  // what is read out for each band
  std::vector<Panel> panels;
};

}  // namespace zq
