// Where on the device the parts of a file lie.
#pragma once

#include <cstdint>
#include <vector>

namespace zq::engine {

// A part of a file's content, and where on the device it lies.
struct Piece {
  std::uint64_t offsetBytes = 0;
  std::uint64_t placeBytes = 0;
  std::uint64_t sizeBytes = 0;
};

// Whether all that lay in `before`, up to the end of the content, lies in the same places now. The pieces may
// be cut otherwise.
bool LiesWhereItLay(const std::vector<Piece>& before, const std::vector<Piece>& now, std::uint64_t endBytes);

}  // namespace zq::engine
