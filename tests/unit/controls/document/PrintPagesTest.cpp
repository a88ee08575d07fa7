#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "controls/document/PrintPages.h"

namespace zq::test {
namespace {

using testing::ElementsAre;

// Writes down what it is told, and fails or is cancelled at the step of that number.
class FakePrinter final : public PrinterDevice {
 public:
  int failAt = -1;
  int cancelAt = -1;
  int cancelWhileDrawing = -1;  // that page; no step fails for it
  std::vector<std::string> log;

  bool StartDocument() override { return Step("start"); }
  bool StartPage() override { return Step("page"); }
  void DrawPage(int page) override {
    log.push_back("draw " + std::to_string(page));
    if (page == cancelWhileDrawing) cancelled_ = true;
  }
  bool EndPage() override { return Step("end page"); }
  bool EndDocument() override { return Step("end"); }
  void Abort() override { log.emplace_back("abort"); }
  void NowPrinting(int page) override {
    log.push_back("now " + std::to_string(page));
    if (step_++ == cancelAt) cancelled_ = true;
  }
  bool Cancelled() override { return cancelled_; }
  int Steps() const { return step_; }

 private:
  bool Step(const std::string& name) {
    log.push_back(name);
    const int step = step_++;
    if (step == cancelAt) cancelled_ = true;
    return step != failAt && step != cancelAt;
  }
  int step_ = 0;
  bool cancelled_ = false;
};

TEST(PrintPages, PrintsEachPageInItsOrder) {
  FakePrinter printer;
  EXPECT_EQ(PrintPages(printer, {2, 0}), PrintOutcome::Done);
  EXPECT_THAT(printer.log, ElementsAre("start", "now 2", "page", "draw 2", "end page", "now 0", "page",
                                       "draw 0", "end page", "end"));
}

TEST(PrintPages, FailureAtAnyStepEndsTheJobAndThrowsItAway) {
  FakePrinter whole;
  PrintPages(whole, {0, 1, 2});
  for (int step = 0; step < whole.Steps(); ++step) {
    FakePrinter printer;
    printer.failAt = step;
    const PrintOutcome outcome = PrintPages(printer, {0, 1, 2});
    if (step % 3 == 1 && step != whole.Steps() - 1) continue;  // telling can't fail
    EXPECT_EQ(outcome, PrintOutcome::Failed) << step;
    const bool isMiddle = step > 0 && step < whole.Steps() - 1;
    EXPECT_EQ(printer.log.back() == "abort", isMiddle) << step;
  }
}

TEST(PrintPages, CancelAtAnyStepIsNoFailure) {
  FakePrinter whole;
  PrintPages(whole, {0, 1, 2});
  for (int step = 0; step < whole.Steps(); ++step) {
    FakePrinter printer;
    printer.cancelAt = step;
    EXPECT_EQ(PrintPages(printer, {0, 1, 2}), PrintOutcome::Cancelled) << step;
    EXPECT_EQ(printer.Steps(), step + 1) << "nothing comes behind it";
  }
}

TEST(PrintPages, CancelWhileAPageIsDrawnThrowsTheJobAway) {
  for (const int page : {0, 1, 2}) {
    FakePrinter printer;
    printer.cancelWhileDrawing = page;
    EXPECT_EQ(PrintPages(printer, {0, 1, 2}), PrintOutcome::Cancelled) << page;
    EXPECT_EQ(printer.log.back(), "abort") << page;
  }
}

TEST(PagesToPrint, BringsTheRangeIntoTheDocument) {
  EXPECT_THAT(PagesToPrint(1, 3, 3, 1, false), ElementsAre(0, 1, 2));
  EXPECT_THAT(PagesToPrint(2, 2, 3, 1, false), ElementsAre(1));
  EXPECT_THAT(PagesToPrint(3, 2, 3, 1, false), ElementsAre(1, 2));
  EXPECT_THAT(PagesToPrint(0, 99, 2, 1, false), ElementsAre(0, 1));
  EXPECT_THAT(PagesToPrint(7, 9, 2, 0, false), ElementsAre(1));
}

TEST(PagesToPrint, CopiesComeTogetherOrOneAfterTheOther) {
  EXPECT_THAT(PagesToPrint(1, 2, 2, 2, false), ElementsAre(0, 0, 1, 1));
  EXPECT_THAT(PagesToPrint(1, 2, 2, 2, true), ElementsAre(0, 1, 0, 1));
}

}  // namespace
}  // namespace zq::test
