// The walk with the settings of the first start. By hand at any resolution, with pictures in
// build/pictures/e2e_walk_test.144dpi:
//
//   ctest --test-dir build/windows -R '^e2e_walk_test$'
//   tests/e2e/walk/at_dpi.sh 144
#include "e2e/walk/Scenes.h"

namespace zq::test {
namespace {

TEST(Walk, ThroughEverythingWithTheSettingsOfTheFirstStart) {
  Walk walk;
  WalkThroughEverything(walk);
}

}  // namespace
}  // namespace zq::test
