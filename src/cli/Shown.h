// Paths, amounts and times as people read them, in the terminal and in the report.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "cli/Plan.h"

namespace zq::cli {

// The path with all that a terminal would act upon made visible: control characters and those that turn the
// direction of writing as \n, \x1B, \u202E; bytes that aren't UTF-8 as \xFF; a backslash as it is.
std::string Shown(std::string_view path);

// The columns that a shown text takes at most: a character beyond ASCII counts as two, as the widest do.
std::size_t ColumnsAtMost(std::string_view shown);

// At most that many columns of a shown text, its end kept and "..." before it.
std::string Shortened(std::string_view shown, std::size_t columns);

// "812 bytes", "3.4 MiB".
std::string ShownBytes(std::uint64_t bytes);

// "45 s", "2 min 10 s", "3 h 5 min".
std::string ShownSeconds(std::uint64_t seconds);

// "3 files (1.2 MiB), 2 folders, 1 link"; "nothing".
std::string ShownTotals(const Totals& totals);

}  // namespace zq::cli
