// What the tests of job wipes share: the boxes' texts, the status window, the report.
#pragma once

#include "e2e/Zeroquill.h"

namespace zq::test {

inline constexpr char kComplete[] =
    "The wipe operation is now complete.\r\n\r\n"
    "Do you wish to review the report for the current operation?";
inline constexpr char kCancelled[] =
    "The wipe operation was cancelled so all items may not have been completely processed.  You can review "
    "the report for more details.\r\n\r\n"
    "Do you wish to review the report for the current operation?";

// Stands in every file that is to be destroyed.
inline constexpr char kMark[] = "what nobody must read again ";

// A file so large that a wipe of level 7 is still at it when we come.
inline constexpr std::size_t kLargeBytes = 256u << 20;

// Date and time as the report has them, of every second since this was made.
class StampWindow {
 public:
  StampWindow() { ::GetLocalTime(&start_); }
  bool Has(const std::string& stamp) const;

 private:
  SYSTEMTIME start_{};
};

// Without their CR LF.
std::vector<std::string> Lines(const std::string& bytes);

// The status window of a running wipe, waited for.
class StatusWindow {
 public:
  explicit StatusWindow(const Program& program);

  Window window;
  Window cancel;
  Window current;
  Window overall;

  // The line that tells how far the file in work is; "" before the first.
  std::string Line() const;
  // Waits until a file of this name is in work, and some of it done.
  void WaitWork(const std::string& name) const;
  // Waits until the wipe has gone on from here.
  void WaitChange() const;
};

// Holds a running wipe where it is, for a look at its window: the engine stands still while the question
// whether to cancel is open. The question is put aside, and at the end answered with No.
class Hold {
 public:
  Hold(const Program& program, const StatusWindow& status);
  ~Hold();
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

 private:
  Window box_;
};

// The box that ends a wipe, waited for as long as the wipe goes on.
MessageBoxView WaitClosingBox(const Program& program);

class WipingTest : public ZeroquillTest {
 protected:
  void SetUp() override { Prepare(); }

  static SettingsFile Level7();

  // Starts the wipe and answers its question with OK.
  static void Confirm(const Program& program, const MainWindow& main);
  // Reads the closing box, answers it with No.
  static void Close(const Program& program, const MainWindow& main, const char* text);

  struct Report {
    std::vector<std::string> files;
    std::vector<std::string> errors;
  };
  // The report, checked for its form; `stamps` was made before the wipe.
  Report ReadReport(const StampWindow& stamps) const;

  std::string Large(const std::string& name) const;
};

// Rows after a wipe, counted from 0.
void ExpectWiped(const MainWindow& main, int row);
void ExpectUntouched(const MainWindow& main, int row, const std::string& size);

}  // namespace zq::test
