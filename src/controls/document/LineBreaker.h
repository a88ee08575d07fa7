// Where the lines of a paragraph end.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "controls/document/Document.h"

namespace zq {

// Puts into `ends` the end of each line of `paragraph`, the last one's included: offsets in bytes. `edges` is
// the right edge of each byte's character, as TextMeasure gives it. A line breaks behind a blank, which may
// hang over the width, and beside an ideograph; a word that is longer than a line breaks where the line is
// full, but never between a character and the marks on it. Each line holds at least one character.
void BreakLines(std::string_view paragraph, const std::vector<Twips>& edges, Twips width,
                std::vector<std::size_t>& ends);

}  // namespace zq
