// EventLog: what happened, in order, as short lines. Fakes that share one log let a test compare a whole
// run as one list; FakeFiles::log can be that log.
#pragma once

#include <string>
#include <vector>

namespace zq::test {

using EventLog = std::vector<std::string>;

}  // namespace zq::test
