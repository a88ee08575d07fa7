// RowTip: a list's tip with the whole path, while the mouse rests on one that is drawn shortened.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace zq {

class RowTip {
 public:
  RowTip() = default;
  RowTip(const RowTip&) = delete;
  RowTip& operator=(const RowTip&) = delete;

  // `list` owns the tip's window. `text` gives the text of the first column; rows are counted from 1.
  void Create(HWND list, std::function<std::string(int row)> text);

  // Every message of the list's mouse comes by here.
  void Mouse(const MSG& message);
  // True if the notification, which comes to the list, was the tip's.
  bool OnNotify(const NMHDR& header);
  // The rows stand elsewhere, or are others.
  void Forget();

 private:
  void Follow(POINT mouse);

  HWND list_ = nullptr;
  HWND tip_ = nullptr;
  std::function<std::string(int row)> text_;
  int row_ = 0;
  std::wstring shown_;  // the tip keeps no text of its own
};

}  // namespace zq
