// The driver of a job wipe: its steps, what it does with each kind of row, and what ends it.
#include "unit/wipe/JobWipeFixture.h"

namespace zq {
namespace {

using test::ExpectRaises;
using test::FileRow;
using test::FolderRow;
using test::JobWipeTest;
using test::kComplete;
using test::kConfirmation;
using test::kNothingFound;
using test::kReport;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

TEST_F(JobWipeTest, ARunGoesThroughItsStepsInOrder) {
  AddFile("C:\\a.txt", kAttributeReadOnly | kAttributeHidden);
  files.AddFile("C:\\Papers\\letter.doc");
  files.AddFile("C:\\Papers\\old\\b.doc");
  jobList.Add(FolderRow("C:\\Papers", "*.*", "Yes"));
  jobList.Add(FileRow("C:\\gone.txt"));
  files.AddFile("C:\\Mail\\1.doc");
  files.AddFile("C:\\Mail\\1.eml");
  jobList.Add(FolderRow("C:\\Mail", "*.doc", "No"));
  engine.failures["C:\\Mail"] = "Access denied";
  engine.work = [](const std::string& path, WipeEvents& events) {
    events.SFD1_WipeProgress(0, 6, 0, path);
    events.SFD1_WipeProgress(6, 6, 0, path);
    events.SFD1_ItemWiped(path);
  };
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Yes};
  wipe.RunJobWipe();

