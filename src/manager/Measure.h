// Measure: how much a wipe would destroy, before the user is asked. Nothing is changed.
#pragma once

#include <cstdint>
#include <string>

#include "platform/FixedPoint.h"

namespace zq {

class Files;
class Process;
struct FileEntry;

// FILE_ATTRIBUTE_REPARSE_POINT. What has it may stand for something in another place, and isn't looked into.
inline constexpr std::uint32_t kAttributeReparsePoint = 0x400;

struct Measured {
  FixedPoint files;
  FixedPoint folders;
  std::uint64_t bytes = 0;
  bool isComplete = true;  // false: something couldn't be looked into, so there may be more

  bool operator==(const Measured&) const = default;
};

// Adds one entry of a listing; of a folder only itself.
void MeasureEntry(const FileEntry& entry, Measured& measured);

// Adds what lies in the folder `path` and below, not the folder itself. Links aren't followed. `process`
// looks at the messages meanwhile.
void MeasureFolder(Files& files, Process& process, const std::string& path, Measured& measured);

}  // namespace zq
