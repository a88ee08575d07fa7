// FakeWindowList: the windows that a test puts there, the front one first.
#pragma once

#include <string>
#include <vector>

#include "platform/WindowList.h"
#include "support/fakes/EventLog.h"

namespace zq::test {

class FakeWindowList final : public WindowList {
 public:
  explicit FakeWindowList(EventLog& log) : log_(log) {}

  struct Entry {
    std::string title;
    WindowHandle parent = 0;
  };
  std::vector<Entry> windows;  // their handles are 1, 2, ...
  bool refusesPost = false;
  bool turnsBack = false;  // the order changes on the way: behind the last one comes the first again
  int asked = 0;           // titles that were read

  WindowHandle First() override { return windows.empty() ? 0 : 1; }
  WindowHandle Next(WindowHandle window) override {
    if (window < windows.size()) return window + 1;
    return turnsBack ? 1 : 0;
  }
  WindowHandle ParentOf(WindowHandle window) override { return windows[window - 1].parent; }
  std::string TitleOf(WindowHandle window) override {
    ++asked;
    return windows[window - 1].title;
  }
  WindowHandle FindByTitle(const std::string& title) override {
    for (WindowHandle window = 1; window <= windows.size(); ++window) {
      if (windows[window - 1].title == title) return window;
    }
    return 0;
  }
  bool PostClose(WindowHandle window) override {
    log_.push_back("close window " + std::to_string(window));
    return !refusesPost;
  }

 private:
  EventLog& log_;
};

}  // namespace zq::test
