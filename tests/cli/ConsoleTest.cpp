// zqwipe on a Windows console: its question, its progress, and how it is stopped.
#include <windows.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "support/driver/Scratch.h"
#include "support/driver/Text.h"
#include "support/driver/Wait.h"

namespace zq::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

enum class Output { InAFile, OnTheConsole };

// zqwipe in a console of its own.
class Zqwipe {
 public:
  Zqwipe(const std::string& arguments, const ScratchFolder& scratch, Output output)
      : outPath_(scratch / "out.txt") {
    RequireCage();
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    HANDLE out = INVALID_HANDLE_VALUE;
    if (output == Output::InAFile) {
      out = ::CreateFileW(ToWide(outPath_).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                          0, nullptr);
      startup.dwFlags = STARTF_USESTDHANDLES;
      startup.hStdOutput = startup.hStdError = out;
    }
    std::wstring line = ToWide("\"" + ProgramFolder() + "\\zqwipe.exe\" " + arguments);
    PROCESS_INFORMATION info{};
    const BOOL started =
        ::CreateProcessW(nullptr, line.data(), nullptr, nullptr, output == Output::InAFile,
                         CREATE_NEW_CONSOLE, nullptr, ToWide(scratch.Path()).c_str(), &startup, &info);
    if (out != INVALID_HANDLE_VALUE) ::CloseHandle(out);
    if (started == 0) throw DriverError("can't start zqwipe, error " + std::to_string(::GetLastError()));
    ::CloseHandle(info.hThread);
    process_ = info.hProcess;
    id_ = info.dwProcessId;
  }
  ~Zqwipe() {
    ::TerminateProcess(process_, 99);
    ::WaitForSingleObject(process_, 10000);
    ::CloseHandle(process_);
  }
  Zqwipe(const Zqwipe&) = delete;
  Zqwipe& operator=(const Zqwipe&) = delete;

  DWORD Id() const { return id_; }
  HANDLE Handle() const { return process_; }

  unsigned WaitExit(Limit limit = kPatience) const {
    if (::WaitForSingleObject(process_, static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
      throw DriverError("zqwipe did not end");
    }
    DWORD code = 0;
    ::GetExitCodeProcess(process_, &code);
    return code;
  }
  // What it has printed into the file.
  std::string Printed() const { return ReadFileBytes(outPath_); }

 private:
  std::string outPath_;
  HANDLE process_ = nullptr;
  DWORD id_ = 0;
};

// This process on the console of another, and nobody's own afterwards.
class Attached {
 public:
  explicit Attached(const Zqwipe& zqwipe) {
    ::FreeConsole();
    // What is sent to all of the console comes here too.
    ::SetConsoleCtrlHandler(Ignore, TRUE);
    Await("the console of zqwipe", [&] { return ::AttachConsole(zqwipe.Id()) != 0; });
  }
  ~Attached() {
    ::FreeConsole();
    ::SetConsoleCtrlHandler(Ignore, FALSE);
  }
  Attached(const Attached&) = delete;
  Attached& operator=(const Attached&) = delete;

  std::string Text() const {
    const HANDLE screen = Open(L"CONOUT$");
    CONSOLE_SCREEN_BUFFER_INFO info{};
    ::GetConsoleScreenBufferInfo(screen, &info);
    const SHORT lines = std::min<SHORT>(info.dwSize.Y, 60);
    std::string text;
    std::wstring line(static_cast<std::size_t>(info.dwSize.X), L' ');
    for (SHORT y = 0; y < lines; ++y) {
      DWORD got = 0;
      ::ReadConsoleOutputCharacterW(screen, line.data(), static_cast<DWORD>(line.size()), {0, y}, &got);
      std::string shown = ToUtf8(line.substr(0, got));
      shown.erase(shown.find_last_not_of(' ') + 1);
      text += shown + '\n';
    }
    ::CloseHandle(screen);
    return text;
  }

  void Type(const std::string& keys) const {
    const HANDLE keyboard = Open(L"CONIN$");
    for (const char key : keys) {
      INPUT_RECORD record{};
      record.EventType = KEY_EVENT;
      record.Event.KeyEvent.bKeyDown = TRUE;
      record.Event.KeyEvent.wRepeatCount = 1;
      record.Event.KeyEvent.uChar.UnicodeChar = static_cast<unsigned char>(key);
      if (key == '\x03') {
        record.Event.KeyEvent.wVirtualKeyCode = 'C';
        record.Event.KeyEvent.dwControlKeyState = LEFT_CTRL_PRESSED;
      } else if (key == '\r') {
        record.Event.KeyEvent.wVirtualKeyCode = VK_RETURN;
      }
      DWORD written = 0;
      ::WriteConsoleInputW(keyboard, &record, 1, &written);
    }
    ::CloseHandle(keyboard);
  }

