// Wipes the files of a folder by the real program, each as a row of its job, for bench.sh: prints the seconds
// from the answer to its question to the box that tells the end.
//   rows_bench FOLDER      on drive C:; it is moved to C:\w, since all paths have to fit on a command line
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <string>

#include "support/driver/Driver.h"

namespace zq::test {
namespace {

constexpr char kFolder[] = "C:\\w";

// The paths of all files in it, as arguments. None holds a blank.
std::string FilesIn(const std::string& folder, int& count) {
  std::string arguments;
  WIN32_FIND_DATAA found{};
  const HANDLE search = ::FindFirstFileA((folder + "\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) throw DriverError("no folder " + folder);
  count = 0;
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
    arguments += (count++ == 0 ? "" : " ") + folder + '\\' + found.cFileName;
  } while (::FindNextFileA(search, &found) != 0);
  ::FindClose(search);
  return arguments;
}

int CommandOf(Window mainWindow, const std::string& caption) {
  for (Window child : mainWindow.Children()) {
    if (child.ClassName() != TOOLBARCLASSNAMEA) continue;
    for (const ToolButton& tool : ToolButtons(child)) {
      if (tool.caption != caption) continue;
      WaitToolEnabled(child, tool.command, true);
      return tool.command;
    }
  }
  throw DriverError("no tool '" + caption + "'");
}

// Looks rarely: each look takes time of the server that the program needs, too.
void WaitForTheEnd(const Program& program) {
  while (::FindWindowA("#32770", "Wipe Operation") == nullptr) {
    if (!program.IsRunning()) throw DriverError("the program has ended");
    ::Sleep(50);
  }
}

double WipeRows(const std::string& folder) {
  if (::MoveFileA(folder.c_str(), kFolder) == 0) throw DriverError(folder + " can't be moved");
  int count = 0;
  const std::string arguments = FilesIn(kFolder, count);
  const ScratchFolder scratch;
  const Program program(scratch.CopyIn("Zeroquill") + "\\Zeroquill.exe", arguments);
  const Window welcome = program.WaitWindow("Welcome to Zeroquill", "", Limit(120000));
  welcome.Child("OK").Press();
  welcome.WaitGone();
  const Window mainWindow = program.WaitWindow("Zeroquill");
  ListView(mainWindow.ChildOfClass(WC_LISTVIEWA)).WaitRows(count, Limit(120000));
  mainWindow.Command(CommandOf(mainWindow, "Wipe Now"));
  const MessageBoxView confirm = program.WaitBox("Wipe Operation");
  const auto started = std::chrono::steady_clock::now();
  confirm.Answer("OK");
  WaitForTheEnd(program);
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - started;
  int left = 0;
  FilesIn(kFolder, left);
  if (left > 0) throw DriverError(std::to_string(left) + " files are left");
  if (::RemoveDirectoryA(kFolder) == 0) throw DriverError("the empty folder can't be removed");
  return took.count();
}

}  // namespace
}  // namespace zq::test

int main(int argc, char** argv) {
  try {
    if (argc != 2) throw zq::test::DriverError("usage: rows_bench FOLDER");
    std::printf("%.3f s, by the program\n", zq::test::WipeRows(argv[1]));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
