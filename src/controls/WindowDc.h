// The device context of a window, and what is selected into one, given back at the end of the scope.
#pragma once

#include <windows.h>

#include "debug/LiveCount.h"

namespace zq {

class WindowDc {
 public:
  explicit WindowDc(HWND window) : window_(window), context_(::GetDC(window)) {}
  ~WindowDc() {
    if (context_) ::ReleaseDC(window_, context_);
  }
  WindowDc(const WindowDc&) = delete;
  WindowDc& operator=(const WindowDc&) = delete;

  HDC Get() const { return context_; }

 private:
  HWND window_;
  HDC context_;
  [[no_unique_address]] debug::Alive<debug::Kind::WindowContext> alive_;
};

class SelectedObject {
 public:
  SelectedObject(HDC context, HGDIOBJ object) : context_(context), before_(::SelectObject(context, object)) {}
  ~SelectedObject() { ::SelectObject(context_, before_); }
  SelectedObject(const SelectedObject&) = delete;
  SelectedObject& operator=(const SelectedObject&) = delete;

 private:
  HDC context_;
  HGDIOBJ before_;
};

}  // namespace zq
