// FakePlatform: all services of the system as fakes that share one log.
#pragma once

#include "platform/Platform.h"
#include "support/fakes/EventLog.h"
#include "support/fakes/FakeFiles.h"
#include "support/fakes/FakeMessageBoxes.h"
#include "support/fakes/FakeProcess.h"
#include "support/fakes/FakeRegional.h"
#include "support/fakes/FakeRegistry.h"
#include "support/fakes/FakeShellDrops.h"
#include "support/fakes/FakeWindowList.h"

namespace zq::test {

struct FakePlatform {
  FakeFiles files;
  EventLog& log = files.log;
  FakeMessageBoxes boxes{log};
  FakeProcess process{log};
  FakeRegional regional;
  FakeRegistry registry;
  FakeWindowList systemWindows{log};
  FakeShellDrops shellDrops{log};
  Platform platform{files,         boxes,     process, regional, registry, UntoldWork::Instance(),
                    systemWindows, shellDrops};
};

}  // namespace zq::test
