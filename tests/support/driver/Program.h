// A program under test, started as a user would, and its windows.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/driver/MessageBoxView.h"
#include "support/driver/Wait.h"
#include "support/driver/Window.h"

namespace zq::test {

class Program {
 public:
  // Starts `path` with `arguments` as its raw argument text and its own folder as working folder.
  // Throws a DriverError outside the cage or when it can't be started. The program and all that it
  // starts end with this object at the latest. `token` are the rights that it has; null: our own.
  explicit Program(const std::string& path, const std::string& arguments = "", HANDLE token = nullptr);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  DWORD Id() const { return id_; }
  HANDLE Handle() const { return process_; }
  bool IsRunning() const;
  // The exit code, waited for; throws when the limit is over.
  unsigned WaitExit(Limit limit = kPatience) const;

  // Its visible top-level windows, the front one first.
  std::vector<Window> Windows() const;
  // One of them by its title, and by its class if given; waited for.
  Window WaitWindow(std::string_view title, std::string_view className = "", Limit limit = kPatience) const;
  // The same without waiting.
  std::optional<Window> FindWindow(std::string_view title, std::string_view className = "") const;
  void WaitNoWindow(std::string_view title, Limit limit = kPatience) const;

  // The message boxes that are open; the one with this title, waited for and wholly read.
  std::vector<Window> Boxes() const;
  MessageBoxView WaitBox(std::string_view title, Limit limit = kPatience) const;

  // The titles of its windows, for messages.
  std::string Describe() const;

 private:
  HANDLE job_ = nullptr;
  HANDLE process_ = nullptr;
  DWORD id_ = 0;
};

}  // namespace zq::test
