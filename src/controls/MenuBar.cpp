#include "controls/MenuBar.h"

#include <utility>

#include "platform/win32/Wide.h"

namespace zq {
namespace {

struct KeyName {
  std::uint16_t key;
  const char* name;
};

constexpr KeyName kKeyNames[] = {{VK_DELETE, "Delete"}, {VK_F1, "F1"}, {VK_F10, "F10"}};

std::string NameOfKey(std::uint16_t key) {
  for (const KeyName& row : kKeyNames) {
    if (row.key == key) return row.name;
  }
  return std::string(1, static_cast<char>(key));  // a letter or a digit is its own code
}

}  // namespace

std::string ShortcutText(const Shortcut& shortcut) {
  if (!shortcut.key) return {};
  return (shortcut.ctrl ? "Ctrl+" : "") + NameOfKey(shortcut.key);
}

void MenuBar::Create(HWND owner, std::span<const Menu> menus, UINT firstId) {
  menus_ = menus;
  firstId_ = firstId;
  bar_ = ::CreateMenu();
  for (const Menu& menu : menus) {
    const HMENU popup = ::CreatePopupMenu();
    for (const Tool& tool : menu.tools) {
      if (tool.name.empty()) {
        ::AppendMenuW(popup, MF_SEPARATOR, 0, nullptr);
        continue;
      }
      std::string text(tool.caption);
      if (tool.shortcut.key) text += "\t" + ShortcutText(tool.shortcut);
      ::AppendMenuW(popup, MF_STRING, firstId + tools_.size(), ToWide(text).c_str());
      tools_.push_back(&tool);
      popupOfTool_.push_back(popup);
    }
    popups_.push_back(popup);
    ::AppendMenuW(bar_, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), ToWide(menu.caption).c_str());
  }
  ::SetMenu(owner, bar_);
}

void MenuBar::LoadPictures(int dpi, MenuLook look) {
  MenuPictures pictures;
  pictures.Load(tools_, firstId_, dpi, look);
  std::swap(pictures_, pictures);
  for (std::size_t i = 0; i < tools_.size(); ++i) ShowPicture(static_cast<UINT>(firstId_ + i));
}  // the pictures before go only now that no item shows them

void MenuBar::ShowPicture(UINT id) {
  MENUITEMINFOW item{};
  item.cbSize = sizeof item;
  item.fMask = MIIM_BITMAP;
  item.hbmpItem = pictures_.ForItem(id, !IsEnabled(id));
  if (item.hbmpItem) ::SetMenuItemInfoW(popupOfTool_[id - firstId_], id, FALSE, &item);
}

void MenuBar::SetEnabled(UINT id, bool enabled) {
  ::EnableMenuItem(popupOfTool_[id - firstId_], id, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
  ShowPicture(id);
}

bool MenuBar::IsEnabled(UINT id) const {
  return (::GetMenuState(popupOfTool_[id - firstId_], id, MF_BYCOMMAND) & MF_GRAYED) == 0;
}

void MenuBar::SetChecked(UINT id, bool checked) {
  ::CheckMenuItem(popupOfTool_[id - firstId_], id,
                  MF_BYCOMMAND | static_cast<UINT>(checked ? MF_CHECKED : MF_UNCHECKED));
}

std::string_view MenuBar::NameOf(HMENU menu) const {
  for (std::size_t i = 0; i < popups_.size(); ++i) {
    if (popups_[i] == menu) return menus_[i].name;
  }
  return {};
}

HMENU MenuBar::MenuOf(std::string_view menuName) const {
  for (std::size_t i = 0; i < popups_.size(); ++i) {
    if (menus_[i].name == menuName) return popups_[i];
  }
  return nullptr;
}

}  // namespace zq