  EXPECT_THAT(log,
              ElementsAre("box Wipe Operation", "status: show", "main: hide", "status: cancel off",
                          // the counting pass: every file is an ordinary one before the first is destroyed
                          "attributes C:\\a.txt 128", "pump",  //
                          "attributes C:\\Papers\\letter.doc 128", "attributes C:\\Papers\\ 128",
                          "attributes C:\\Papers\\old 128", "attributes C:\\Papers\\old\\b.doc 128", "pump",
                          "attributes C:\\Mail\\1.doc 128", "pump",
                          // the wipe pass
                          "status: cancel on",                                     //
                          "WipeFile C:\\a.txt 3",                                  //
                          "status: text Processed  bytes of 6 of C:\\a.txt...",    //
                          "status: current 0", "status: overall 0",                //
                          "status: caption 0% - Wipe Operation", "pump",           //
                          "status: text Processed 6 bytes of 6 of C:\\a.txt...",   //
                          "status: current 100", "status: overall 0",              //
                          "status: caption 0% - Wipe Operation", "pump",           //
                          "pump",                                                  //
                          "WipeFolder C:\\Papers 3",                               //
                          "status: text Processed  bytes of 6 of C:\\Papers...",   //
                          "status: current 0", "status: overall 25",               //
                          "status: caption 25% - Wipe Operation", "pump",          //
                          "status: text Processed 6 bytes of 6 of C:\\Papers...",  //
                          "status: current 100", "status: overall 25",             //
                          "status: caption 25% - Wipe Operation", "pump",          //
                          "pump",                                                  //
                          "WipeFolderFiles C:\\Mail *.doc flat 3",                 //
                          "status: text Processed  bytes of 6 of C:\\Mail...",     //
                          "status: current 0", "status: overall 50",               //
                          "status: caption 50% - Wipe Operation", "pump",          //
                          "status: text Processed 6 bytes of 6 of C:\\Mail...",    //
                          "status: current 100", "status: overall 50",             //
                          "status: caption 50% - Wipe Operation", "pump",          //
                          "pump",
                          // the report
                          "status: cancel off", "status: current 0", "status: overall 0",
                          "status: text Creating Report Data...Please Wait...", "status: repaint",
                          "write C:\\Zeroquill\\Report\\Report.dat", "report: load",
                          // the end
                          "main: show", "status: unload", "box Wipe Operation", "report: show"));
  EXPECT_THAT(boxes.shown, ElementsAre(kConfirmation, kComplete));
  EXPECT_EQ(Report(),
            "\"Untitled Job\"\r\n"
            "\"11/16/2026 4:30:12 AM\"\r\n"
            "\"[FOLDERS]\"\r\n"
            "\"C:\\Papers\"\r\n"
            "\"C:\\Mail\"\r\n"
            "\"[FILES]\"\r\n"
            "\"C:\\a.txt\"\r\n"
            "\"[ERRORS]\"\r\n"
            "\"C:\\Mail - Access denied\"\r\n");
}

TEST_F(JobWipeTest, WithNothingLeftItSaysSoAndStops) {
  for (const bool emptyList : {true, false}) {
    if (!emptyList) {
      jobList.Add(FileRow("C:\\gone.txt"));
      jobList.Add(FolderRow("C:\\Gone"));
    }
    boxes.shown.clear();
    boxes.answers = {MessageAnswer::Ok};
    wipe.RunJobWipe();
    EXPECT_THAT(boxes.shown, ElementsAre(kNothingFound));
    ExpectNothingDestroyed();
  }
  EXPECT_TRUE(jobList.Row(1).Ghosted);
  EXPECT_TRUE(jobList.Row(2).Ghosted);
}

// Only a job file made by hand, or a system with other ways to a file than drives, has such rows.
TEST_F(JobWipeTest, WhatIsOnNoDriveAndNoShareIsNotTouched) {
  AddFile("\\\\?\\unix\\a.txt", kAttributeReadOnly);
  files.AddFile("\\\\?\\unix\\etc\\b.txt", "secret", kAttributeReadOnly);
  files.AddFile("papers\\c.txt", "secret", kAttributeReadOnly);
  jobList.Add(FolderRow("\\\\?\\unix\\etc", "*.*", "Yes"));
  jobList.Add(FolderRow("papers", "*.*", "No"));
  AddFile("C:\\d.txt");
  AddFile("e.txt");
  Run();
  EXPECT_THAT(LogOf("Wipe"), ElementsAre("WipeFile C:\\d.txt 3", "WipeFile e.txt 3"));
  EXPECT_THAT(LogOf("attributes"), ElementsAre("attributes C:\\d.txt 128", "attributes e.txt 128"));
  EXPECT_EQ(state.TotalWipeItems.Whole(), 2);
  const std::string reason =
      " - It lies neither on a drive with a letter nor in a share of a server, and was not touched.\"\r\n";
  EXPECT_THAT(Report(), testing::HasSubstr("\"[ERRORS]\"\r\n\"\\\\?\\unix\\a.txt" + reason +
                                           "\"\\\\?\\unix\\etc" + reason + "\"papers" + reason));
  EXPECT_FALSE(jobList.Row(1).Ghosted);
}

TEST_F(JobWipeTest, OnlyOkGoesOn) {
  AddFile("C:\\a.txt");
  jobList.Add(FileRow("C:\\gone.txt"));
  for (const MessageAnswer answer : {MessageAnswer::Cancel, MessageAnswer::No, MessageAnswer::Yes}) {
    boxes.shown.clear();
    boxes.answers = {answer};
    wipe.RunJobWipe();
    EXPECT_THAT(boxes.shown, ElementsAre(kConfirmation));
    ExpectNothingDestroyed();
  }
  EXPECT_FALSE(jobList.Row(1).Ghosted);
  EXPECT_TRUE(jobList.Row(2).Ghosted);
}

TEST_F(JobWipeTest, ACalledOffRunLeavesTheStateOfTheFormerOne) {
  AddFile("C:\\a.txt");
  state.CancelRequested = true;
  state.FreeSpaceActive = true;
  state.TotalWipeItems = FixedPoint(7);
  state.ReportFiles.Add("C:\\shown.txt");
  boxes.answers = {MessageAnswer::Cancel};
  wipe.RunJobWipe();
  EXPECT_TRUE(state.CancelRequested);
  EXPECT_TRUE(state.FreeSpaceActive);
  EXPECT_EQ(state.TotalWipeItems, FixedPoint(7));
  EXPECT_EQ(state.ReportFiles.Count(), 1);
}

TEST_F(JobWipeTest, ARunBeginsAfresh) {
  AddFile("C:\\a.txt");
  AddFile("C:\\b.txt");
  state.CancelRequested = true;
  state.FreeSpaceActive = true;
  state.TotalWipeItems = FixedPoint(7);
  for (ReportList* list : {&state.ReportFiles, &state.ReportFolders, &state.ReportErrors}) list->Add("old");
  engine.work = [this](const std::string& path, WipeEvents& events) {
    EXPECT_FALSE(state.FreeSpaceActive);
    EXPECT_FALSE(state.CancelRequested);
    EXPECT_EQ(state.TotalWipeItems, FixedPoint(2));
    events.SFD1_ItemWiped(path);
    events.SFD1_WipeProgress(6, 6, 0, path);
  };
  for (int run = 1; run <= 2; ++run) {
    log.clear();
    Run();
    EXPECT_THAT(LogOf("status: caption"),
                ElementsAre("status: caption 50% - Wipe Operation", "status: caption 100% - Wipe Operation"));
    EXPECT_THAT(Report(), Not(testing::HasSubstr("old")));
  }
  EXPECT_THAT(state.ReportFiles.Items(), IsEmpty());
  EXPECT_THAT(state.ReportFolders.Items(), IsEmpty());
  EXPECT_THAT(state.ReportErrors.Items(), IsEmpty());
}

TEST_F(JobWipeTest, AWipedFileIsGhostedAndEmptyAndAFailedOneStaysAsItWas) {
  AddFile("C:\\a.txt");
  AddFile("C:\\b.txt");
  engine.failures["C:\\b.txt"] = "In use";
  Run();
  JobRow wiped = FileRow("C:\\a.txt", "0 Bytes");
  wiped.Ghosted = true;
  EXPECT_EQ(jobList.Row(1), wiped);
  EXPECT_EQ(jobList.Row(2), FileRow("C:\\b.txt", "6 Bytes"));
}

TEST_F(JobWipeTest, OnlyAFolderThatIsGoneIsGhosted) {
  struct Case {
    const char *mask, *subFolders, *call;
    bool ghosted;
  };
  constexpr Case kCases[] = {
      {"*.*", "Yes", "WipeFolder C:\\Papers 3", true},
      {"*.*", "No", "WipeFolderFiles C:\\Papers *.* flat 3", false},
      {"*", "Yes", "WipeFolderFiles C:\\Papers * deep 3", false},
      {"*.doc", "Yes", "WipeFolderFiles C:\\Papers *.doc deep 3", false},
      {"*.* ", "Yes", "WipeFolderFiles C:\\Papers *.*  deep 3", false},
      {"", "No", "WipeFolderFiles C:\\Papers  flat 3", false},
  };
  files.AddFolder("C:\\Papers");
  for (const Case& c : kCases) {
    for (const bool fails : {false, true}) {
      jobList.Clear();
      jobList.Add(FolderRow("C:\\Papers", c.mask, c.subFolders));
      JobRow expected = jobList.Row(1);  // its size text is never changed
      expected.Ghosted = c.ghosted && !fails;
      engine.failures.clear();
      if (fails) engine.failures["C:\\Papers"] = "Access denied";
      log.clear();
      Run();
      EXPECT_THAT(LogOf("Wipe"), ElementsAre(c.call));
      EXPECT_EQ(jobList.Row(1), expected) << c.call << fails;
    }
  }
}

TEST_F(JobWipeTest, TheLevelComesFromTheSettings) {
  AddFile("C:\\a.txt");
  files.AddFolder("C:\\Papers");
  jobList.Add(FolderRow("C:\\Papers"));
  jobList.Add(FolderRow("C:\\Papers", "*.doc"));
  for (const int level : {3, 5, 7}) {
    state.Settings.Passes = level;
    log.clear();
    Run();
    const std::string end = " " + std::to_string(level);
    EXPECT_THAT(LogOf("Wipe"), ElementsAre("WipeFile C:\\a.txt" + end, "WipeFolder C:\\Papers" + end,
                                           "WipeFolderFiles C:\\Papers *.doc deep" + end));
  }
}

TEST_F(JobWipeTest, AGhostedRowComesBackWhenItsItemHasReappeared) {
  AddFile("C:\\a.txt");
  AddFile("C:\\b.txt");
  Run();
  files.Delete("C:\\a.txt");
  files.Delete("C:\\b.txt");
  files.AddFile("C:\\b.txt");
  log.clear();
  Run();
  EXPECT_THAT(LogOf("Wipe"), ElementsAre("WipeFile C:\\b.txt 3"));
  EXPECT_THAT(LogOf("attributes"), ElementsAre("attributes C:\\b.txt 128"));
  EXPECT_EQ(LogOf("pump").size(), 2U);  // a row that is left out lets no messages through
  EXPECT_THAT(Report(), Not(testing::HasSubstr("a.txt")));
}

TEST_F(JobWipeTest, ARowIsLookedForAsTheKindThatItsCellNames) {
  files.AddFolder("C:\\Papers");
  files.AddFile("C:\\file");
  jobList.Add(FileRow("C:\\Papers"));                // a folder isn't found as a file
  jobList.Add(FolderRow("C:\\Papers", "*", "yes"));  // nor under a text that isn't exactly "Yes" or "No"
  jobList.Add(FolderRow("C:\\file", "*", "No"));     // a plain file is found as a folder
  jobList.Add(FolderRow("C:\\file", "*", "Maybe"));  // found as a file, and taken for a folder then
  Run();
  EXPECT_TRUE(jobList.Row(1).Ghosted);
  EXPECT_TRUE(jobList.Row(2).Ghosted);
  EXPECT_THAT(LogOf("Wipe"),
              ElementsAre("WipeFolderFiles C:\\file * flat 3", "WipeFolderFiles C:\\file * flat 3"));
  EXPECT_THAT(LogOf("attributes"), IsEmpty());
  EXPECT_EQ(
      Report(),
      "\"Untitled Job\"\r\n\"11/16/2026 4:30:12 AM\"\r\n\"[FOLDERS]\"\r\n\"C:\\file\"\r\n\"C:\\file\"\r\n"
      "\"[FILES]\"\r\n\"[ERRORS]\"\r\n");
}

TEST_F(JobWipeTest, ARowWithWildcardsReachesTheEngineAsItStands) {
  files.AddFile("C:\\tmp\\a.tmp", "", kAttributeReadOnly);
  jobList.Add(FileRow("C:\\tmp\\*.tmp"));
  engine.failures["C:\\tmp\\*.tmp"] = "The name isn't valid";
  Run();
  EXPECT_THAT(LogOf("Wipe"), ElementsAre("WipeFile C:\\tmp\\*.tmp 3"));
  EXPECT_EQ(files.Find("C:\\tmp\\a.tmp")->attributes, kAttributeReadOnly);
  EXPECT_THAT(Report(), testing::EndsWith("\"[ERRORS]\"\r\n\"C:\\tmp\\*.tmp - The name isn't valid\"\r\n"));
}

TEST_F(JobWipeTest, AFileThatVanishesAfterTheCheckGetsTheEnginesError) {
  AddFile("C:\\a.txt");
  boxes.whileShown = [this] { files.Delete("C:\\a.txt"); };
  engine.failures["C:\\a.txt"] = "File not found";
  Run();
  EXPECT_THAT(Report(), testing::EndsWith("\"[FILES]\"\r\n\"C:\\a.txt\"\r\n\"[ERRORS]\"\r\n"
                                          "\"C:\\a.txt - File not found\"\r\n"));
}

TEST_F(JobWipeTest, ARunOfManyFilesNotesEachFailureAndGoesOn) {
  std::string report = "\"Untitled Job\"\r\n\"11/16/2026 4:30:12 AM\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n";
  std::string errors = "\"[ERRORS]\"\r\n";
  std::vector<std::string> calls;
  for (int i = 1; i <= 500; ++i) {
    const std::string path = "C:\\data\\file" + std::to_string(i) + ".bin";
    AddFile(path);
    calls.push_back("WipeFile " + path + " 3");
    report += "\"" + path + "\"\r\n";
    if (i % 7 != 0) continue;
    engine.failures[path] = "Sector " + std::to_string(i) + " can't be written";
    errors += "\"" + path + " - Sector " + std::to_string(i) + " can't be written\"\r\n";
  }
  Run();
  EXPECT_EQ(LogOf("Wipe"), calls);
  EXPECT_EQ(Report(), report + errors);
  for (int i = 1; i <= 500; ++i) {
    EXPECT_EQ(jobList.Row(i).Ghosted, i % 7 != 0) << i;
    EXPECT_EQ(jobList.Row(i).Size, i % 7 != 0 ? "0 Bytes" : "6 Bytes") << i;
  }
  EXPECT_EQ(boxes.shown.back(), kComplete);
}

TEST_F(JobWipeTest, ARunInWhichAllFailedIsCompleteToo) {
  AddFile("C:\\a.txt");
  engine.failures["C:\\a.txt"] = "In use";
  Run();
  EXPECT_EQ(boxes.shown.back(), kComplete);
}

TEST_F(JobWipeTest, TheReportQuestionIsYesForAnyAnswerButNo) {
  AddFile("C:\\a.txt");
  for (const MessageAnswer answer : {MessageAnswer::Yes, MessageAnswer::Cancel, MessageAnswer::Ok}) {
    log.clear();
    boxes.answers = {MessageAnswer::Ok, answer};
    wipe.RunJobWipe();
    EXPECT_EQ(log.back(), "report: show");
  }
  log.clear();
  Run();
  EXPECT_THAT(log, Contains("report: load"));  // built and kept hidden
  EXPECT_THAT(log, Not(Contains("report: show")));
}

TEST_F(JobWipeTest, WithoutAReportWindowTheQuestionIsAskedAllTheSame) {
  AddFile("C:\\a.txt");
  JobWipe alone(state, jobList, platform, mainWindow, statusWindow, nullptr);
  alone.SetEngine(&engine);
  boxes.answers = {MessageAnswer::Ok, MessageAnswer::Yes};
  alone.RunJobWipe();
  EXPECT_EQ(boxes.shown.back(), kComplete);
  EXPECT_THAT(LogOf("report"), IsEmpty());
}

TEST_F(JobWipeTest, OnlyAJobWithANameKeepsTheStampAndOnlyInMemory) {
  AddFile("C:\\a.txt");
  files.AddFile("C:\\Zeroquill\\Jobs\\Weekly.zqj", "\"N/A\"\r\n");
  Run();
  EXPECT_EQ(state.LastWiping, "N/A");
  state.CurrentJobName = "Weekly";
  Run();
  EXPECT_EQ(state.LastWiping, "11/16/2026 4:30:12 AM");
  EXPECT_THAT(Report(), testing::StartsWith("\"Weekly\"\r\n\"11/16/2026 4:30:12 AM\"\r\n"));
  EXPECT_EQ(files.Find("C:\\Zeroquill\\Jobs\\Weekly.zqj")->content, "\"N/A\"\r\n");
  EXPECT_EQ(LogOf("write"), (std::vector<std::string>(2, std::string("write ") + kReport)));
}

TEST_F(JobWipeTest, AWipeLeavesTheJobsSavedStateAsItWas) {
  AddFile("C:\\a.txt");
  for (const bool saved : {true, false}) {
    state.JobSaved = saved;
    Run();
    EXPECT_EQ(state.JobSaved, saved);
  }
}

TEST_F(JobWipeTest, AReportThatCannotBeWrittenEndsTheRun) {
  AddFile("C:\\a.txt");
  files.unwritable.insert(kReport);
  ExpectRaises(ErrorNumber::PathFileAccessError, [this] { Run(); });
  EXPECT_THAT(LogOf("Wipe"), testing::SizeIs(1));
  EXPECT_EQ(log.back(), std::string("write ") + kReport);
  EXPECT_EQ(boxes.shown.size(), 1U);
}

TEST_F(JobWipeTest, MoreThan32767RowsEndTheRunBeforeAnythingIsDestroyed) {
  for (int i = 1; i <= 32768; ++i) AddFile("C:\\a.txt");
  ExpectRaises(ErrorNumber::Overflow, [this] { Run(); });
  EXPECT_THAT(boxes.shown, IsEmpty());
  ExpectNothingDestroyed();
  for (int row : {1, 32768}) EXPECT_FALSE(jobList.Row(row).Ghosted);
}

TEST_F(JobWipeTest, WithoutItsEngineARunDoesNotBegin) {
  AddFile("C:\\a.txt");
  wipe.SetEngine(nullptr);
  ExpectRaises(ErrorNumber::ObjectVariableNotSet, [this] { Run(); });
  EXPECT_THAT(boxes.shown, IsEmpty());
  ExpectNothingDestroyed();
}

}  // namespace
}  // namespace zq
