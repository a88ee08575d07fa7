// ImageList: small pictures for a list, at the DPI of the list's window.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <utility>

#include "controls/Pictures.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

struct ImageListTraits {
  using Type = HIMAGELIST;
  static constexpr debug::Kind kKind = debug::Kind::ImageList;
  static Type Invalid() { return nullptr; }
  static void Close(Type images) { ::ImageList_Destroy(images); }
};

class ImageList {
 public:
  // `pixels` square.
  void Create(int pixels) {
    pixels_ = pixels;
    images_.Reset(::ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, 4, 16));
  }

  void Swap(ImageList& other) {
    std::swap(images_, other.images_);
    std::swap(pixels_, other.pixels_);
  }

  HIMAGELIST Handle() const { return images_.Get(); }
  int Pixels() const { return pixels_; }

  void AddPicture(const char* name) { AddIcon(LoadPicture(name, pixels_).Get()); }

  // A null icon adds a blank picture, so that the places of the pictures stay in step.
  void AddIcon(HICON icon);

 private:
  UniqueHandle<ImageListTraits> images_;
  int pixels_ = 0;
};

}  // namespace zq
