// ImageList: small pictures for a list, at the DPI of the list's window.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <utility>

#include "controls/Pictures.h"

namespace zq {

class ImageList {
 public:
  ImageList() = default;
  ImageList(const ImageList&) = delete;
  ImageList& operator=(const ImageList&) = delete;
  ~ImageList() {
    if (images_) ::ImageList_Destroy(images_);
  }

  // `pixels` square.
  void Create(int pixels) {
    pixels_ = pixels;
    images_ = ::ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, 4, 16);
  }

  void Swap(ImageList& other) {
    std::swap(images_, other.images_);
    std::swap(pixels_, other.pixels_);
  }

  HIMAGELIST Handle() const { return images_; }
  int Pixels() const { return pixels_; }

  void AddPicture(const char* name) { AddIcon(LoadPicture(name, pixels_).Get()); }

  // A null icon adds a blank picture, so that the places of the pictures stay in step.
  void AddIcon(HICON icon);

 private:
  HIMAGELIST images_ = nullptr;
  int pixels_ = 0;
};

}  // namespace zq
