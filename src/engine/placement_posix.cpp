#include "engine/placement_posix.h"

#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cstring>

namespace zq::engine {

Placement PlacementOf(int fd) {
  constexpr std::uint32_t kExtents = 128;
  constexpr std::uint32_t kNowhere =
      FIEMAP_EXTENT_UNKNOWN | FIEMAP_EXTENT_DELALLOC | FIEMAP_EXTENT_DATA_INLINE;
  alignas(fiemap) char memory[sizeof(fiemap) + kExtents * sizeof(fiemap_extent)];
  Placement placement;
  std::uint64_t start = 0;
  for (;;) {
    std::memset(memory, 0, sizeof(fiemap));
    auto* map = reinterpret_cast<fiemap*>(memory);
    map->fm_start = start;
    map->fm_length = FIEMAP_MAX_OFFSET - start;
    map->fm_extent_count = kExtents;
    if (::ioctl(fd, FS_IOC_FIEMAP, map) != 0) {
      placement.isTold = false;
      return placement;
    }
    placement.isTold = true;
    if (map->fm_mapped_extents == 0) return placement;
    for (std::uint32_t i = 0; i < map->fm_mapped_extents; ++i) {
      const fiemap_extent& extent = map->fm_extents[i];
      placement.isShared = placement.isShared || (extent.fe_flags & FIEMAP_EXTENT_SHARED) != 0;
      if (!placement.room.empty() &&
          placement.room.back().offsetBytes + placement.room.back().sizeBytes == extent.fe_logical) {
        placement.room.back().sizeBytes += extent.fe_length;
      } else {
        placement.room.push_back({extent.fe_logical, extent.fe_length});
      }
      if ((extent.fe_flags & kNowhere) == 0) {
        placement.pieces.push_back({extent.fe_logical, extent.fe_physical, extent.fe_length});
      }
      if ((extent.fe_flags & FIEMAP_EXTENT_LAST) != 0) return placement;
      start = extent.fe_logical + extent.fe_length;
    }
  }
}

}  // namespace zq::engine
