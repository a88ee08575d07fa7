// The system's dialog of Add Files, driven by its file name box.
#pragma once

#include <string>

#include "e2e/Zeroquill.h"

namespace zq::test {

class FilesDialog {
 public:
  // Waits for the dialog, which has been asked for.
  FilesDialog(const Program& program, const MainWindow& main)
      : main_(&main), dialog_(program.WaitWindow("Add Files")) {
    EXPECT_EQ(dialog_.Owner(), main.window);
  }

  Window TheWindow() const { return dialog_; }

  // Types a name and presses Open; for a folder the dialog goes there and stays.
  void Enter(const std::string& name) const {
    NameBox().SetText(name);
    dialog_.Child("Open").Press();
  }
  void GoTo(const std::string& folder) const {
    Enter(folder);
    Await("the dialog to go to " + folder, [&] { return NameBox().Text() != folder; });
  }
  void WaitGone() const {
    dialog_.WaitGone();
    main_->window.WaitEnabled();
  }
  void Cancel() const {
    dialog_.Child("Cancel").Press();
    WaitGone();
  }

 private:
  // An edit box, or one inside a combo box, whichever the system has.
  Window NameBox() const {
    constexpr int kEditId = 0x480;
    constexpr int kComboId = 0x47C;
    for (Window child : dialog_.Children()) {
      if (child.Id() == kComboId && child.IsVisible()) return child.ChildOfClass("Edit");
    }
    return dialog_.Child(kEditId);
  }

  const MainWindow* main_;
  Window dialog_;
};

}  // namespace zq::test
