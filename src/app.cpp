// WinMain: puts the program together and runs it.
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>

#include <exception>
#include <memory>

#include "ancillary/frmAbout.h"
#include "ancillary/frmOpen.h"
#include "ancillary/frmWelcome.h"
#include "controls/MessageLoop.h"
#include "controls/SystemLongWork.h"
#include "core/main/frmMain.h"
#include "core/state/DataFolder.h"
#ifdef ZQ_COUNTERS
#include "debug/CountersWindow_win32.h"
#endif
#include "help/HelpFrontEnd.h"
#include "help/HelpMachine_win32.h"
#include "help/HelpViewer_win32.h"
#include "jobs/frmEdit.h"
#include "jobs/frmFolder.h"
#include "jobs/frmNew.h"
#include "jobs/frmOpenJob.h"
#include "jobs/frmSave.h"
#include "platform/win32/RunTimeErrorReport.h"
#include "platform/win32/SafeLibraries.h"
#include "platform/win32/Win32Drives.h"
#include "platform/win32/Win32Files.h"
#include "platform/win32/Win32MessageBoxes.h"
#include "platform/win32/Win32Process.h"
#include "platform/win32/Win32Regional.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32Shell.h"
#include "platform/win32/Win32ShellDrops.h"
#include "platform/win32/Win32WindowList.h"
#include "preferences/frmPreferences.h"
#include "quickbin/frmQuick.h"
#include "quickbin/frmQuickErrors.h"
#include "reports/frmPrintReport.h"
#include "wipe/LeftFillers.h"
#include "wipe/frmDriveWipe.h"
#include "wipe/frmSpaceStatus.h"
#include "wipe/frmStatus.h"

namespace zq {
namespace {

// What the help works on.
struct HelpMachine {
  Win32HelpViewer viewer;
  Win32HelpDesktop desktop;
  Win32HelpBoxes boxes;
  Win32HelpFileSearch files;
  Win32HelpRegistry registry;
  Win32FileVersions versions;
  Win32SystemVersion system;
  Win32Shell shell;
};

// Everything that lives as long as the process. The process ends by ExitProcess, from the main window.
struct Program {
  AppState state;
  Win32Files files;
  Win32MessageBoxes messageBoxes;
  Win32Process process{&PumpBetweenSteps};
  Win32Regional regional;
  Win32Registry registry;
  SystemLongWork longWork{[] {
    return Default<frmMain>::IsLoaded() ? static_cast<Form&>(Default<frmMain>::Touch()).Handle() : nullptr;
  }};
  Win32WindowList windows;
  Win32ShellDrops shellDrops;
  Platform platform{files, messageBoxes, process, regional, registry, longWork, windows, shellDrops};
  Win32Drives drives;
  HelpMachine helpMachine;
  HelpFrontEnd help{state,
                    files,
                    messageBoxes,
                    helpMachine.shell,
                    {.viewer = helpMachine.viewer,
                     .desktop = helpMachine.desktop,
                     .boxes = helpMachine.boxes,
                     .files = helpMachine.files,
                     .registry = helpMachine.registry,
                     .versions = helpMachine.versions,
                     .system = helpMachine.system,
                     .process = process,
                     .regional = regional}};
};

// A wipe of free space that was killed may have left its fillers. Not by the second instance: the wipe may be
// one of the first, at work.
void ClearUp(Program& program) {
  if (program.state.SecondInstance) return;
  RemoveLeftFillers(FillerRecord{DataFolder(program.files, program.state)}, program.drives);
}

void TellForms(Program& program) {
  Default<frmOpen>::SetFactory([&program] {
    return std::make_unique<frmOpen>(program.platform, [&program] {
      Default<frmMain>::Touch().Show();
      ClearUp(program);
    });
  });
  Default<frmMain>::SetFactory(
      [&program] { return std::make_unique<frmMain>(program.state, program.platform, &program.help); });
  Default<frmStatus>::SetFactory([&program] {
    return std::make_unique<frmStatus>(program.state, program.platform, Default<frmMain>::Touch().Driver());
  });
  Default<frmDriveWipe>::SetFactory([&program] {
    return std::make_unique<frmDriveWipe>(program.state, program.platform, program.drives, &program.help);
  });
  Default<frmSpaceStatus>::SetFactory([&program] {
    return std::make_unique<frmSpaceStatus>(program.state, program.platform,
                                            Default<frmMain>::Touch().FreeSpaceDriver());
  });
  Default<frmPrintReport>::SetFactory(
      [&program] { return std::make_unique<frmPrintReport>(program.state, program.platform); });
  Default<frmFolder>::SetFactory([&program] {
    return std::make_unique<frmFolder>(program.state, program.platform, Default<frmMain>::Touch().Jobs(),
                                       &program.help);
  });
  Default<frmEdit>::SetFactory([&program] {
    return std::make_unique<frmEdit>(program.state, program.platform, Default<frmMain>::Touch().Jobs());
  });
  Default<frmNew>::SetFactory([&program] { return std::make_unique<frmNew>(program.state); });
  Default<frmSave>::SetFactory(
      [&program] { return std::make_unique<frmSave>(program.state, program.platform); });
  Default<frmOpenJob>::SetFactory(
      [&program] { return std::make_unique<frmOpenJob>(program.state, program.platform, &program.help); });
  Default<frmPreferences>::SetFactory([&program] {
    return std::make_unique<frmPreferences>(program.state, program.platform, Default<frmMain>::Touch(),
                                            &program.help);
  });
  Default<frmQuick>::SetFactory([&program] {
    frmMain& main = Default<frmMain>::Touch();
    return std::make_unique<frmQuick>(program.state, program.platform, main, main.DockStudio1,
                                      [] { return static_cast<Form&>(Default<frmMain>::Touch()).Handle(); });
  });
  Default<frmQuickErrors>::SetFactory([] { return std::make_unique<frmQuickErrors>(); });
  Default<frmWelcome>::SetFactory(
      [&program] { return std::make_unique<frmWelcome>(program.state, program.platform); });
  Default<frmAbout>::SetFactory([] { return std::make_unique<frmAbout>(); });
}

void Run() {
#ifdef ZQ_COUNTERS
  debug::AnswerWithCounters();
#endif
  static Program program;
  TellForms(program);
  Default<frmOpen>::Touch().Show();
  RunMessageLoop();
}

}  // namespace
}  // namespace zq

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  try {
    zq::LookForLibrariesInWindowsAlone();
  } catch (...) {
    zq::ReportAndEnd(std::current_exception());
  }
  // A drive without a medium is a failure to be told by us, not a box of the system's.
  ::SetErrorMode(::GetErrorMode() | SEM_FAILCRITICALERRORS);
  // The window classes that dialog templates name must exist before the first dialog.
  const INITCOMMONCONTROLSEX classes{sizeof classes,
                                     ICC_WIN95_CLASSES | ICC_COOL_CLASSES | ICC_STANDARD_CLASSES};
  ::InitCommonControlsEx(&classes);
  // The ghost that Windows draws of a window that doesn't answer for five seconds invites to end the program,
  // and that would be in the middle of a file.
  ::DisableProcessWindowsGhosting();
  try {
    if (FAILED(::OleInitialize(nullptr))) return 1;
    zq::Run();
  } catch (...) {
    zq::ReportAndEnd(std::current_exception());
  }
  return 0;
}
