// TabStrip: a row of tabs with bold captions. What a tab shows is its owner's, and stands below the strip.
#pragma once

#include <functional>
#include <string>

#include "controls/Control.h"

namespace zq {

class TabStrip : public Control {
 public:
  using Control::Control;
  std::function<void()> Click;  // another tab has been selected, by mouse or key

  void Add(const std::string& caption);
  int Count() const { return static_cast<int>(::SendMessageW(Handle(), TCM_GETITEMCOUNT, 0, 0)); }

  // Tabs are counted from 1.
  int Selected() const { return static_cast<int>(::SendMessageW(Handle(), TCM_GETCURSEL, 0, 0)) + 1; }

  // The keys that go from tab to tab wherever in the form the focus is: Ctrl+Tab and Ctrl+Page Down to the
  // next, with Shift and Ctrl+Page Up to the one before, round the ends. False for another message.
  bool TranslateShortcut(const MSG& message);

 protected:
  void Attached() override { FitResolution(); }
  void DpiChanged() override { FitResolution(); }
  bool OnNotify(const NMHDR& header, LRESULT& result) override;

 private:
  void FitResolution();

  UniqueFont font_;
};

}  // namespace zq
