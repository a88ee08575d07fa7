#include "controls/document/TextMeasure.h"

#include "controls/document/Characters.h"

namespace zq {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// Blocks of Unicode whose characters stand alone, in ascending order. All others are left to the system.
constexpr Range kStandsAlone[] = {
    {0x0000, 0x02FF},    // Latin
    {0x0370, 0x0482},    // Greek, Cyrillic
    {0x048A, 0x058F},    // Cyrillic, Armenian
    {0x10A0, 0x10FF},    // Georgian
    {0x1E00, 0x1FFF},    // Latin and Greek with marks
    {0x2000, 0x200A},    // blanks of all widths
    {0x2010, 0x2029},    // punctuation
    {0x2030, 0x205F},    // punctuation
    {0x2070, 0x20CF},    // raised digits, currencies
    {0x2100, 0x2BFF},    // signs
    {0x2E80, 0x3029},    // Chinese
    {0x3030, 0x3098},    // Japanese
    {0x309B, 0xA4CF},    // Japanese, Korean's single letters, Chinese
    {0xAC00, 0xD7A3},    // Korean
    {0xF900, 0xFAFF},    // Chinese
    {0xFF00, 0xFF9D},    // wide forms of Latin
    {0xFFE0, 0xFFE6},    // wide signs
    {0xFFFD, 0xFFFD},    // the replacement character
    {0x20000, 0x3FFFF},  // Chinese
};

bool StandsAlone(char32_t c) {
  for (const Range& range : kStandsAlone) {
    if (c < range.first) return false;
    if (c <= range.last) return true;
  }
  return false;
}

}  // namespace

bool NeedsShaping(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    if (!StandsAlone(NextCodePoint(text, at))) return true;
  }
  return false;
}

}  // namespace zq
