// FakePlatform: all services of the system as fakes that share one log.
#pragma once

#include "platform/Platform.h"
#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeMessageBoxes.h"
#include "support/fakes/FakeProcess.h"
#include "support/fakes/FakeRegional.h"
#include "support/fakes/FakeRegistry.h"
#include "support/fakes/FakeWindowList.h"

namespace zq::test {

struct FakePlatform {
  FakeFiles files;
  FakeMessageBoxes messageBoxes{files.log};
  FakeProcess process{files.log};
  FakeRegional regional;
  FakeRegistry registry;
  FakeWindowList windows{files.log};
  Platform platform{files, messageBoxes, process, regional, registry, UntoldWork::Instance(), windows};
};

}  // namespace zq::test
