#include "e2e/walk/Inventory.h"

#include <windows.h>

#include "core/main/CommandTable.h"
#include "resource.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

// Of the first tool; the others follow in the order of MainBars().
constexpr int kFirstCommandId = 0x4000;

// clang-format off
constexpr WindowRow kWindows[] = {
    {IDD_frmMain,        "frmMain"},
    {IDD_frmOpen,        "frmOpen"},
    {IDD_frmWelcome,     "frmWelcome"},
    {IDD_frmAbout,       "frmAbout"},
    {IDD_frmStatus,      "frmStatus"},
    {IDD_frmFolder,      "frmFolder"},
    {IDD_frmEdit,        "frmEdit"},
    {IDD_frmNew,         "frmNew"},
    {IDD_frmSave,        "frmSave"},
    {IDD_frmOpenJob,     "frmOpenJob"},
    {IDD_frmPrintReport, "frmPrintReport"},
    {IDD_PrintingBox,    "PrintingBox",
     "it is there while a page is drawn, too short to be sure of from outside: Printing.CancelEndsTheJob*"},
    {IDD_frmDriveWipe,   "frmDriveWipe"},
    {IDD_frmSpaceStatus, "frmSpaceStatus"},
    {IDD_frmPreferences, "frmPreferences"},
    {IDD_frmQuick,       "frmQuick"},
    {IDD_frmQuickErrors, "frmQuickErrors"},
    {0,                  "mnuFile"},
    {0,                  "mnuActions"},
    {0,                  "mnuHelp"},
    {0,                  "AddFilesDialog"},
    {0,                  "PrintDialog"},
    {0,                  "Help"},
};
// clang-format on

std::vector<Tool> ToolsInOrder() {
  const BarsDesign bars = MainBars();
  std::vector<Tool> tools;
  const auto add = [&tools](const std::vector<Tool>& more) {
    for (const Tool& tool : more) {
      if (!tool.name.empty()) tools.push_back(tool);
    }
  };
  for (const Menu& menu : bars.menus) add(menu.tools);
  add(bars.toolBar);
  return tools;
}

}  // namespace

std::span<const WindowRow> WindowRows() {
  return kWindows;
}

std::vector<int> TemplatesIn(const std::string& program) {
  const HMODULE module = ::LoadLibraryExW(ToWide(program).c_str(), nullptr,
                                          LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
  if (!module) throw DriverError("can't look into " + program);
  std::vector<int> numbers;
  ::EnumResourceNamesW(
      module, MAKEINTRESOURCEW(5),  // RT_DIALOG
      [](HMODULE, LPCWSTR, LPWSTR name, LONG_PTR found) -> BOOL {
        if (IS_INTRESOURCE(name))
          reinterpret_cast<std::vector<int>*>(found)->push_back(
              static_cast<int>(reinterpret_cast<ULONG_PTR>(name)));
        return TRUE;
      },
      reinterpret_cast<LONG_PTR>(&numbers));
  ::FreeLibrary(module);
  return numbers;
}

std::vector<std::string> CommandNames() {
  std::vector<std::string> names;
  for (const Tool& tool : ToolsInOrder()) {
    const Command* command = CommandOf(tool.name);
    if (command && command->operation) names.emplace_back(tool.name);
  }
  return names;
}

int CommandIdOf(std::string_view toolName) {
  int id = kFirstCommandId;
  for (const Tool& tool : ToolsInOrder()) {
    if (tool.name == toolName) return id;
    ++id;
  }
  throw DriverError("no command '" + std::string(toolName) + "'");
}

bool IsOfPattern(std::string_view text, std::string_view pattern) {
  const std::size_t hole = pattern.find("{}");
  if (hole == std::string_view::npos) return text == pattern;
  if (text.substr(0, hole) != pattern.substr(0, hole)) return false;
  const std::string_view rest = pattern.substr(hole + 2);
  for (std::size_t at = hole; at <= text.size(); ++at) {
    if (IsOfPattern(text.substr(at), rest)) return true;
  }
  return false;
}

}  // namespace zq::test
