// Conversion between our UTF-8 texts and the UTF-16 of the W calls.
#pragma once

#include <string>
#include <string_view>

namespace zq {

// What isn't valid becomes the replacement character: these texts are for drawing and for the shell.
std::wstring ToWide(std::string_view text);

// Empty if the text isn't valid UTF-8: as the name of a file it would be that of another one.
std::wstring ToWideIfValid(std::string_view text);

std::string FromWide(std::wstring_view text);

}  // namespace zq
