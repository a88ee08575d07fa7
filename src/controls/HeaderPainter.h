// HeaderPainter: draws the captions of a list's header that hold an ampersand, which the system may take for
// the mark of an access key.
#pragma once

#include <windows.h>
#include <commctrl.h>

namespace zq {

// The answer to a header's custom draw.
LRESULT PaintHeader(const NMCUSTOMDRAW& draw);

}  // namespace zq
