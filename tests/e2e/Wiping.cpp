#include "e2e/Wiping.h"

#include <algorithm>

#include "support/driver/Text.h"

namespace zq::test {
namespace {

constexpr ULONGLONG kSecond = 10'000'000;  // in the units of a FILETIME
// Of a wipe that doesn't go on, on a machine with a lot else to do.
constexpr Limit kLongestStandstill{120000};

ULONGLONG Ticks(SYSTEMTIME time) {
  time.wMilliseconds = 0;
  FILETIME file{};
  ::SystemTimeToFileTime(&time, &file);
  return (ULONGLONG{file.dwHighDateTime} << 32) + file.dwLowDateTime;
}

std::string Stamp(const SYSTEMTIME& time) {
  wchar_t date[128];
  wchar_t clock[128];
  ::GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, date, 128);
  ::GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, clock, 128);
  return ToUtf8(date) + " " + ToUtf8(clock);
}

constexpr char kWipeOperation[] = "Wipe Operation";

// The line of the status window that tells how far the file in work is; "" when there is none.
std::string WorkLine(const Program& program) {
  for (Window window : program.Windows()) {
    for (Window child : window.Children()) {
      try {
        const std::string text = child.Text();
        if (text.starts_with("Processed ")) return text;
      } catch (const DriverError&) {
        if (child) throw;
        return "";  // gone since it was listed
      }
    }
  }
  return "";
}

}  // namespace

bool StampWindow::Has(const std::string& stamp) const {
  SYSTEMTIME now{};
  ::GetLocalTime(&now);
  for (ULONGLONG ticks = Ticks(start_); ticks <= Ticks(now); ticks += kSecond) {
    ULARGE_INTEGER value{};
    value.QuadPart = ticks;
    const FILETIME file{value.LowPart, value.HighPart};
    SYSTEMTIME time{};
    ::FileTimeToSystemTime(&file, &time);
    if (Stamp(time) == stamp) return true;
  }
  return false;
}

std::vector<std::string> Lines(const std::string& bytes) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t end = std::min(bytes.find("\r\n", at), bytes.size());
    lines.push_back(bytes.substr(at, end - at));
    at = end + 2;
  }
  return lines;
}

StatusWindow::StatusWindow(const Program& program) {
  Await("the status window", [&] {
    for (Window candidate : program.Windows()) {
      if (::FindWindowExW(candidate.Handle(), nullptr, L"Button", L"Cancel Operation")) window = candidate;
    }
    return static_cast<bool>(window);
  });
  cancel = window.Child("Cancel Operation");
  current = window.ChildOfClass(PROGRESS_CLASSA, 0);
  overall = window.ChildOfClass(PROGRESS_CLASSA, 1);
}

std::string StatusWindow::Line() const {
  for (Window child : window.Children()) {
    const std::string text = child.Text();
    if (text.starts_with("Processed ")) return text;
  }
  return "";
}

void StatusWindow::WaitWork(const std::string& name) const {
  Await("work at " + name,
        [&] { return Line().find(name) != std::string::npos && ReadProgress(current).position > 0; });
}

void StatusWindow::WaitChange() const {
  const std::string before = Line();
  Await("the wipe to go on", [&] { return Line() != before; });
}

Hold::Hold(const Program& program, const StatusWindow& status) {
  status.cancel.Press();
  Await("the question", [&] {
    for (Window box : program.Boxes()) {
      if (box.HasText("Cancel")) box_ = box;
    }
    return static_cast<bool>(box_);
  });
  ::SetWindowPos(box_.Handle(), nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

Hold::~Hold() {
  ::PostMessageA(box_.Handle(), WM_COMMAND, IDNO, 0);
  WaitFor([this] { return !box_; });
}

SettingsFile WipingTest::Level7() {
  SettingsFile settings;
  settings.passes = 7;
  return settings;
}

void WipingTest::Confirm(const Program& program, const MainWindow& main) {
  main.WaitJobTools(true);
  main.PressTool("Wipe Now");
  program.WaitBox(kWipeOperation).Answer("OK");
}

MessageBoxView WaitClosingBox(const Program& program) {
  const auto isThere = [&program] {
    const std::vector<Window> boxes = program.Boxes();
    return std::any_of(boxes.begin(), boxes.end(), [](Window box) { return box.HasText(kWipeOperation); });
  };
  for (std::string before = "none";;) {
    const std::string now = WorkLine(program);
    if (now == before || isThere()) break;
    before = now;
    WaitFor([&] { return isThere() || WorkLine(program) != before; }, kLongestStandstill);
  }
  return program.WaitBox(kWipeOperation);
}

void WipingTest::Close(const Program& program, const MainWindow& main, const char* text) {
  const MessageBoxView box = WaitClosingBox(program);
  ExpectBox(box, kWipeOperation, text, BoxIcon::Question, {"Yes", "No"}, "Yes");
  EXPECT_TRUE(main.window.IsVisible());
  box.Answer("No");
  main.window.WaitEnabled();
}

WipingTest::Report WipingTest::ReadReport(const StampWindow& stamps) const {
  const std::string bytes = ReadFileBytes(reportPath_);
  EXPECT_TRUE(bytes.ends_with("\"\r\n"));
  std::vector<std::string> lines = Lines(bytes);
  for (std::string& line : lines) {
    EXPECT_EQ(std::count(line.begin(), line.end(), '"'), 2) << line;
    EXPECT_TRUE(line.size() >= 2 && line.front() == '"' && line.back() == '"') << line;
    line = line.substr(1, line.size() - 2);
  }
  Report report;
  if (lines.size() < 5) throw DriverError("a report of too few lines: " + bytes);
  EXPECT_EQ(lines[0], "Untitled Job");
  EXPECT_TRUE(stamps.Has(lines[1])) << lines[1];
  EXPECT_EQ(lines[2], "[FOLDERS]");
  EXPECT_EQ(lines[3], "[FILES]");
  const auto errors = std::find(lines.begin(), lines.end(), "[ERRORS]");
  if (errors == lines.end()) throw DriverError("a report without errors' mark: " + bytes);
  report.files.assign(lines.begin() + 4, errors);
  report.errors.assign(errors + 1, lines.end());
  return report;
}

std::string WipingTest::Large(const std::string& name) const {
  return scratch_.Make(name, Marked(kMark, kLargeBytes));
}

void ExpectWiped(const MainWindow& main, int row) {
  EXPECT_EQ(main.list.Text(row, 1), "0 Bytes");
  EXPECT_NE(main.list.State(row) & LVIS_CUT, 0u) << "row " << row << " is not ghosted";
}

void ExpectUntouched(const MainWindow& main, int row, const std::string& size) {
  EXPECT_EQ(main.list.Text(row, 1), size);
  EXPECT_EQ(main.list.State(row) & LVIS_CUT, 0u) << "row " << row << " is ghosted";
}

}  // namespace zq::test
