// The scenes of a walk, in the order in which a day of a user has them.
#pragma once

#include "e2e/walk/Walk.h"

namespace zq::test {

// From nothing but the program's folder: splash, files of the first start, welcome. The program runs.
void FirstStart(Walk& walk);

// Each menu, the windows that only tell something, and what there is to be told with an empty list. The
// program runs.
void LookAround(Walk& walk);

}  // namespace zq::test
