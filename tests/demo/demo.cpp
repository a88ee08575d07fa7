// The demonstration: wipes sample files with the program by its windows, as a user would, tells what
// happens, and proves that the files are gone. It ends with 1 when anything is not as it should be.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "support/driver/Driver.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

// In each sample, so that what is left of one can be found wherever it may be.
constexpr char kSecret[] = "the-secret-of-the-demonstration";

struct Sample {
  const char* name;
  const char* what;
  std::size_t bytes;
  DWORD attributes;
};

constexpr Sample kSamples[] = {
    {"letter.txt", "a small one", 2000, FILE_ATTRIBUTE_ARCHIVE},
    {"read-only.doc", "a read-only one", 40000, FILE_ATTRIBUTE_READONLY},
    {"hidden.dat", "a hidden one", 5000, FILE_ATTRIBUTE_HIDDEN},
    {"empty.txt", "an empty one", 0, FILE_ATTRIBUTE_ARCHIVE},
    {"Grüße – письмо.txt", "one with a Unicode name", 3000, FILE_ATTRIBUTE_ARCHIVE},
    {"album.zip", "one of 64 megabytes", 64u << 20, FILE_ATTRIBUTE_ARCHIVE},
};

constexpr char kKeptName[] = "kept.txt";

std::string Content(std::size_t bytes) {
  std::string content;
  content.reserve(bytes + sizeof kSecret);
  while (content.size() < bytes) content += kSecret;
  content.resize(bytes);
  return content;
}

