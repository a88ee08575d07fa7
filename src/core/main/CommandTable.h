// The command table: every tool of the menus and the tool bar, each with the operation that it runs.
#pragma once

#include <string_view>

#include "controls/Tools.h"

namespace zq {

class Commands;

struct Command {
  Tool tool;
  void (Commands::*operation)() = nullptr;  // null: the tool does nothing
};

// The bars of the main window as the table has them.
BarsDesign MainBars();

// The command of a tool; null for a name that isn't in the table.
const Command* CommandOf(std::string_view toolName);

}  // namespace zq
