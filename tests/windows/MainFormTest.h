// The main window in this process, loaded over fakes of the platform.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "controls/MessageLoop.h"
#include "core/main/frmMain.h"
#include "core/state/Settings.h"
#include "support/fakes/FakeHelp.h"
#include "support/fakes/FakePlatform.h"

namespace zq::test {

class MainFormTest : public testing::Test {
 protected:
  void SetUp() override {
    fake_.files.AddFolder("C:\\Zeroquill");
    fake_.files.AddFile("C:\\Zeroquill\\sfrun.dat");
    Put({}, {.Width = 12000, .Height = 6000, .Left = 0, .Top = 0});
    Default<frmMain>::SetFactory(
        [this] { return std::make_unique<frmMain>(state_, fake_.platform, &help_); });
  }
  void TearDown() override {
    state_.QuickBinBusy = false;
    if (Default<frmMain>::IsLoaded()) Default<frmMain>::Touch().Unload();
    Form::DestroyClosed();
  }

  void Put(SettingsRecord settings, const WindowPlacement& placement) {
    settings.PromptToSave = 0;
    fake_.files.AddFile("C:\\Zeroquill\\Settings.dat", EncodeSettings(settings));
    fake_.files.AddFile("C:\\Zeroquill\\Settings2.dat", EncodePlacement(placement));
  }

  frmMain& Open() {
    frmMain& main = Default<frmMain>::Touch();
    main.Show();
    PumpMessages();
    return main;
  }

  static HWND WindowOf(frmMain& main) { return static_cast<Form&>(main).Handle(); }

  // The windows of a class below the main window, hidden ones too.
  static std::vector<HWND> Below(frmMain& main, const std::string& className) {
    std::pair<std::string, std::vector<HWND>> search{className, {}};
    ::EnumChildWindows(
        WindowOf(main),
        [](HWND window, LPARAM param) -> BOOL {
          auto& wanted = *reinterpret_cast<std::pair<std::string, std::vector<HWND>>*>(param);
          char name[64] = "";
          ::GetClassNameA(window, name, sizeof name);
          if (wanted.first == name) wanted.second.push_back(window);
          return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.second;
  }

  FakePlatform fake_;
  EventLog asked_;  // of the help
  FakeHelp help_{asked_};
  AppState state_;
};

}  // namespace zq::test
