// Lengths as texts: "6.5in", ".3in", "2cm", "100%".
#pragma once

#include <string_view>

#include "controls/document/Document.h"

namespace zq {

// A number with the unit in, cm, mm or pt, in twips where there is none; with "%" a part of `whole`.
// Raises TypeMismatch for anything else, and Overflow beyond a thousand inches.
Twips LengthFrom(std::string_view text, Twips whole = 0);

}  // namespace zq
