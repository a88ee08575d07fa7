// Where on the device a file's content lies.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/Device.h"

namespace zq::engine {

// A part of a file's content, and where on the device it lies.
struct Piece {
  std::uint64_t offsetBytes = 0;
  std::uint64_t placeBytes = 0;
  std::uint64_t sizeBytes = 0;
};

struct Placement {
  std::vector<Piece> pieces;    // in the order of their offsets; empty where the file system doesn't tell
  std::vector<ByteRange> room;  // all that takes room on the device, pieces without a known place, too
  bool isTold = false;          // the file system tells
  // Some of the blocks belong to another file too, as after a copy by reflink: they are then left to the
  // other file, and new ones are written.
  bool isShared = false;
};

Placement PlacementOf(int fd);

// Whether all that lay in `before`, up to the end of the content, lies in the same places now. The pieces may
// be cut otherwise.
bool LiesWhereItLay(const std::vector<Piece>& before, const std::vector<Piece>& now, std::uint64_t endBytes);

}  // namespace zq::engine
