// The device on Windows, with the calls of the system that it makes.
#pragma once

#include <memory>

#include "engine/Device.h"
#include "engine/WindowsCalls.h"

namespace zq::engine::win32 {

std::unique_ptr<Device> MakeDevice(const DeviceOptions& options, std::unique_ptr<WindowsCalls> calls);

}  // namespace zq::engine::win32
