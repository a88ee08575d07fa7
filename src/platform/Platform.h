// Platform: the services of the system, each behind an interface, handed together to what needs several.
#pragma once

#include "platform/LongWork.h"
#include "platform/ShellDrops.h"
#include "platform/WindowList.h"

namespace zq {

class Files;
class MessageBoxes;
class Process;
class Regional;
class Registry;

struct Platform {
  Files& files;
  MessageBoxes& messageBoxes;
  Process& process;
  Regional& regional;
  Registry& registry;
  LongWork& longWork = UntoldWork::Instance();
  WindowList& windows = NoWindows::Instance();
  ShellDrops& shellDrops = FreeShellDrops::Instance();
};

}  // namespace zq
