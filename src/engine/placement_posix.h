// Where on the device a file's content lies.
#pragma once

#include <vector>

#include "engine/Device.h"
#include "engine/Placement.h"

namespace zq::engine {

struct Placement {
  std::vector<Piece> pieces;    // in the order of their offsets; empty where the file system doesn't tell
  std::vector<ByteRange> room;  // all that takes room on the device, pieces without a known place, too
  bool isTold = false;          // the file system tells
  // Some of the blocks belong to another file too, as after a copy by reflink: they are then left to the
  // other file, and new ones are written.
  bool isShared = false;
};

Placement PlacementOf(int fd);

}  // namespace zq::engine
