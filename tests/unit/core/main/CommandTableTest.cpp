#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "core/main/CommandTable.h"

namespace zq {
namespace {

using testing::ElementsAre;

std::string NameOf(Shortcut shortcut) {
  if (shortcut.key == 0 && !shortcut.ctrl) return "";
  std::string key;
  if (shortcut.key >= 'A' && shortcut.key <= 'Z') key = static_cast<char>(shortcut.key);
  if (shortcut.key == 0x2E) key = "Delete";
  if (shortcut.key >= 0x70 && shortcut.key <= 0x7B) key = "F" + std::to_string(shortcut.key - 0x6F);
  return (shortcut.ctrl ? "Ctrl+" : "") + key;
}

std::vector<std::string> Lines(std::span<const Tool> tools) {
  std::vector<std::string> lines;
  for (const Tool& tool : tools) {
    lines.push_back(std::string(tool.name) + '|' + std::string(tool.caption) + '|' + NameOf(tool.shortcut) +
                    '|' + std::string(tool.smallPicture) + '|' + std::string(tool.largePicture));
  }
  return lines;
}

constexpr const char* kSeparator = "||||";

TEST(CommandTable, HasThreeMenus) {
  std::vector<std::string> menus;
  for (const Menu& menu : Menus()) menus.push_back(std::string(menu.name) + '|' + std::string(menu.caption));
  EXPECT_THAT(menus, ElementsAre("mnuFile|&File", "mnuActions|&Actions", "mnuHelp|&Help"));
}

TEST(CommandTable, ListsTheFileMenu) {
  EXPECT_THAT(Lines(Menus()[0].tools),
              ElementsAre("mnuFileNew|&New Wiping Job|Ctrl+N|newsmall|",           //
                          "mnuFileOpen|&Open Wiping Job...|Ctrl+O|opensmall|",     //
                          "mnuFileSave|&Save Wiping Job|Ctrl+S|savesmall|",        //
                          kSeparator,                                              //
                          "mnuFileClose|&Close Wiping Job|Ctrl+W||",               //
                          "mnuFileDelete|&Delete Open Job|Ctrl+D||",               //
                          kSeparator,                                              //
                          "mnuFileView|&View Last Report...||report|",             //
                          "mnuFilePreferences|&Preferences...|||",                 //
                          kSeparator,                                              //
                          "mnuFileLaunch|&Launch Explorer Manager|||",             //
                          kSeparator,                                              //
                          "mnuFileQuickWipeBin|&QuickWipe Bin|Ctrl+Q|MainSmall|",  //
                          kSeparator,                                              //
                          "mnuFileExit|E&xit Zeroquill|||"));
}

TEST(CommandTable, ListsTheActionsMenu) {
  EXPECT_THAT(Lines(Menus()[1].tools),
              ElementsAre("mnuActionsAddFiles|Add F&iles...||addfilessmall|",             //
                          "mnuActionsAddFolder|Add F&older...||addfoldersmall|",          //
                          kSeparator,                                                     //
                          "mnuActionsRemove|&Remove Selected Item|Delete|delete|",        //
                          "mnuActionsEdit|&Edit Folder Item...|||",                       //
                          kSeparator,                                                     //
                          "mnuActionsWipeFreeSpace|Wipe &Free Space...||wipspacesmall|",  //
                          kSeparator,                                                     //
                          "mnuActionsWipeNow|&Wipe Now|F10|MainSmall|"));
}

TEST(CommandTable, ListsTheHelpMenu) {
  EXPECT_THAT(Lines(Menus()[2].tools), ElementsAre("mnuHelpContents|&Contents|F1|help|",     //
                                                   kSeparator,                               //
                                                   "mnuHelpWebPage|Zeroquill &Web Page|||",  //
                                                   kSeparator,                               //
                                                   "mnuHelpAbout|&About Zeroquill|||"));
}

TEST(CommandTable, ListsTheToolBar) {
  EXPECT_THAT(Lines(ToolBarTools()),
              ElementsAre("NewJob|New Job||newsmall|newlarge",                    //
                          "OpenJob|Open Job||opensmall|openlarge",                //
                          "SaveJob|Save Job||savesmall|savelarge",                //
                          kSeparator,                                             //
                          "AddFiles|Add Files||addfilessmall|addfileslarge",      //
                          "AddFolder|Add Folder||addfoldersmall|addfolderlarge",  //
                          kSeparator,                                             //
                          "WipeNow|Wipe Now||MainSmall|MainLarge",                //
                          "WipeFreeSpace|Wipe Free Space||wipspacesmall|wipespacelarge"));
}

TEST(CommandTable, NamesTheOperationOfEachTool) {
  struct Row {
    Operation operation;
    std::vector<std::string_view> tools;
  };
  const Row kRows[] = {
      {Operation::AddFiles, {"AddFiles", "mnuActionsAddFiles"}},
      {Operation::OpenJob, {"OpenJob", "mnuFileOpen"}},
      {Operation::SaveJob, {"SaveJob", "mnuFileSave"}},
      {Operation::HelpContents, {"mnuHelpContents"}},
      {Operation::QuickWipeBin, {"mnuFileQuickWipeBin"}},
      {Operation::LaunchManager, {"mnuFileLaunch"}},
      {Operation::AddFolder, {"AddFolder", "mnuActionsAddFolder"}},
      {Operation::RemoveSelectedItem, {"mnuActionsRemove"}},
      {Operation::Exit, {"mnuFileExit"}},
      {Operation::ViewReport, {"mnuFileView"}},
      {Operation::EditFolderItem, {"mnuActionsEdit"}},
      {Operation::Preferences, {"mnuFilePreferences"}},
      {Operation::About, {"mnuHelpAbout"}},
      {Operation::RunJobWipe, {"WipeNow", "mnuActionsWipeNow"}},
      {Operation::WipeFreeSpace, {"WipeFreeSpace", "mnuActionsWipeFreeSpace"}},
      {Operation::CloseJob, {"mnuFileClose"}},
      {Operation::NewJob, {"NewJob", "mnuFileNew"}},
      {Operation::DeleteOpenJob, {"mnuFileDelete"}},
      {Operation::WebPage, {"mnuHelpWebPage"}},
  };
  std::size_t tools = 0;
  for (const Row& row : kRows) {
    for (std::string_view tool : row.tools) EXPECT_EQ(OperationOf(tool), row.operation) << tool;
    tools += row.tools.size();
  }
  EXPECT_EQ(tools, 26U);
}

TEST(CommandTable, GivesEachToolAnOperationAndANameOfItsOwn) {
  std::set<std::string_view> names;
  std::size_t tools = 0;
  const auto visit = [&](std::span<const Tool> list) {
    for (const Tool& tool : list) {
      if (tool.name.empty()) continue;
      ++tools;
      names.insert(tool.name);
      EXPECT_NE(OperationOf(tool.name), Operation::None) << tool.name;
    }
  };
  for (const Menu& menu : Menus()) visit(menu.tools);
  visit(ToolBarTools());
  EXPECT_EQ(tools, 26U);
  EXPECT_EQ(names.size(), tools);
}

TEST(CommandTable, UsesNoShortcutTwice) {
  std::set<std::string> shortcuts;
  for (const Menu& menu : Menus()) {
    for (const Tool& tool : menu.tools) {
      const std::string shortcut = NameOf(tool.shortcut);
      if (shortcut.empty()) continue;
      EXPECT_TRUE(shortcuts.insert(shortcut).second) << shortcut;
    }
  }
  EXPECT_EQ(shortcuts.size(), 9U);
}

TEST(CommandTable, DoesNothingForAnUnknownName) {
  for (std::string_view name : {"", "Unknown", "wipenow", "WIPENOW", "WipeNow ", "mnuFile", "Static3"}) {
    EXPECT_EQ(OperationOf(name), Operation::None) << name;
  }
}

}  // namespace
}  // namespace zq
