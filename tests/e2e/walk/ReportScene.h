// The report's window, which an answer or a command has asked for.
#pragma once

#include "e2e/walk/Walk.h"

namespace zq::test {

// Looked at and closed.
void SeeReport(Walk& walk, std::string_view part);
// The same, with what can be done to a report on the way: it is copied, and printed into a file.
void ReadTheReport(Walk& walk);

}  // namespace zq::test
