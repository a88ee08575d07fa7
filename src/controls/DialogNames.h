// What the dialog that asks for files leaves in its buffer.
#pragma once

#include <optional>
#include <string_view>

namespace zq {

// The names in the buffer, with a null between each, without the two nulls that end them. Nothing if the end
// doesn't lie wholly inside, with room behind it: there were more names than the buffer holds, and the last
// one may be the beginning of another file's.
std::optional<std::wstring_view> NamesInBuffer(std::wstring_view buffer);

}  // namespace zq
