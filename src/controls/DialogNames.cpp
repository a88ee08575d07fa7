#include "controls/DialogNames.h"

namespace zq {

std::optional<std::wstring_view> NamesInBuffer(std::wstring_view buffer) {
  constexpr std::wstring_view kEnd(L"\0\0", 2);
  const std::size_t end = buffer.find(kEnd);
  // An end at the very last place may have been put there where the names were cut.
  if (end == std::wstring_view::npos || end + kEnd.size() >= buffer.size()) return std::nullopt;
  return buffer.substr(0, end);
}

}  // namespace zq
