// The command table: every tool of the menus and the tool bar, and the operation that each runs.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace zq {

enum class Operation : std::uint8_t {
  None,
  AddFiles,
  OpenJob,
  SaveJob,
  HelpContents,
  QuickWipeBin,
  LaunchManager,
  AddFolder,
  RemoveSelectedItem,
  Exit,
  ViewReport,
  EditFolderItem,
  Preferences,
  About,
  RunJobWipe,
  WipeFreeSpace,
  CloseJob,
  NewJob,
  DeleteOpenJob,
  WebPage,
};

// A key with or without Ctrl. The values are the system's virtual key codes.
struct Shortcut {
  std::uint16_t key = 0;  // 0 for none
  bool ctrl = false;
};

// A row of a menu or of the tool bar. A row with an empty name is a separator.
struct Tool {
  std::string_view name;  // its identity, case respected
  std::string_view caption;
  Shortcut shortcut;
  std::string_view smallPicture;
  std::string_view largePicture;
};

struct Menu {
  std::string_view name;
  std::string_view caption;
  std::span<const Tool> tools;
};

// The menus of the menu bar, and the tools of the tool bar, in order.
std::span<const Menu> Menus();
std::span<const Tool> ToolBarTools();

// The operation of a tool; None for a name that isn't in the table.
Operation OperationOf(std::string_view toolName);

}  // namespace zq
