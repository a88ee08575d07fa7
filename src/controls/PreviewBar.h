// PreviewBar: the preview's tool bar: pages, zoom, print and search, as buttons and boxes of the system.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/win32/UniqueHandle.h"

namespace zq {

// The bar's controls, by their ids. They are children of the window that the bar is created in.
enum PreviewBarId : int {
  kBarPrint = 1,
  kBarFirst,
  kBarPrevious,
  kBarPageLabel,
  kBarPage,
  kBarPageCount,
  kBarNext,
  kBarLast,
  kBarZoom,
  kBarFindLabel,
  kBarFind,
  kBarFindNext,
  kBarFindPrevious,
  kBarFound,
};

class PreviewBar {
 public:
  void Create(HWND parent, HFONT font);
  // The font lives until another one is given.
  void SetFont(HFONT font);
  // Lays the controls out for the window's present scale; gives the bar's height in pixels.
  int Arrange();
  // The least width in which all is seen.
  int Width() const { return width_; }

  void ShowPage(int page, int count) const;  // from 1
  void EnablePaging(bool backwards, bool forwards) const;
  void ShowZoom(double percent);
  void ShowFound(const std::string& text) const;

  HWND Item(PreviewBarId id) const { return ::GetDlgItem(parent_, id); }
  std::string Text(PreviewBarId id) const;

 private:
  HWND Add(PreviewBarId id, const wchar_t* windowClass, const wchar_t* caption, DWORD style,
           DWORD extended = 0);
  void AddTip(PreviewBarId id, const wchar_t* tip) const;

  HWND parent_ = nullptr;
  HWND tips_ = nullptr;
  HFONT font_ = nullptr;
  int width_ = 0;
  std::vector<UniqueIcon> icons_;
};

}  // namespace zq
