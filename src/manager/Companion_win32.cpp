#include "manager/Companion_win32.h"

#include <memory>
#include <utility>

#include "core/state/DataFolder.h"
#include "core/state/ManagerNames.h"
#include "manager/SystemPlaces_win32.h"
#include "platform/MessageBoxes.h"
#include "quickbin/frmQuickErrors.h"

namespace zq {
namespace {

constexpr const char* kProgram = "Zeroquill.exe";
constexpr const char* kOpenFailed = "An error was encountered trying to open Zeroquill.";

BOOL CALLBACK CloseUnlessManager(HWND window, LPARAM manager) {
  if (window != reinterpret_cast<HWND>(manager) && ::IsWindowVisible(window) && ::IsWindowEnabled(window))
    ::PostMessageW(window, WM_CLOSE, 0, 0);
  return TRUE;
}

}  // namespace

Companion::Companion() : process_(&PumpBetweenSteps, L"Local\\Zeroquill.ExplorerManager") {
  state_.AppFolder = process_.ApplicationPath();
  if (!state_.AppFolder.ends_with('\\')) state_.AppFolder += '\\';
  wipe_.SetEngine(&engine_, &engine_);
  Default<frmStatus>::SetFactory([this] { return std::make_unique<frmStatus>(state_, platform_, wipe_); });
  Default<frmQuickErrors>::SetFactory([] { return std::make_unique<frmQuickErrors>(); });
  window_.OpenProgram = [this] { OpenProgram(); };
  window_.WipeBin = [this] { WipeBin(); };
  window_.CloseAsked = [this] { CloseAsked(); };
  window_.Destroyed = [this] {
    // First what leads here, then what serves it.
    entries_.Remove();
    verb_.Stop();
    ::PostQuitMessage(0);
  };
  window_.IsBusy = [this] { return busy_; };
  window_.WorkWaits = [this] { AfterWork(); };
}

int Companion::Run() {
  if (process_.EarlierInstanceRuns()) return 0;
  // Without it, the icon's menu has to do. No drop comes before the messages are looked at.
  if (verb_.Serve([this](std::vector<std::string> paths) { Take(std::move(paths)); }))
    entries_.Write(state_.AppFolder + kManagerProgram);
  // Last: whoever sees the window finds all that the companion offers.
  if (!window_.Create()) {
    entries_.Remove();
    return 1;
  }
  RunMessageLoop();
  return 0;
}

void Companion::OpenProgram() {
  if (!process_.StartProgram(state_.AppFolder + kProgram))
    messageBoxes_.Show({kOpenFailed, "Error Loading", MessageIcon::Exclamation, MessageButtons::Ok});
}

void Companion::WipeBin() {
  if (busy_) return;
  busy_ = true;
  ReadSettings();
  wipe_.WipeBin(LookIntoRecycleBin(files_, process_, drives_, bins_));
  busy_ = false;
  window_.PostWork();
}

// The shell stands still until this returns.
void Companion::Take(std::vector<std::string> paths) {
  if (closing_) return;
  waiting_.push_back(std::move(paths));
  window_.PostWork();
}

void Companion::WipeSelected(const std::vector<std::string>& paths) {
  busy_ = true;
  ReadSettings();
  const SystemPlaces places = PlacesOfThisMachine(state_.AppFolder);
  wipe_.WipeSelection(LookAtSelection(files_, process_, regional_, places, paths));
  busy_ = false;
  window_.PostWork();
}

// What is being wiped comes to its end first: the user has its progress window to cancel it. Anything else
// that is open is answered by being closed.
void Companion::CloseAsked() {
  closing_ = true;
  waiting_.clear();
  if (!busy_) return window_.Destroy();
  if (!Default<frmStatus>::IsLoaded())
    ::EnumThreadWindows(::GetCurrentThreadId(), &CloseUnlessManager,
                        reinterpret_cast<LPARAM>(window_.Handle()));
}

void Companion::AfterWork() {
  if (busy_) return;
  if (closing_) return window_.Destroy();
  if (waiting_.empty()) return;
  const std::vector<std::string> paths = std::move(waiting_.front());
  waiting_.pop_front();
  WipeSelected(paths);
}

// As the program has left them by now.
void Companion::ReadSettings() {
  state_.Settings = SettingsLeftIn(DataFolder(files_, state_));
}

void Companion::Show(const std::string& title, const std::vector<std::string>& lines) {
  // Nobody waits for it any more.
  if (closing_) return;
  frmQuickErrors& form = Default<frmQuickErrors>::Touch();
  form.SetCaption(title);
  form.AddLines(lines);
  form.ShowModal(window_.Handle());
}

}  // namespace zq
