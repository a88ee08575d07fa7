// PostedDrops: takes the drops on a window as messages, where Windows shows no drop target of ours to the
// shell.
#pragma once

#include <windows.h>

#include <functional>

#include "controls/DroppedPaths.h"
#include "platform/ShellDrops.h"

namespace zq {

// Takes the drops on a window while it is registered. Any program can post such a message: the window must be
// one in which nothing happens to the paths before the user is asked.
class PostedDrops {
 public:
  PostedDrops() = default;
  PostedDrops(const PostedDrops&) = delete;
  PostedDrops& operator=(const PostedDrops&) = delete;
  ~PostedDrops() { Revoke(); }

  // False where the window can't be opened to the shell's drops; nothing has changed then.
  bool Register(HWND hwnd, ShellDrops& drops, std::function<void(const DroppedPaths&)> dropped);
  void Revoke();

 private:
  static LRESULT CALLBACK Receive(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                  DWORD_PTR self);
  void Take(HGLOBAL memory) const;

  HWND hwnd_ = nullptr;
  ShellDrops* drops_ = nullptr;
  std::function<void(const DroppedPaths&)> dropped_;
};

}  // namespace zq
