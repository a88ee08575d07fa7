#include "e2e/walk/Scenes.h"

#include <array>

namespace zq::test {

void WalkThroughEverything(Walk& walk) {
  struct Scene {
    const char* name;
    void (*play)(Walk&);
  };
  constexpr std::array kScenes{
      Scene{"FirstStart", &FirstStart},
      Scene{"SecondStart", &SecondStart},
      Scene{"LookAround", &LookAround},
      Scene{"AskForHelp", &AskForHelp},
      Scene{"AddItems", &AddItems},
      Scene{"KeepJobs", &KeepJobs},
      Scene{"LookAtThePreferences", &LookAtThePreferences},
      Scene{"WipeAJob", &WipeAJob},
      Scene{"CancelAWipe", &CancelAWipe},
      Scene{"WipeNothing", &WipeNothing},
      Scene{"WipeFreeSpace", &WipeFreeSpace},
      Scene{"UseTheBin", &UseTheBin},
      Scene{"ControlTheManager", &ControlTheManager},
      Scene{"LeaveAndComeBack", &LeaveAndComeBack},
      Scene{"EndByAFailure", &EndByAFailure},
  };
  for (const Scene& scene : kScenes) {
    SCOPED_TRACE(scene.name);
    scene.play(walk);
    if (::testing::Test::HasFatalFailure()) return;
  }
  walk.visits.ExpectAll(walk.exe);
}

}  // namespace zq::test
