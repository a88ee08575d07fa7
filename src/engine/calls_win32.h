// WindowsCalls as the system answers them.
#pragma once

#include <memory>

#include "engine/WindowsCalls.h"

namespace zq::engine::win32 {

std::unique_ptr<WindowsCalls> MakeSystemCalls();

}  // namespace zq::engine::win32
