// What the system's own drag and drop takes in the process that is dropped on: measured on a sample program
// that has nothing of ours, beside what the soak measures. ZQ_SOAK_CYCLES times ZQ_SOAK_DROPS drags, 2 if not
// set.
#include <windows.h>
#include <gtest/gtest.h>
#include <ole2.h>

#include <cstdio>
#include <cstdlib>

#include "soak/Readings.h"
#include "support/driver/Driver.h"
#include "support/driver/sample_app.h"

namespace zq::test {
namespace {

int Drags() {
  const char* const cycles = std::getenv("ZQ_SOAK_CYCLES");
  const char* const drops = std::getenv("ZQ_SOAK_DROPS");
  return cycles && drops ? std::atoi(cycles) * std::atoi(drops) : 2;
}

TEST(Drags, OnAProgramWithNothingOfOursLeaveNoHandle) {
  ASSERT_TRUE(SUCCEEDED(::OleInitialize(nullptr)));
  {
    const Program program(ProgramFolder() + "\\zq_sample_app.exe");
    const Window window = program.WaitWindow(kSampleTitle);
    const POINT list = window.WaitChild(kList).Centre();
    Readings before;
    int made = -2;  // the first ones warm it up
    for (int tries = 0; made < Drags(); ++tries) {
      if (made == 0 && before.empty()) before = ReadSystem(program.Handle());
      try {
        if (DragFilesTo(list, {"C:\\b.txt"}) == DROPEFFECT_COPY) ++made;
      } catch (const DriverError& error) {
        std::fprintf(stderr, "No drag: %s\n", error.what());
      }
      ASSERT_LT(tries, 2 * Drags() + 10);
    }
    Readings now;
    WaitFor([&] {
      now = ReadSystem(program.Handle());
      return now[kSystemHandles] <= before[kSystemHandles] && now[kSystemGdi] <= before[kSystemGdi];
    });
    std::printf("After %d drags:\n%s", made, Differences(before, now).c_str());
    EXPECT_LE(now[kSystemHandles], before[kSystemHandles]);
    EXPECT_LE(now[kSystemGdi], before[kSystemGdi]);
  }
  ::OleUninitialize();
}

}  // namespace
}  // namespace zq::test
