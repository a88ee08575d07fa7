// One run of zqwipe --free-space, from its options to the exit code.
#pragma once

#include "cli/Options.h"

namespace zq::cli {

// Uses the process's streams; interrupts are caught already.
ExitCode RunSpaceSession(const Options& options);

}  // namespace zq::cli
