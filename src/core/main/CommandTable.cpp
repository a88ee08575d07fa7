#include "core/main/CommandTable.h"

namespace zq {
namespace {

constexpr Shortcut kNoKey{};
constexpr Shortcut kDelete{0x2E, false};
constexpr Shortcut kF1{0x70, false};
constexpr Shortcut kF10{0x79, false};

constexpr Shortcut Ctrl(char letter) {
  return {static_cast<std::uint16_t>(letter), true};
}

constexpr Tool kSeparator{};

// clang-format off
constexpr Tool kFileTools[] = {
    {"mnuFileNew",          "&New Wiping Job",           Ctrl('N'), "newsmall",  ""},
    {"mnuFileOpen",         "&Open Wiping Job...",       Ctrl('O'), "opensmall", ""},
    {"mnuFileSave",         "&Save Wiping Job",          Ctrl('S'), "savesmall", ""},
    kSeparator,
    {"mnuFileClose",        "&Close Wiping Job",         Ctrl('W'), "",          ""},
    {"mnuFileDelete",       "&Delete Open Job",          Ctrl('D'), "",          ""},
    kSeparator,
    {"mnuFileView",         "&View Last Report...",      kNoKey,    "report",    ""},
    {"mnuFilePreferences",  "&Preferences...",           kNoKey,    "",          ""},
    kSeparator,
    {"mnuFileLaunch",       "&Launch Explorer Manager",  kNoKey,    "",          ""},
    kSeparator,
    {"mnuFileQuickWipeBin", "&QuickWipe Bin",            Ctrl('Q'), "MainSmall", ""},
    kSeparator,
    {"mnuFileExit",         "E&xit Zeroquill",           kNoKey,    "",          ""},
};

constexpr Tool kActionsTools[] = {
    {"mnuActionsAddFiles",      "Add F&iles...",         kNoKey,  "addfilessmall",  ""},
    {"mnuActionsAddFolder",     "Add F&older...",        kNoKey,  "addfoldersmall", ""},
    kSeparator,
    {"mnuActionsRemove",        "&Remove Selected Item", kDelete, "delete",         ""},
    {"mnuActionsEdit",          "&Edit Folder Item...",  kNoKey,  "",               ""},
    kSeparator,
    {"mnuActionsWipeFreeSpace", "Wipe &Free Space...",   kNoKey,  "wipspacesmall",  ""},
    kSeparator,
    {"mnuActionsWipeNow",       "&Wipe Now",             kF10,    "MainSmall",      ""},
};

constexpr Tool kHelpTools[] = {
    {"mnuHelpContents", "&Contents",           kF1,    "help", ""},
    kSeparator,
    {"mnuHelpWebPage",  "Zeroquill &Web Page", kNoKey, "",     ""},
    kSeparator,
    {"mnuHelpAbout",    "&About Zeroquill",    kNoKey, "",     ""},
};

constexpr Menu kMenus[] = {
    {"mnuFile",    "&File",    kFileTools},
    {"mnuActions", "&Actions", kActionsTools},
    {"mnuHelp",    "&Help",    kHelpTools},
};

constexpr Tool kToolBarTools[] = {
    {"NewJob",        "New Job",         kNoKey, "newsmall",       "newlarge"},
    {"OpenJob",       "Open Job",        kNoKey, "opensmall",      "openlarge"},
    {"SaveJob",       "Save Job",        kNoKey, "savesmall",      "savelarge"},
    kSeparator,
    {"AddFiles",      "Add Files",       kNoKey, "addfilessmall",  "addfileslarge"},
    {"AddFolder",     "Add Folder",      kNoKey, "addfoldersmall", "addfolderlarge"},
    kSeparator,
    {"WipeNow",       "Wipe Now",        kNoKey, "MainSmall",      "MainLarge"},
    {"WipeFreeSpace", "Wipe Free Space", kNoKey, "wipspacesmall",  "wipespacelarge"},
};

struct ToolOperation {
  std::string_view toolName;
  Operation operation;
};

constexpr ToolOperation kOperations[] = {
    {"AddFiles",                Operation::AddFiles},
    {"mnuActionsAddFiles",      Operation::AddFiles},
    {"OpenJob",                 Operation::OpenJob},
    {"mnuFileOpen",             Operation::OpenJob},
    {"SaveJob",                 Operation::SaveJob},
    {"mnuFileSave",             Operation::SaveJob},
    {"mnuHelpContents",         Operation::HelpContents},
    {"mnuFileQuickWipeBin",     Operation::QuickWipeBin},
    {"mnuFileLaunch",           Operation::LaunchManager},
    {"AddFolder",               Operation::AddFolder},
    {"mnuActionsAddFolder",     Operation::AddFolder},
    {"mnuActionsRemove",        Operation::RemoveSelectedItem},
    {"mnuFileExit",             Operation::Exit},
    {"mnuFileView",             Operation::ViewReport},
    {"mnuActionsEdit",          Operation::EditFolderItem},
    {"mnuFilePreferences",      Operation::Preferences},
    {"mnuHelpAbout",            Operation::About},
    {"WipeNow",                 Operation::RunJobWipe},
    {"mnuActionsWipeNow",       Operation::RunJobWipe},
    {"WipeFreeSpace",           Operation::WipeFreeSpace},
    {"mnuActionsWipeFreeSpace", Operation::WipeFreeSpace},
    {"mnuFileClose",            Operation::CloseJob},
    {"NewJob",                  Operation::NewJob},
    {"mnuFileNew",              Operation::NewJob},
    {"mnuFileDelete",           Operation::DeleteOpenJob},
    {"mnuHelpWebPage",          Operation::WebPage},
};
// clang-format on

}  // namespace

std::span<const Menu> Menus() {
  return kMenus;
}

std::span<const Tool> ToolBarTools() {
  return kToolBarTools;
}

Operation OperationOf(std::string_view toolName) {
  for (const ToolOperation& row : kOperations) {
    if (row.toolName == toolName) return row.operation;
  }
  return Operation::None;
}

}  // namespace zq
