#include "controls/DropMessages.h"

namespace zq {

bool AdmitDrops(ShellDrops& drops, WindowHandle window) {
  for (const std::uint32_t message : {kDropFilesMessage, kCopyDataMessage, kCopyGlobalMessage}) {
    if (!drops.AllowMessage(window, message)) return false;
  }
  drops.AcceptFiles(window, true);
  return true;
}

}  // namespace zq
