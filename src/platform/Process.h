// Process: what the program asks about its own process, and the start of another.
#pragma once

#include <string>

namespace zq {

class Process {
 public:
  virtual ~Process() = default;

  // True if an instance of this program that started earlier still runs.
  virtual bool EarlierInstanceRuns() = 0;

  // The folder that holds the program, with or without a backslash at its end.
  virtual std::string ApplicationPath() = 0;

  // The argument text as one string: everything behind the program's own name, without the blanks
  // around it.
  virtual std::string CommandLine() = 0;

  // Takes the waiting window messages through their handlers, then returns.
  virtual void PumpMessages() = 0;

  // Shows the system that the program is alive where no message may be taken: looks whether one waits, and
  // leaves it there. May be called as often as one likes; it looks a few times a second.
  virtual void LookAtMessages() = 0;

  // Starts the program at `path`, its window shown as it likes, and doesn't wait for it. False if it can't
  // be started.
  virtual bool StartProgram(const std::string& path) = 0;

  // Ends the process at once: no window gets an unload event.
  virtual void End() = 0;
};

}  // namespace zq
