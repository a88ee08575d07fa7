// What a volume lies on, as Windows tells it, and the trim of a file there.
#pragma once

#include <cstdint>

#include "engine/Storage.h"
#include "engine/WindowsCalls.h"
#include "engine/WindowsVolume.h"

namespace zq::engine::win32 {

// Asks the volume's device, which is opened without any access rights, so that nobody needs privileges. An
// answer that is too short for what it is said to hold, or points outside itself, counts as none; what isn't
// answered is unknown. Only a disk of this machine that says of itself that seeking costs it time and that it
// takes no trims counts as one that rotates.
StorageInfo StorageOf(WindowsCalls& calls, const Volume& volume);

// Tells the device that it may forget the first `lengthBytes` of the file.
Status TrimFile(WindowsCalls& calls, SystemHandle file, std::uint64_t lengthBytes);

}  // namespace zq::engine::win32
