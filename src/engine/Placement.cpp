#include "engine/Placement.h"

#include <algorithm>
#include <cstddef>

namespace zq::engine {

bool LiesWhereItLay(const std::vector<Piece>& before, const std::vector<Piece>& now, std::uint64_t endBytes) {
  std::size_t next = 0;
  for (const Piece& piece : before) {
    const std::uint64_t end = std::min(piece.offsetBytes + piece.sizeBytes, endBytes);
    for (std::uint64_t at = piece.offsetBytes; at < end;) {
      while (next < now.size() && now[next].offsetBytes + now[next].sizeBytes <= at) ++next;
      if (next == now.size() || now[next].offsetBytes > at) return false;
      const Piece& there = now[next];
      if (there.placeBytes + (at - there.offsetBytes) != piece.placeBytes + (at - piece.offsetBytes)) {
        return false;
      }
      at = there.offsetBytes + there.sizeBytes;
    }
  }
  return true;
}

}  // namespace zq::engine