 private:
  static BOOL WINAPI Ignore(DWORD) { return TRUE; }
  static HANDLE Open(const wchar_t* name) {
    return ::CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                         OPEN_EXISTING, 0, nullptr);
  }
};

// A request to stop as the system hands it over: it calls this routine of the process on a thread of its own.
// Which library has it, and where, is the same in all processes of one kind.
HANDLE SendControlEvent(const Zqwipe& zqwipe, DWORD event) {
  const FARPROC routine = ::GetProcAddress(::GetModuleHandleW(L"kernelbase"), "CtrlRoutine");
  if (routine == nullptr) throw DriverError("there is no CtrlRoutine");
  const HANDLE thread = ::CreateRemoteThread(
      zqwipe.Handle(), nullptr, 0, reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(routine)),
      reinterpret_cast<void*>(static_cast<ULONG_PTR>(event)), 0, nullptr);
  if (thread == nullptr) throw DriverError("no thread in zqwipe");
  return thread;
}

// Whether it has begun to be overwritten, and reading it is possible meanwhile.
bool IsInWork(const std::string& path) {
  const HANDLE file = ::CreateFileW(ToWide(path).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  char bytes[4]{};
  DWORD got = 0;
  ::ReadFile(file, bytes, sizeof bytes, &got, nullptr);
  ::CloseHandle(file);
  return std::any_of(bytes, bytes + got, [](char c) { return c != '\0'; });
}

class ConsoleTest : public ::testing::Test {
 protected:
  static constexpr std::size_t kLargeBytes = 256u << 20;

  // Begins a wipe that takes seconds, and stops it as `stop` does. What is slow by itself is so each time; a
  // machine that has just something else to do isn't: so the quickest of three attempts counts.
  template <typename Stop>
  void ExpectStopsInTime(Stop&& stop) {
    auto quickest = std::chrono::milliseconds::max();
    for (int attempt = 0; attempt < 3 && quickest >= kAtMost; ++attempt) {
      const std::string big = scratch_.Make("big.dat", std::string(kLargeBytes, '\0'));
      const std::string small = scratch_.Make("small.txt", "12345");
      const Zqwipe zqwipe("--yes --json --level 7 big.dat small.txt", scratch_, Output::InAFile);
      Await("the wipe", [&] { return IsInWork(big); });
      const auto start = std::chrono::steady_clock::now();
      stop(zqwipe);
      const unsigned code = zqwipe.WaitExit();
      quickest = std::min(quickest, std::chrono::duration_cast<std::chrono::milliseconds>(
                                        std::chrono::steady_clock::now() - start));
      EXPECT_EQ(code, 3u);
      const std::string printed = zqwipe.Printed();
      EXPECT_THAT(printed, HasSubstr("zqwipe: kept big.dat: cancelled while it was in work: it may be partly "
                                     "overwritten"));
      EXPECT_THAT(printed, HasSubstr("zqwipe: kept small.txt: cancelled before its turn"));
      EXPECT_THAT(printed, HasSubstr("\"cancelled\": true, \"exitCode\": 3"));
      EXPECT_THAT(printed, HasSubstr("\"totals\": {\"wiped\": 0, \"kept\": 2, "));
      EXPECT_TRUE(PathExists(big));
      EXPECT_EQ(ReadFileBytes(small), "12345");
    }
    std::printf("stopped after %d ms\n", static_cast<int>(quickest.count()));
    EXPECT_LT(quickest, kAtMost);
  }

  static constexpr std::chrono::milliseconds kAtMost{250};
  const ScratchFolder scratch_;
};

TEST_F(ConsoleTest, StopsInTimeByCtrlC) {
  ExpectStopsInTime([](const Zqwipe& zqwipe) {
    const Attached console(zqwipe);
    EXPECT_TRUE(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0));
    zqwipe.WaitExit();
  });
}

TEST_F(ConsoleTest, StopsInTimeByCtrlBreak) {
  ExpectStopsInTime([](const Zqwipe& zqwipe) { ::CloseHandle(SendControlEvent(zqwipe, CTRL_BREAK_EVENT)); });
}

