// The device context of a window, that of its painting (WM_PAINT), and what is selected into one, given back
// at the end of the scope.
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

class PaintDc {
 public:
  explicit PaintDc(HWND window) : window_(window) { ::BeginPaint(window, &paint_); }
  ~PaintDc() { ::EndPaint(window_, &paint_); }
  PaintDc(const PaintDc&) = delete;
  PaintDc& operator=(const PaintDc&) = delete;

  HDC Get() const { return paint_.hdc; }
  const RECT& Dirty() const { return paint_.rcPaint; }

 private:
  HWND window_;
  PAINTSTRUCT paint_{};
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
