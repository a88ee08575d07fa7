// One run of zqwipe, from the command line to the exit code.
#pragma once

#include <string>
#include <vector>

#include "cli/Options.h"

namespace zq::cli {

// `arguments` without the program's name. Uses the process's streams.
ExitCode RunSession(std::vector<std::string> arguments);

}  // namespace zq::cli
