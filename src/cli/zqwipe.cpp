// The program zqwipe.
#include <cstdio>
#include <exception>

#include "cli/Session.h"

#ifdef _WIN32
#include "platform/win32/SafeLibraries.h"

// No program's start-up code is to make other names out of "*.tmp": what is destroyed is what is written.
extern "C" {
extern int _CRT_glob;
int _CRT_glob = 0;
}
#endif

int main(int argc, char** argv) {
  try {
#ifdef _WIN32
    zq::LookForLibrariesInWindowsAlone();
#endif
    return static_cast<int>(zq::cli::RunSession({argv + (argc > 0 ? 1 : 0), argv + argc}));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zqwipe: %s\n", error.what());
    return static_cast<int>(zq::cli::ExitCode::SomeKept);
  }
}
