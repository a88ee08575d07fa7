// The companion as the tests start and end it.
#pragma once

#include "e2e/Zeroquill.h"
#include "support/driver/Text.h"

namespace zq::test {

inline constexpr char kManagerTitle[] = "ZQ Explorer Manager";

inline Window ManagerWindow() {
  return Window(::FindWindowW(nullptr, L"ZQ Explorer Manager"));
}

inline constexpr wchar_t kRunKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";
inline constexpr wchar_t kRunValue[] = L"Zeroquill Explorer Manager";

// What the system starts with itself under the companion's name; "" for nothing.
inline std::string RunValue() {
  wchar_t text[600] = L"";
  DWORD bytes = sizeof text;
  const LSTATUS read =
      ::RegGetValueW(HKEY_LOCAL_MACHINE, kRunKey, kRunValue, RRF_RT_REG_SZ, nullptr, text, &bytes);
  return read == ERROR_SUCCESS ? ToUtf8(text) : "";
}

inline void RemoveRunValue() {
  ::RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kRunKey, kRunValue);
}

// It comes last: the rest of the companion is ready by then.
inline Window WaitManager() {
  Await("the companion's window", [] { return static_cast<bool>(ManagerWindow()); });
  return ManagerWindow();
}

// Started, and closed at the end. Killed, it would never take back its class: Wine hands that out for good,
// and each later drop in this cage would go to nobody.
class RunningManager {
 public:
  explicit RunningManager(const std::string& path, HANDLE token = nullptr) : program(path, "", token) {}
  ~RunningManager() {
    try {
      Await("the companion's window or its end", [&] { return ManagerWindow() || !program.IsRunning(); });
      if (const Window window = ManagerWindow()) window.Close();
      program.WaitExit();
    } catch (const DriverError& error) {
      ADD_FAILURE() << "the companion stays: " << error.what();
    }
  }
  RunningManager(const RunningManager&) = delete;
  RunningManager& operator=(const RunningManager&) = delete;

  const Program program;
};

class ManagerTest : public ZeroquillTest {
 protected:
  const std::string manager_ = folder_ + "\\ZQExMan.exe";
};

}  // namespace zq::test
