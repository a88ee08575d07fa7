// Like: the one pattern match of the program, on whole texts, with upper and lower case kept apart.
#pragma once

#include <string_view>

namespace zq {

// `*` any run of characters, `?` any one, `#` any one digit, `[abc]` `[a-z]` one of the list or
// range, `[!abc]` one outside it; anything else is itself. A character is a code point of UTF-8; a byte
// that isn't valid UTF-8 counts as one character. What the table above leaves open is decided so: `[]`
// matches no character but the empty text; `!` alone in brackets and `-` at a list's end are themselves; a
// `[` without its `]` matches nothing.
bool Like(std::string_view text, std::string_view pattern);

// The mask of every file, with a dot in its name or not. Who takes masks looks for it before matching.
inline constexpr const char* kEveryFileMask = "*.*";

}  // namespace zq
