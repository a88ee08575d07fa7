// The rows of a job are one operation to the engine, whichever way the run ends.
#include "unit/wipe/JobWipeFixture.h"

namespace zq {
namespace {

using test::ExpectRaises;
using test::FolderRow;
using testing::ElementsAre;
using testing::IsEmpty;

class JobWipeWholeTest : public test::JobWipeTest {
 protected:
  JobWipeWholeTest() {
    wipe.SetEngine(&engine, &whole);
    AddFile("C:\\a.txt");
    files.AddFile("C:\\Papers\\b.doc");
    jobList.Add(FolderRow("C:\\Papers", "*.*", "Yes"));
  }

  // The engine's calls, and where the whole of them begins and ends.
  std::vector<std::string> Calls() const {
    std::vector<std::string> calls;
    std::copy_if(log.begin(), log.end(), std::back_inserter(calls), [](const std::string& line) {
      return line == "BeginWhole" || line == "EndWhole" || line.starts_with("Wipe");
    });
    return calls;
  }

  test::FakeWholeWipes whole{log};
};

TEST_F(JobWipeWholeTest, AllRowsOfARunAreOne) {
  for (int run = 1; run <= 2; ++run) {
    log.clear();
    files.AddFile("C:\\a.txt");
    files.AddFile("C:\\Papers\\b.doc");
    Run();
    EXPECT_THAT(Calls(),
                ElementsAre("BeginWhole", "WipeFile C:\\a.txt 3", "WipeFolder C:\\Papers 3", "EndWhole"));
  }
  // The report tells what is done, and so has to wait for the traces.
  const auto end = std::find(log.begin(), log.end(), "EndWhole");
  EXPECT_NE(std::find(end, log.end(), "status: text Creating Report Data...Please Wait..."), log.end());
}

TEST_F(JobWipeWholeTest, EndsWithWhatAHandlerRaises) {
  engine.work = [](const std::string& /*path*/, WipeEvents& /*events*/) {
    throw RunTimeError(ErrorNumber::SubscriptOutOfRange);
  };
  ExpectRaises(ErrorNumber::SubscriptOutOfRange, [this] { Run(); });
  EXPECT_THAT(Calls(), ElementsAre("BeginWhole", "WipeFile C:\\a.txt 3", "EndWhole"));
  EXPECT_EQ(log.back(), "EndWhole");
}

TEST_F(JobWipeWholeTest, EndsWithACancel) {
  CancelWhileIn("C:\\a.txt");
  Run();
  EXPECT_THAT(Calls(), ElementsAre("BeginWhole", "WipeFile C:\\a.txt 3", "EndWhole"));
}

// It belongs to no row, so it has a line of its own.
TEST_F(JobWipeWholeTest, WhoseEndFailsIsInTheReport) {
  engine.lastErrorText = "Flushing the removal of files from C:\\: The disk is gone (1167)";
  whole.ends = false;
  Run();
  EXPECT_THAT(Report(), testing::EndsWith("\"[ERRORS]\"\r\n\"" + engine.lastErrorText + "\"\r\n"));
}

TEST_F(JobWipeWholeTest, DoesNotBeginInACalledOffRun) {
  boxes.answers = {MessageAnswer::Cancel};
  wipe.RunJobWipe();
  EXPECT_THAT(Calls(), IsEmpty());
}

}  // namespace
}  // namespace zq
