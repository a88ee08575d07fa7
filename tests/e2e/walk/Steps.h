// What several scenes do on their way.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "e2e/walk/Walk.h"

namespace zq::test {

// Opens each menu, takes its picture, and closes it again.
void SeeMenus(Walk& walk, std::string_view part);

// The help's window, which has been asked for: looked at and closed.
void SeeHelp(Walk& walk, std::string_view part);
// The same by the Help button of a dialog.
void PressHelp(Walk& walk, Window dialog, std::string_view part);

// Drops files and folders on the job list with the mouse.
void DropOnList(Walk& walk, const std::vector<std::string>& paths);

// Presses a dialog's OK and waits for its end.
void AcceptDialog(Window dialog);

// Opens a saved job, with nothing to be saved before.
void OpenSavedJob(Walk& walk, std::string_view command, const std::string& name);

// The text of the status bar's panel for the job's name.
std::string JobPanel(const Walk& walk);

}  // namespace zq::test
