// What the system is told of a job wipe: that it goes on, how far it is, and that it has ended.
#include "support/fakes/FakeLongWork.h"
#include "unit/wipe/JobWipeFixture.h"

namespace zq {
namespace {

using test::ExpectRaises;
using test::FakeLongWork;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kBegin =
    "work: begin: Files are being wiped.  What is in work would be left half done.  Cancel the wipe "
    "operation first, or let it come to its end.";

class JobWipeLongWorkTest : public test::JobWipeTest {
 protected:
  JobWipeLongWorkTest() { told.SetEngine(&toldEngine); }

  void Run() {
    boxes.answers = {MessageAnswer::Ok, MessageAnswer::No};
    told.RunJobWipe();
  }

  // What was told, and the steps of the run that it belongs to.
  std::vector<std::string> Told() const {
    std::vector<std::string> lines;
    for (const std::string& line : log) {
      for (const char* start : {"work", "box", "main", "status: show", "status: unload", "WipeFile",
                                "attributes", "report: load"})
        if (line.starts_with(start)) lines.push_back(line);
    }
    return lines;
  }

  FakeLongWork longWork{log};
  Platform telling{files, boxes, process, regional, registry, longWork};
  JobWipe told{state, jobList, telling, mainWindow, statusWindow, &reportViewer};
  test::FakeEngine toldEngine{log, told};
};

TEST_F(JobWipeLongWorkTest, IsToldFromTheConfirmationToTheReportAndCallsTheUserAtTheEnd) {
  AddFile("C:\\a.txt");
  AddFile("C:\\b.txt");
  toldEngine.work = [](const std::string& path, WipeEvents& events) {
    events.SFD1_WipeProgress(3, 6, 0, path);
    events.SFD1_ItemWiped(path);
    events.SFD1_WipeProgress(6, 6, 0, path);
  };
  Run();
  EXPECT_THAT(Told(),
              ElementsAre("box Wipe Operation", kBegin, "status: show", "main: hide", "work: uncounted",
                          "attributes C:\\a.txt 128", "attributes C:\\b.txt 128",  //
                          "WipeFile C:\\a.txt 3", "work: 0", "work: 50",           //
                          "WipeFile C:\\b.txt 3", "work: 50", "work: 100",         //
                          "report: load", "work: end", "main: show", "status: unload", "work: call",
                          "box Wipe Operation"));
}

TEST_F(JobWipeLongWorkTest, IsNoFurtherThanAllOfIt) {
  AddFile("C:\\a.txt");
  AddFile("C:\\b.txt");
  // More files than were counted.
  toldEngine.work = [](const std::string& path, WipeEvents& events) {
    for (int i = 0; i < 3; ++i) events.SFD1_ItemWiped(path);
    events.SFD1_WipeProgress(6, 6, 0, path);
  };
  Run();
  EXPECT_THAT(LogOf("work: 1"), ElementsAre("work: 100", "work: 100"));
  EXPECT_THAT(LogOf("status: overall"),
              ElementsAre("status: overall 150", "status: overall 300", "status: overall 0"));
}

TEST_F(JobWipeLongWorkTest, IsNotBegunWithoutTheUsersWill) {
  AddFile("C:\\a.txt");
  boxes.answers = {MessageAnswer::Cancel};
  told.RunJobWipe();
  EXPECT_THAT(LogOf("work"), IsEmpty());
}

TEST_F(JobWipeLongWorkTest, IsNotBegunWithNothingToWipe) {
  jobList.Add(test::FileRow("C:\\gone.txt"));
  boxes.answers = {MessageAnswer::Ok};
  told.RunJobWipe();
  EXPECT_THAT(LogOf("work"), IsEmpty());
}

TEST_F(JobWipeLongWorkTest, EndsWithARunThatFails) {
  AddFile("C:\\a.txt");
  files.unwritable.insert(test::kReport);
  ExpectRaises(ErrorNumber::PathFileAccessError, [this] { Run(); });
  EXPECT_EQ(LogOf("work").back(), "work: end");
}

TEST_F(JobWipeLongWorkTest, EndsWithARunThatIsCancelled) {
  AddFile("C:\\a.txt");
  AddFile("C:\\b.txt");
  process.onPump = [this] {
    if (!LogOf("WipeFile").empty()) told.CancelOperation();
  };
  Run();
  EXPECT_THAT(LogOf("WipeFile"), ElementsAre("WipeFile C:\\a.txt 3"));
  EXPECT_THAT(LogOf("work"), ElementsAre(kBegin, "work: uncounted", "work: end", "work: call"));
}

}  // namespace
}  // namespace zq
