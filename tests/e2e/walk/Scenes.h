// The scenes of a walk, in the order in which a day of a user has them. Each leaves the program running with
// an empty list, where it doesn't say otherwise.
#pragma once

#include "e2e/walk/Walk.h"

namespace zq::test {

// From nothing but the program's folder: splash, the files of the first start, welcome.
void FirstStart(Walk& walk);
// A second start, which goes without a trace.
void SecondStart(Walk& walk);
// The menus, and what there is to be told with an empty list.
void LookAround(Walk& walk);
// The help's contents, its page on the web, and its file missing.
void AskForHelp(Walk& walk);

// Files and folders by dialog and drop, with all that can be wrong with a folder; leaves the list with two
// files and two folders, of which none is there to be wiped.
void AddItems(Walk& walk);
// What AddItems has left is saved, closed, opened, saved under another name, and deleted.
void KeepJobs(Walk& walk);

// A job of files and folders with all their kinds of masks, and the report on it.
void WipeAJob(Walk& walk);
// A wipe that the user looks at and ends.
void CancelAWipe(Walk& walk);
// A job of which nothing is there any more.
void WipeNothing(Walk& walk);

// The free space of drive D:, which has to be a small one.
void WipeFreeSpace(Walk& walk);
// The Bin opened, dropped on and closed in each way.
void UseTheBin(Walk& walk);

// All pages of the preferences, stored as they are.
void LookAtThePreferences(Walk& walk);
// The companion registered, started, missing, and removed.
void ControlTheManager(Walk& walk);

// Every way to the end: with the question to save and each answer, and with a job from the command line. The
// program doesn't run at the end.
void LeaveAndComeBack(Walk& walk);
// A job's file that ends the program with a report. The program doesn't run before and after.
void EndByAFailure(Walk& walk);

// All of them, and the look whether anything was left out.
void WalkThroughEverything(Walk& walk);

}  // namespace zq::test