void Say(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

void Demand(bool condition, const std::string& what) {
  if (!condition) throw DriverError("not so: " + what);
}

void Show(Window window, const std::string& name, When when = When::Still) {
  if (!TakePicture(window, name, when).empty()) Say("  picture " + name + ".png");
}

void Tell(const MessageBoxView& box) {
  std::string buttons;
  for (const std::string& button : box.buttons) buttons += (buttons.empty() ? "" : ", ") + button;
  Say("The program asks [" + box.title + "], " + ToString(box.icon) + " icon:");
  Say(box.text);
  Say("  buttons: " + buttons + "; default: " + box.defaultButton);
}

// The command behind a button of the main window's tool bar.
int CommandOf(Window mainWindow, const std::string& caption) {
  for (Window child : mainWindow.Children()) {
    if (child.ClassName() != TOOLBARCLASSNAMEA) continue;
    for (const ToolButton& tool : ToolButtons(child)) {
      if (tool.caption == caption) {
        WaitToolEnabled(child, tool.command, true);
        return tool.command;
      }
    }
  }
  throw DriverError("no tool '" + caption + "'");
}

// The progress window, whose caption begins with the share done; empty if it was too quick for us.
std::optional<Window> FindProgress(const Program& program) {
  for (Window window : program.Windows()) {
    try {
      const std::string title = window.Text();
      if (title.find("% - Wipe Operation") != std::string::npos) return window;
    } catch (const DriverError&) {
      if (window) throw;
    }
  }
  return std::nullopt;
}

// The dialog for the folder on the command line: it opens while the main window loads, before that is
// shown. Takes all of the folder, and gives the main window.
Window WaitAddFolder(const Program& program, const std::string& folder) {
  const Window add = program.WaitWindow("Add Folder");
  add.Child("OK").WaitEnabled();
  const Window subFolders = add.Child("Process any found sub folders beneath chosen folder");
  if (!subFolders.IsChecked()) subFolders.Press();
  Await("the sub-folders are ticked", [&] { return subFolders.IsChecked(); });
  Say("Add Folder: " + folder + ", all files, with sub folders.");
  Show(add, "9-add-folder");
  add.Child("OK").Press();
  add.WaitGone();
  return program.WaitWindow("Zeroquill");
}

void CloseFrontWindows(const Program& program, Window mainWindow) {
  mainWindow.Close();
  // The list was changed by the samples, and the program may ask whether it is to be saved.
  WaitFor([&] { return !program.IsRunning() || !program.Boxes().empty(); });
  if (program.IsRunning()) {
    const MessageBoxView box(program.Boxes().front());
    Tell(box);
    Show(box.window, "8-save");
    box.Answer("No");
  }
}

// The dialog for a drive's free space, left as it is: here is no drive to be filled.
void LookAtFreeSpace(const Program& program, Window mainWindow) {
  mainWindow.Command(CommandOf(mainWindow, "Wipe Free Space"));
  const Window dialog = program.WaitWindow("Wipe Drive Free Space");
  Say("Wipe Free Space: a drive and a security level. Left by Cancel, so that nothing is filled up.");
  Show(dialog, "16-free-space");
  dialog.Child("Cancel").Press();
  dialog.WaitGone();
  mainWindow.WaitEnabled();
  Demand(program.Boxes().empty(), "nothing is asked after Cancel");
}

// The settings, left as they are. The command has no tool, so that it is chosen by its letters.
void LookAtPreferences(const Program& program, Window mainWindow) {
  TypeKey(mainWindow, 'F', {VK_MENU});
  Await("the menu", [&] {
    const std::vector<Window> windows = program.Windows();
    return std::any_of(windows.begin(), windows.end(),
                       [](Window window) { return window.ClassName() == "#32768"; });
  });
  TypeKey(mainWindow, 'P');
  const Window dialog = program.WaitWindow("Preferences");
  Say("Preferences: the security level, the program's looks, the companion in Explorer.");
  Show(dialog, "17-preferences");
  dialog.Child("Cancel").Press();
  dialog.WaitGone();
  mainWindow.WaitEnabled();
}

// The picture that takes drops: the one that hears the mouse.
Window DropPicture(Window bin) {
  for (const Window child : bin.Children()) {
    if (child.ClassName() == "Static" && (child.Style() & SS_NOTIFY) != 0) return child;
  }
  throw DriverError("the Bin has no picture to drop on");
}

// The window that wipes what is dropped on it: opened, dropped on with the mouse, and closed.
void DropOnTheBin(const Program& program, Window mainWindow, const ScratchFolder& scratch) {
  const std::string dropped = scratch.Make("Dropped\\draft – черновик.txt", Content(20000));
  const std::string kept = scratch.Make(std::string("Dropped\\") + kKeptName, "this one stays");
  TypeKey(mainWindow, 'Q', {VK_CONTROL});
  const Window bin = program.WaitWindow("QuickWipe Bin");
  Say("The QuickWipe Bin: whatever is dropped on its picture is wiped at once.");
  Show(bin, "18-quickwipe-bin");
  Say("Dropped on it: " + dropped + ", and not " + kept + " beside it.");
  Demand(DragFilesTo(DropPicture(bin).Centre(), {dropped}) == DROPEFFECT_COPY, "the Bin takes the drop");
  const std::string told = StatusPanels(bin.ChildOfClass("msctls_statusbar32")).front();
  Say("It says: " + told);
  Show(bin, "19-quickwipe-bin-after");
  Demand(told == "Last Operation: Success", "the drop is wiped");
  Demand(!PathExists(dropped), "the dropped file is gone");
  Demand(ReadFileBytes(kept) == "this one stays", "the file beside it is as it was");
  bin.Child("Close Bin").Press();
  bin.WaitGone();
  Await("the main window to be back", [&] { return ::IsIconic(mainWindow.Handle()) == FALSE; });
}

// The help, in the system's viewer, opened by its key and closed.
void LookAtTheHelp(const Program& program, Window mainWindow) {
  TypeKey(mainWindow, VK_F1);
  const Window help = program.WaitWindow("Zeroquill Help");
  Say("The help: its contents, its index and its search.");
  Show(help, "20-help");
  help.Close();
  help.WaitGone();
}

// Answers the question before a wipe, and waits for the one behind it.
MessageBoxView WipeNow(const Program& program, Window mainWindow, const std::string& confirmPicture,
                       const std::string& progressPicture) {
  mainWindow.Command(CommandOf(mainWindow, "Wipe Now"));
  const MessageBoxView confirm = program.WaitBox("Wipe Operation");
  Tell(confirm);
  Show(confirm.window, confirmPicture);
  Say("Answer: OK. The wipe runs.");
  confirm.Answer("OK");

  std::optional<Window> progress;
  WaitFor([&] {
    progress = FindProgress(program);
    return progress.has_value() || !program.Boxes().empty();
  });
  if (progress && program.Boxes().empty()) Show(*progress, progressPicture, When::AtOnce);
  return program.WaitBox("Wipe Operation", Limit(120000));
}

// Files on the command line, wiped at once.
void WipeFiles(const ScratchFolder& scratch, const std::string& programFolder) {
  const std::string samples = scratch / "Papers";

  Say("Sample files in " + samples + ":");
  std::string arguments;
  for (const Sample& sample : kSamples) {
    const std::string path =
        scratch.Make(std::string("Papers\\") + sample.name, Content(sample.bytes), sample.attributes);
    Say("  " + path + ", " + sample.what + ", " + std::to_string(sample.bytes) + " bytes");
    arguments += (arguments.empty() ? "\"" : " \"") + path + "\"";
  }
  const std::string kept = scratch.Make(std::string("Papers\\") + kKeptName, "this one stays");
  Say("  " + kept + ", which is not to be touched");

  Say("Starting " + programFolder + "\\Zeroquill.exe with them on its command line.");
  const Program program(programFolder + "\\Zeroquill.exe", arguments);
  if (WaitFor([&] { return !program.Windows().empty(); })) Show(program.Windows().front(), "1-splash");

  const Window welcome = program.WaitWindow("Welcome to Zeroquill");
  Show(welcome, "2-welcome");
  welcome.Child("OK").Press();
  welcome.WaitGone();

  const Window mainWindow = program.WaitWindow("Zeroquill");
  const ListView list(mainWindow.ChildOfClass(WC_LISTVIEWA));
  list.WaitRows(static_cast<int>(std::size(kSamples)));
  Show(mainWindow, "3-list");

  const MessageBoxView done = WipeNow(program, mainWindow, "4-confirm", "5-progress");
  Tell(done);
  Show(done.window, "6-done");
  Say("Answer: No.");
  done.Answer("No");
  mainWindow.WaitVisible();

  for (int row = 0; row < list.Rows(); ++row) Say("  row: " + list.Text(row, 0) + " | " + list.Text(row, 1));
  Show(mainWindow, "7-list-after");
  Say("Report\\Report.dat:");
  Say(ReadFileBytes(programFolder + "\\Report\\Report.dat"));

  CloseFrontWindows(program, mainWindow);
  Demand(program.WaitExit() == 0, "the program ends with 0");

  for (const Sample& sample : kSamples) {
    Demand(!PathExists(samples + "\\" + sample.name), std::string(sample.name) + " is gone");
  }
  Demand(!FolderHolds(scratch.Path(), kSecret), "no file holds the samples' content");
  Demand(ReadFileBytes(kept) == "this one stays", "the other file is as it was");
  Say("The files are gone, their content is in no file, and " + kept + " is as it was.");
}

// A file that the program writes after the last that is seen of it: its bytes, once it has been closed.
std::string ReadWhenWritten(const std::string& path) {
  Await(path + " to be written", [&] {
    const HANDLE file = ::CreateFileW(ToWide(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    LARGE_INTEGER size{};
    const bool hasBytes = ::GetFileSizeEx(file, &size) && size.QuadPart > 0;
    ::CloseHandle(file);
    return hasBytes;
  });
  return ReadFileBytes(path);
}

// A folder as a job that is saved, closed, opened again and wiped.
void WipeSavedJob(const ScratchFolder& scratch, const std::string& programFolder) {
  const std::string folder = scratch / "Old Papers";
  const std::string first = scratch.Make("Old Papers\\first.doc", Content(3000));
  const std::string second = scratch.Make("Old Papers\\Briefe\\zweiter – второй.doc", Content(70000));
  Say("");
  Say("A job of a folder: " + folder + " with " + first + " and " + second + ".");
  const Program program(programFolder + "\\Zeroquill.exe", "\"" + folder + "\"");
  const Window mainWindow = WaitAddFolder(program, folder);
  const ListView list(mainWindow.ChildOfClass(WC_LISTVIEWA));
  list.WaitRows(1);

  Say("Saved as 'Demonstration', closed, and opened again.");
  mainWindow.Command(CommandOf(mainWindow, "Save Job"));
  const Window save = program.WaitWindow("Save Job");
  save.ChildOfClass("Edit").SetText("Demonstration");
  Show(save, "10-save-job");
  save.Child("OK").Press();
  save.WaitGone();
  const std::string jobFile = programFolder + "\\Jobs\\Demonstration.zqj";
  const std::string jobBytes = ReadWhenWritten(jobFile);
  Say(jobBytes);

  TypeKey(mainWindow, 'W', {VK_CONTROL});
  list.WaitRows(0);
  TypeKey(mainWindow, 'O', {VK_CONTROL});
  const Window open = program.WaitWindow("Open Job");
  Show(open, "11-open-job");
  open.Child("OK").Press();
  open.WaitGone();
  list.WaitRows(1);
  Show(mainWindow, "12-job");

  const MessageBoxView done = WipeNow(program, mainWindow, "13-confirm", "14-progress");
  Tell(done);
  done.Answer("No");
  mainWindow.WaitVisible();
  Show(mainWindow, "15-job-after");
  Say("Report\\Report.dat:");
  Say(ReadFileBytes(programFolder + "\\Report\\Report.dat"));
  LookAtFreeSpace(program, mainWindow);
  LookAtPreferences(program, mainWindow);
  DropOnTheBin(program, mainWindow, scratch);
  LookAtTheHelp(program, mainWindow);
  CloseFrontWindows(program, mainWindow);
  Demand(program.WaitExit() == 0, "the program ends with 0");

  Demand(!PathExists(folder), "the folder is gone");
  Demand(!FolderHolds(scratch.Path(), kSecret), "no file holds the samples' content");
  Demand(ReadFileBytes(jobFile) == jobBytes, "the job's file is as it was, byte for byte");
  Say("The folder is gone, and the job's file is byte for byte as it was saved.");
}

void Run() {
  const ScratchFolder scratch;
  const std::string programFolder = scratch.CopyIn("Zeroquill");
  WipeFiles(scratch, programFolder);
  WipeSavedJob(scratch, programFolder);
}

}  // namespace
}  // namespace zq::test

int main() {
  // What is printed is UTF-8.
  ::SetConsoleOutputCP(CP_UTF8);
  try {
    zq::test::Run();
  } catch (const std::exception& error) {
    std::printf("The demonstration failed: %s\n", error.what());
    return 1;
  }
  return 0;
}
