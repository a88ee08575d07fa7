#include "core/main/CommandTable.h"

#include <span>

#include "core/main/Commands.h"
#include "jobs/ToolNames.h"

namespace zq {
namespace {

constexpr Shortcut kNoKey{};
constexpr Shortcut kDelete{0x2E, false};
constexpr Shortcut kF1{0x70, false};
constexpr Shortcut kF10{0x79, false};

constexpr Shortcut Ctrl(char letter) {
  return {static_cast<std::uint16_t>(letter), true};
}

constexpr Command kSeparator{};

// clang-format off
constexpr Command kFileCommands[] = {
    {{"mnuFileNew",          "&New Wiping Job",          Ctrl('N'), "newsmall",  ""}, &Commands::NewJob},
    {{"mnuFileOpen",         "&Open Wiping Job...",      Ctrl('O'), "opensmall", ""}, &Commands::OpenJob},
    {{"mnuFileSave",         "&Save Wiping Job",         Ctrl('S'), "savesmall", ""}, &Commands::SaveJob},
    kSeparator,
    {{"mnuFileClose",        "&Close Wiping Job",        Ctrl('W'), "",          ""}, &Commands::CloseJob},
    {{"mnuFileDelete",       "&Delete Open Job",         Ctrl('D'), "",          ""}, &Commands::DeleteOpenJob},
    kSeparator,
    {{"mnuFileView",         "&View Last Report...",     kNoKey,    "report",    ""}, &Commands::ViewReport},
    {{"mnuFilePreferences",  "&Preferences...",          kNoKey,    "",          ""}, &Commands::ShowPreferences},
    kSeparator,
    {{"mnuFileLaunch",       "&Launch Explorer Manager", kNoKey,    "",          ""}, &Commands::LaunchManager},
    kSeparator,
    {{"mnuFileQuickWipeBin", "&QuickWipe Bin",           Ctrl('Q'), "MainSmall", ""}, &Commands::ToggleQuickWipeBin},
    kSeparator,
    {{"mnuFileExit",         "E&xit Zeroquill",          kNoKey,    "",          ""}, &Commands::Exit},
};

constexpr Command kActionsCommands[] = {
    {{"mnuActionsAddFiles",      "Add F&iles...",         kNoKey,  "addfilessmall",  ""}, &Commands::AddFilesDialog},
    {{"mnuActionsAddFolder",     "Add F&older...",        kNoKey,  "addfoldersmall", ""}, &Commands::AddFolder},
    kSeparator,
    {{"mnuActionsRemove",        "&Remove Selected Item", kDelete, "delete",         ""}, &Commands::RemoveSelectedItem},
    {{"mnuActionsEdit",          "&Edit Folder Item...",  kNoKey,  "",               ""}, &Commands::EditFolderItem},
    kSeparator,
    {{"mnuActionsWipeFreeSpace", "Wipe &Free Space...",   kNoKey,  "wipspacesmall",  ""}, &Commands::WipeFreeSpace},
    kSeparator,
    {{"mnuActionsWipeNow",       "&Wipe Now",             kF10,    "MainSmall",      ""}, &Commands::RunJobWipe},
};

constexpr Command kHelpCommands[] = {
    {{"mnuHelpContents", "&Contents",           kF1,    "help", ""}, &Commands::HelpContents},
    kSeparator,
    {{"mnuHelpWebPage",  "Zeroquill &Web Page", kNoKey, "",     ""}, &Commands::HelpWebPage},
    kSeparator,
    {{"mnuHelpAbout",    "&About Zeroquill",    kNoKey, "",     ""}, &Commands::About},
};

constexpr Command kToolBarCommands[] = {
    {{"NewJob",        "New Job",         kNoKey, "newsmall",       "newlarge",
      "Close the open job and start a new one"}, &Commands::NewJob},
    {{"OpenJob",       "Open Job",        kNoKey, "opensmall",      "openlarge",
      "Open a saved job"}, &Commands::OpenJob},
    {{"SaveJob",       "Save Job",        kNoKey, "savesmall",      "savelarge",
      "Save the open job"}, &Commands::SaveJob},
    kSeparator,
    {{"AddFiles",      "Add Files",       kNoKey, "addfilessmall",  "addfileslarge",
      "Add files to the job"}, &Commands::AddFilesDialog},
    {{"AddFolder",     "Add Folder",      kNoKey, "addfoldersmall", "addfolderlarge",
      "Add a folder to the job"}, &Commands::AddFolder},
    kSeparator,
    {{"WipeNow",       "Wipe Now",        kNoKey, "MainSmall",      "MainLarge",
      "Wipe all items of the job"}, &Commands::RunJobWipe},
    {{"WipeFreeSpace", "Wipe Free Space", kNoKey, "wipspacesmall",  "wipespacelarge",
      "Wipe the free space of a drive"}, &Commands::WipeFreeSpace},
};

constexpr std::string_view kBandNames[] = {"Job", "Items", "Wiping"};

struct MenuCommands {
  std::string_view name;
  std::string_view caption;
  std::span<const Command> commands;
};

constexpr MenuCommands kMenus[] = {
    {kFileMenu,    "&File",    kFileCommands},
    {kActionsMenu, "&Actions", kActionsCommands},
    {"mnuHelp",    "&Help",    kHelpCommands},
};

constexpr Panel kPanels[] = {
    {"Static1",       "Press F1 for Help", 150},
    {kJobPanel,       "",                  0},
    {kItemCountPanel, "0 Items",           130},
};
// clang-format on

std::vector<Tool> ToolsOf(std::span<const Command> commands) {
  std::vector<Tool> tools;
  for (const Command& command : commands) tools.push_back(command.tool);
  return tools;
}

// The key that a menu's tool has for the same operation.
Shortcut ShortcutOf(const Command& wanted) {
  for (const MenuCommands& menu : kMenus) {
    for (const Command& command : menu.commands) {
      if (wanted.operation && command.operation == wanted.operation) return command.tool.shortcut;
    }
  }
  return {};
}

const Command* Find(std::span<const Command> commands, std::string_view toolName) {
  for (const Command& command : commands) {
    if (command.tool.name == toolName) return &command;
  }
  return nullptr;
}

}  // namespace

BarsDesign MainBars() {
  BarsDesign design;
  for (const MenuCommands& menu : kMenus)
    design.menus.push_back({menu.name, menu.caption, ToolsOf(menu.commands)});
  for (const Command& command : kToolBarCommands) {
    Tool tool = command.tool;
    tool.tipShortcut = ShortcutOf(command);
    design.toolBar.push_back(tool);
  }
  design.bandNames.assign(std::begin(kBandNames), std::end(kBandNames));
  design.panels.assign(std::begin(kPanels), std::end(kPanels));
  return design;
}

const Command* CommandOf(std::string_view toolName) {
  if (toolName.empty()) return nullptr;  // a separator's
  for (const MenuCommands& menu : kMenus) {
    if (const Command* command = Find(menu.commands, toolName)) return command;
  }
  return Find(kToolBarCommands, toolName);
}

}  // namespace zq
