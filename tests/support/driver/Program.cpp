#include "support/driver/Program.h"

#include "support/driver/Scratch.h"
#include "support/driver/Text.h"

namespace zq::test {

Program::Program(const std::string& path, const std::string& arguments, HANDLE token) {
  RequireCage();
  // The job's end is the end of all in it, whatever becomes of this process.
  job_ = ::CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  ::SetInformationJobObject(job_, JobObjectExtendedLimitInformation, &limits, sizeof limits);

  std::wstring commandLine = ToWide("\"" + path + "\"" + (arguments.empty() ? "" : " " + arguments));
  const std::wstring folder = ToWide(path.substr(0, path.rfind('\\')));
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info{};
  const auto start = [&]() -> DWORD {
    const BOOL started =
        token ? ::CreateProcessAsUserW(token, nullptr, commandLine.data(), nullptr, nullptr, FALSE,
                                       CREATE_SUSPENDED, nullptr, folder.c_str(), &startup, &info)
              : ::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED,
                                 nullptr, folder.c_str(), &startup, &info);
    return started ? ERROR_SUCCESS : ::GetLastError();
  };
  DWORD error = start();
  // On a busy machine Wine sometimes loses a process before its first instruction, and says so by this error.
  for (int again = 0; again < 3 && error == ERROR_INTERNAL_ERROR; ++again) error = start();
  if (error != ERROR_SUCCESS) {
    ::CloseHandle(job_);
    throw DriverError("can't start " + path + ", error " + std::to_string(error));
  }
  ::AssignProcessToJobObject(job_, info.hProcess);
  ::ResumeThread(info.hThread);
  ::CloseHandle(info.hThread);
  process_ = info.hProcess;
  id_ = info.dwProcessId;
}

Program::~Program() {
  ::TerminateJobObject(job_, 1);
  ::WaitForSingleObject(process_, 10000);
  ::CloseHandle(process_);
  ::CloseHandle(job_);
}

bool Program::IsRunning() const {
  return ::WaitForSingleObject(process_, 0) == WAIT_TIMEOUT;
}

unsigned Program::WaitExit(Limit limit) const {
  if (::WaitForSingleObject(process_, static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
    throw DriverError("the program did not end; its windows are " + Describe());
  }
  DWORD code = 0;
  ::GetExitCodeProcess(process_, &code);
  return code;
}

std::vector<Window> Program::Windows() const {
  return TopLevelWindows([this](Window window) { return window.ProcessId() == id_ && window.IsVisible(); });
}

std::optional<Window> Program::FindWindow(std::string_view title, std::string_view className) const {
  for (Window window : Windows()) {
    if (window.HasText(title) && (className.empty() || window.ClassName() == className)) return window;
  }
  return std::nullopt;
}

Window Program::WaitWindow(std::string_view title, std::string_view className, Limit limit) const {
  std::optional<Window> found;
  const auto look = [&] {
    found = FindWindow(title, className);
    return found.has_value() || !IsRunning();
  };
  if (!WaitFor(look, limit) || !found) {
    throw DriverError("no window '" + std::string(title) + "'; the program " +
                      (IsRunning() ? "has " : "has ended, with ") + Describe());
  }
  return *found;
}

void Program::WaitNoWindow(std::string_view title, Limit limit) const {
  Await(
      "the end of the window '" + std::string(title) + "'", [&] { return !FindWindow(title); }, limit);
}

std::vector<Window> Program::Boxes() const {
  std::vector<Window> boxes = Windows();
  std::erase_if(boxes, [](Window window) { return !MessageBoxView::IsMessageBox(window); });
  return boxes;
}

MessageBoxView Program::WaitBox(std::string_view title, Limit limit) const {
  Window found;
  const auto look = [&] {
    for (Window box : Boxes()) {
      if (box.HasText(title)) found = box;
    }
    return static_cast<bool>(found) || !IsRunning();
  };
  if (!WaitFor(look, limit) || !found) {
    throw DriverError("no message box '" + std::string(title) + "'; the program " +
                      (IsRunning() ? "has " : "has ended, with ") + Describe());
  }
  return MessageBoxView(found);
}

std::string Program::Describe() const {
  std::string list;
  for (Window window : Windows()) {
    if (!list.empty()) list += ", ";
    list += window.Describe();
  }
  return list.empty() ? "no window" : list;
}

}  // namespace zq::test
