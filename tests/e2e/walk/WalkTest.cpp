// The walk with the settings of the first start. Its pictures at another resolution: tests/e2e/walk/at_dpi.sh
// 144
#include "e2e/walk/Scenes.h"

namespace zq::test {
namespace {

TEST(Walk, ThroughEverythingWithTheSettingsOfTheFirstStart) {
  Walk walk;
  WalkThroughEverything(walk);
}

}  // namespace
}  // namespace zq::test
