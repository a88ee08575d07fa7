// The control and command ids of the sample program, for its test. How often its window became the active one
// stands in the window's GWLP_USERDATA.
#pragma once

namespace zq::test {

enum SampleId : int {
  kList = 100,
  kStatus,
  kProgress,
  kTools,
  kEdit,
  kCheck,
  kCombo,
  kTree,
  kBoxButton,
  kDisabledButton,
  kVirtualList,
  kFirstBox = 200,  // a command for each message box of the sample
  kCommand = 300,   // writes "command" into the edit box; Ctrl+K is its key
  kEnable,          // enables kDisabledButton and the second tool
  kHide,
  kOpenDialogLike,
};

inline constexpr char kSampleTitle[] = "Sample – Größe";

}  // namespace zq::test
