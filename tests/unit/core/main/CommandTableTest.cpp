#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "core/main/CommandTable.h"
#include "core/main/Commands.h"

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

std::vector<std::string> Lines(const std::vector<Tool>& tools) {
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
  for (const Menu& menu : MainBars().menus)
    menus.push_back(std::string(menu.name) + '|' + std::string(menu.caption));
  EXPECT_THAT(menus, ElementsAre("mnuFile|&File", "mnuActions|&Actions", "mnuHelp|&Help"));
}

TEST(CommandTable, ListsTheFileMenu) {
  EXPECT_THAT(Lines(MainBars().menus[0].tools),
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
  EXPECT_THAT(Lines(MainBars().menus[1].tools),
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
  EXPECT_THAT(Lines(MainBars().menus[2].tools), ElementsAre("mnuHelpContents|&Contents|F1|help|",     //
                                                            kSeparator,                               //
                                                            "mnuHelpWebPage|Zeroquill &Web Page|||",  //
                                                            kSeparator,                               //
                                                            "mnuHelpAbout|&About Zeroquill|||"));
}

TEST(CommandTable, ListsTheToolBar) {
  EXPECT_THAT(Lines(MainBars().toolBar),
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

TEST(CommandTable, TellsOnTheToolBarWhatAToolDoesAndItsKey) {
  std::vector<std::string> tips;
  for (const Tool& tool : MainBars().toolBar) {
    if (tool.name.empty()) continue;
    tips.push_back(std::string(tool.name) + ": " + std::string(tool.tip) + '|' + NameOf(tool.tipShortcut));
    EXPECT_EQ(tool.shortcut.key, 0) << "the key is the menu's";
  }
  EXPECT_THAT(tips, ElementsAre("NewJob: Close the open job and start a new one|Ctrl+N",  //
                                "OpenJob: Open a saved job|Ctrl+O",                       //
                                "SaveJob: Save the open job|Ctrl+S",                      //
                                "AddFiles: Add files to the job|",                        //
                                "AddFolder: Add a folder to the job|",                    //
                                "WipeNow: Wipe all items of the job|F10",                 //
                                "WipeFreeSpace: Wipe the free space of a drive|"));
}

TEST(CommandTable, NamesTheBandsOfTheToolBar) {
  EXPECT_THAT(MainBars().bandNames, ElementsAre("Job", "Items", "Wiping"));
}

TEST(CommandTable, NamesTheOperationOfEachTool) {
  struct Row {
    void (Commands::*operation)();
    std::vector<std::string_view> tools;
  };
  const Row kRows[] = {
      {&Commands::AddFilesDialog, {"AddFiles", "mnuActionsAddFiles"}},
      {&Commands::OpenJob, {"OpenJob", "mnuFileOpen"}},
      {&Commands::SaveJob, {"SaveJob", "mnuFileSave"}},
      {&Commands::ToggleQuickWipeBin, {"mnuFileQuickWipeBin"}},
      {&Commands::AddFolder, {"AddFolder", "mnuActionsAddFolder"}},
      {&Commands::RemoveSelectedItem, {"mnuActionsRemove"}},
      {&Commands::Exit, {"mnuFileExit"}},
      {&Commands::ViewReport, {"mnuFileView"}},
      {&Commands::EditFolderItem, {"mnuActionsEdit"}},
      {&Commands::About, {"mnuHelpAbout"}},
      {&Commands::RunJobWipe, {"WipeNow", "mnuActionsWipeNow"}},
      {&Commands::CloseJob, {"mnuFileClose"}},
      {&Commands::NewJob, {"NewJob", "mnuFileNew"}},
      {&Commands::DeleteOpenJob, {"mnuFileDelete"}},
      {&Commands::WipeFreeSpace, {"WipeFreeSpace", "mnuActionsWipeFreeSpace"}},
      {&Commands::ShowPreferences, {"mnuFilePreferences"}},
      {&Commands::LaunchManager, {"mnuFileLaunch"}},
      {&Commands::HelpContents, {"mnuHelpContents"}},
      {&Commands::HelpWebPage, {"mnuHelpWebPage"}},
  };
  std::size_t tools = 0;
  for (const Row& row : kRows) {
    for (std::string_view tool : row.tools) {
      ASSERT_TRUE(CommandOf(tool)) << tool;
      EXPECT_EQ(CommandOf(tool)->tool.name, tool);
      EXPECT_TRUE(CommandOf(tool)->operation == row.operation) << tool;
    }
    tools += row.tools.size();
  }
  EXPECT_EQ(tools, 26U);
}

TEST(CommandTable, GivesEachToolANameOfItsOwn) {
  std::set<std::string_view> names;
  std::size_t tools = 0;
  const BarsDesign bars = MainBars();
  const auto visit = [&](const std::vector<Tool>& list) {
    for (const Tool& tool : list) {
      if (tool.name.empty()) continue;
      ++tools;
      names.insert(tool.name);
    }
  };
  for (const Menu& menu : bars.menus) visit(menu.tools);
  visit(bars.toolBar);
  EXPECT_EQ(tools, 26U);
  EXPECT_EQ(names.size(), tools);
}

TEST(CommandTable, HasThePanelsOfTheStatusBar) {
  std::vector<std::string> panels;
  for (const Panel& panel : MainBars().panels)
    panels.push_back(std::string(panel.name) + '|' + std::string(panel.text));
  EXPECT_THAT(panels, ElementsAre("Static1|Press F1 for Help", "Static2|", "Static3|0 Items"));
}

TEST(CommandTable, UsesNoShortcutTwice) {
  std::set<std::string> shortcuts;
  for (const Menu& menu : MainBars().menus) {
    for (const Tool& tool : menu.tools) {
      const std::string shortcut = NameOf(tool.shortcut);
      if (shortcut.empty()) continue;
      EXPECT_TRUE(shortcuts.insert(shortcut).second) << shortcut;
    }
  }
  EXPECT_EQ(shortcuts.size(), 9U);
}

TEST(CommandTable, HasNoCommandForAnUnknownName) {
  for (std::string_view name : {"", "Unknown", "wipenow", "WIPENOW", "WipeNow ", "mnuFile", "Static3"}) {
    EXPECT_FALSE(CommandOf(name)) << name;
  }
}

}  // namespace
}  // namespace zq