// The system ends the process when it has the handler's answer: so that mustn't come before the end.
TEST_F(ConsoleTest, StopsInTimeWhenItsWindowIsClosedOrTheSystemShutsDown) {
  for (const DWORD event : {CTRL_CLOSE_EVENT, CTRL_SHUTDOWN_EVENT}) {
    SCOPED_TRACE(event);
    ExpectStopsInTime([event](const Zqwipe& zqwipe) {
      const HANDLE thread = SendControlEvent(zqwipe, event);
      zqwipe.WaitExit();
      DWORD code = 0;
      ::GetExitCodeThread(thread, &code);
      EXPECT_EQ(code, 3u) << "it ended with the process, and so by its code";
      ::CloseHandle(thread);
    });
  }
}

TEST_F(ConsoleTest, AsksAndTakesYesAlone) {
  struct Case {
    const char* keys;
    unsigned code;
    const char* says;
  };
  const std::string path = scratch_ / "a.dat";
  for (const Case& c : {Case{"no\r", 3, "zqwipe: cancelled; nothing was destroyed"},
                        Case{"\r", 3, "zqwipe: cancelled; nothing was destroyed"},
                        Case{"y\r", 3, "zqwipe: cancelled; nothing was destroyed"},
                        Case{"yes\r", 0, "Wiped: 1 file (4 bytes). Kept: nothing."}}) {
    SCOPED_TRACE(c.keys);
    scratch_.Make("a.dat", "1234");
    const Zqwipe zqwipe("a.dat", scratch_, Output::OnTheConsole);
    const Attached console(zqwipe);
    Await("the question",
          [&] { return console.Text().find("Type yes to destroy them:") != std::string::npos; });
    EXPECT_THAT(console.Text(), HasSubstr("About to destroy 1 file (4 bytes), so that nothing of it can be"));
    console.Type(c.keys);
    EXPECT_EQ(zqwipe.WaitExit(), c.code);
    EXPECT_THAT(console.Text(), HasSubstr(c.says));
    EXPECT_EQ(PathExists(path), c.code != 0);
  }
}

TEST_F(ConsoleTest, TakesCtrlCForANo) {
  const std::string path = scratch_.Make("a.dat", "1234");
  const Zqwipe zqwipe("a.dat", scratch_, Output::OnTheConsole);
  const Attached console(zqwipe);
  Await("the question",
        [&] { return console.Text().find("Type yes to destroy them:") != std::string::npos; });
  EXPECT_TRUE(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0));
  EXPECT_EQ(zqwipe.WaitExit(), 3u);
  EXPECT_THAT(console.Text(), HasSubstr("zqwipe: cancelled; nothing was destroyed"));
  EXPECT_EQ(ReadFileBytes(path), "1234");
}

TEST_F(ConsoleTest, GivesTheConsoleItsCodePageBack) {
  for (const char* keys : {"no\r", "yes\r"}) {
    scratch_.Make("a.dat", "1234");
    const Zqwipe zqwipe("a.dat", scratch_, Output::OnTheConsole);
    const Attached console(zqwipe);
    Await("the question",
          [&] { return console.Text().find("Type yes to destroy them:") != std::string::npos; });
    EXPECT_EQ(::GetConsoleOutputCP(), UINT{CP_UTF8});
    console.Type(keys);
    zqwipe.WaitExit();
    EXPECT_NE(::GetConsoleOutputCP(), UINT{CP_UTF8}) << "what a new console has";
  }
}

TEST_F(ConsoleTest, ShowsProgressOnAConsoleAlone) {
  scratch_.Make("big.dat", std::string(kLargeBytes, '\0'));
  {
    const Zqwipe zqwipe("--yes --level 7 big.dat", scratch_, Output::OnTheConsole);
    const Attached console(zqwipe);
    Await("the progress", [&] {
      const std::string text = console.Text();
      return text.find("%  ") != std::string::npos && text.find("  big.dat") != std::string::npos;
    });
    // Twenty-one passes over the file take as long as the disk has for them.
    EXPECT_EQ(zqwipe.WaitExit(std::chrono::minutes(5)), 0u);
    EXPECT_THAT(console.Text(), Not(HasSubstr("%"))) << "the line is taken away at the end";
    EXPECT_THAT(console.Text(), HasSubstr("Wiped: 1 file (256.0 MiB). Kept: nothing."));
  }
  scratch_.Make("big.dat", std::string(kLargeBytes / 16, '\0'));
  const Zqwipe zqwipe("--yes big.dat", scratch_, Output::InAFile);
  EXPECT_EQ(zqwipe.WaitExit(), 0u);
  EXPECT_THAT(zqwipe.Printed(), Not(HasSubstr("%")));
}

}  // namespace
}  // namespace zq::test
