// Pictures out of the program's resources, by name, in the size that is asked for.
#pragma once

#include <memory>

#include "controls/document/Document.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

// The named picture at `pixels` square: the nearest size that the resource holds, scaled where it must be.
UniqueIcon LoadPicture(const char* name, int pixels);

// The program's own icon, likewise.
UniqueIcon LoadProgramIcon(int pixels);

// The same as a bitmap for a menu: with alpha where menus blend it, else on the menus' colour.
UniqueBitmap LoadMenuPicture(const char* name, int pixels);

// `pixels` at 96 dpi, in pixels at `dpi`.
inline int ScaleForDpi(int pixels, int dpi) {
  return ::MulDiv(pixels, dpi, 96);
}

// A PNG in the resources as a bitmap with premultiplied alpha; nothing if it can't be decoded.
UniqueBitmap LoadPng(const char* name);

// A PNG in the resources as a picture of a document, in its natural size on paper. One that can't be decoded
// has no pixels, but still its file.
std::shared_ptr<const PictureData> LoadDocumentPicture(const char* name, Twips naturalWidth,
                                                       Twips naturalHeight);

}  // namespace zq
