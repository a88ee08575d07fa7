// All that the walk has to come by: the program's commands, its windows and its message boxes.
//
// Commands are those of the program's own table, and windows those of the templates in Zeroquill.exe: a new
// one makes the walk fail until a scene visits it. A new message box gets its row in Boxes.cpp; lint.boxes
// tells when a sentence of the program has none.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "support/driver/MessageBoxView.h"

namespace zq::test {

// A message box as the program shows it.
struct BoxRow {
  std::string_view id;  // in the names of pictures
  std::string_view title;
  std::string_view text;  // each {} stands for a text that differs
  BoxIcon icon;
  std::vector<std::string> buttons;  // the first one is the default
  // For one that the walk can't provoke from outside the process: why, and the test that shows it.
  std::string_view elsewhere = {};
};

std::span<const BoxRow> Boxes();

// Throws a DriverError for an id without a row.
const BoxRow& BoxOfId(std::string_view id);

// A window of a template, or one of the system's that the program brings up.
struct WindowRow {
  int templateId;  // 0 for the system's
  std::string_view id;
  std::string_view elsewhere = {};  // as for a box
};

std::span<const WindowRow> WindowRows();

// The numbers of the dialog templates in a program's file.
std::vector<int> TemplatesIn(const std::string& program);

// The names of all tools that have an operation, those of the menus first.
std::vector<std::string> CommandNames();

// What the main window is told by WM_COMMAND for a tool. Throws a DriverError for a name that isn't in the
// table.
int CommandIdOf(std::string_view toolName);

// Whether `text` is what `pattern` says, in which each {} stands for any text.
bool IsOfPattern(std::string_view text, std::string_view pattern);

}  // namespace zq::test
