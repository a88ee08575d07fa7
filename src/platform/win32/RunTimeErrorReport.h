// The report of a run-time error that nobody handled, with which the process ends.
#pragma once

#include <exception>

namespace zq {

// Shows the report and ends the process at once. `exception` is what was caught at the boundary to the
// system: an exception never crosses a callback.
[[noreturn]] void ReportAndEnd(const std::exception_ptr& exception);

// The exit code of a process that ended so.
inline constexpr unsigned kRunTimeErrorExitCode = 1;

}  // namespace zq
