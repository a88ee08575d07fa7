// Pictures out of the program's resources, by name, in the size that is asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "controls/document/Document.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

// The named picture at `pixels` square: the nearest size that the resource holds, scaled where it must be.
UniqueIcon LoadPicture(const char* name, int pixels);

// The program's own icon, likewise.
UniqueIcon LoadProgramIcon(int pixels);

// The same in the upper left corner of a bitmap of `size` with premultiplied alpha, transparent beside it.
// `change`, if there is one, then changes all its pixels, 0xAARRGGBB.
using PixelChange = std::function<void(std::span<std::uint32_t> pixels)>;
UniqueBitmap LoadAlphaPicture(const char* name, int pixels, SIZE size, const PixelChange& change);

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
