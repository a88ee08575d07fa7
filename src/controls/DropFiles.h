// DropFiles: the shell's file list, as whoever drops something hands it over in memory.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zq {

// A list is in one of the two forms.
struct DropList {
  std::vector<std::u16string> wide;
  std::vector<std::string> narrow;  // in the system's code page
};

// The paths in a block of memory that begins with a DROPFILES. The bytes are another program's: a list that
// isn't wholly there (its place outside the block, no two nulls at its end) is none.
DropList ReadDropFiles(std::string_view bytes);

}  // namespace zq
