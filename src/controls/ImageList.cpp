#include "controls/ImageList.h"

#include <vector>

namespace zq {

void ImageList::AddIcon(HICON icon) {
  if (icon && ::ImageList_ReplaceIcon(images_.Get(), -1, icon) >= 0) return;
  // Blank: an icon whose mask lets the background through everywhere.
  const std::size_t maskBytes = static_cast<std::size_t>((pixels_ + 15) / 16 * 2 * pixels_);
  const std::vector<BYTE> opaque(maskBytes, 0xFF);
  const std::vector<BYTE> black(maskBytes, 0);
  const UniqueIcon blank(
      ::CreateIcon(::GetModuleHandleW(nullptr), pixels_, pixels_, 1, 1, opaque.data(), black.data()));
  ::ImageList_ReplaceIcon(images_.Get(), -1, blank.Get());
}

}  // namespace zq
