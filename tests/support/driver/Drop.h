// Files dropped onto a window of another process.
#pragma once

#include <windows.h>
#include <oleidl.h>

#include <string>
#include <vector>

#include "support/driver/Window.h"

namespace zq::test {

// The shell's file list: a DROPFILES, then the paths, each with a zero, and one zero more.
std::vector<char> DropFilesBytes(const std::vector<std::string>& paths, POINT point = {});

// Posts WM_DROPFILES, as the shell does to a window that accepts files. The place is in the
// window's own coordinates.
void PostDroppedFiles(Window target, const std::vector<std::string>& paths, POINT client = {4, 4});

// Drags the paths as a shell's file list (CF_HDROP) from a window of our own with the real mouse,
// onto a point of the screen. Gives the effect that the target chose, DROPEFFECT_NONE when it took
// nothing. Throws a DriverError when the drag doesn't get on its way.
DWORD DragFilesTo(POINT screen, const std::vector<std::string>& paths);

// The same with the bytes of such a list, whatever they are. An empty list is promised to the target, and not
// handed over when it asks.
DWORD DragListTo(POINT screen, std::vector<char> list);

// Hands the paths as a file list to a class of COM that another process serves, as the shell does to the
// class of a verb. Gives the effect that it chose, once it has returned from the drop. Throws a DriverError
// when it isn't served or refuses.
DWORD DropFilesOnClass(REFCLSID classId, const std::vector<std::string>& paths);

}  // namespace zq::test
