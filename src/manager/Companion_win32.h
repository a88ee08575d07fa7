// Companion: the Explorer Manager, put together. It wipes the Recycle Bin and what is handed to it, one after
// the other, each behind its question.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "controls/MessageLoop.h"
#include "controls/SystemLongWork.h"
#include "core/state/AppState.h"
#include "manager/ManagerWindow_win32.h"
#include "manager/ManagerWipe.h"
#include "manager/ShellEntries.h"
#include "manager/ShellVerb_win32.h"
#include "manager/UserBins_win32.h"
#include "manager/UserShell_win32.h"
#include "platform/win32/Win32Drives.h"
#include "platform/win32/Win32Files.h"
#include "platform/win32/Win32MessageBoxes.h"
#include "platform/win32/Win32Process.h"
#include "platform/win32/Win32Regional.h"
#include "platform/win32/Win32Registry.h"
#include "wipe/SFD1.h"
#include "wipe/frmStatus.h"

namespace zq {

class Companion final : private LineList {
 public:
  Companion();

  // Until it is closed. The result is the process's exit code; at once if another one runs already.
  int Run();

 private:
  void OpenProgram();
  void WipeBin();
  void WipeSelected(const std::vector<std::string>& paths);
  void Take(std::vector<std::string> paths);
  void CloseAsked();
  void AfterWork();
  void ReadSettings();
  void Show(const std::string& title, const std::vector<std::string>& lines) override;

  AppState state_;
  Win32Files files_;
  Win32MessageBoxes messageBoxes_;
  Win32Process process_;
  Win32Regional regional_;
  Win32Registry registry_;
  Win32Drives drives_;
  ManagerWindow window_;
  SystemLongWork longWork_{[this] { return window_.Handle(); }};
  Platform platform_{files_, messageBoxes_, process_, regional_, registry_, longWork_};
  UserBins bins_;
  Win32ShellNotices notices_;
  StatusWindow statusWindow_;
  ManagerWipe wipe_{state_, platform_, statusWindow_, *this, notices_};
  SFD1 engine_{wipe_};
  ShellVerb verb_;
  Win32UserShell userShell_;
  ShellEntries entries_{userShell_};
  std::deque<std::vector<std::string>> waiting_;  // selections, in the order in which they came
  bool busy_ = false;
  bool closing_ = false;
};

}  // namespace zq
