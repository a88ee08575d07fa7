#include "e2e/Zeroquill.h"

#include <algorithm>
#include <utility>

#include "support/driver/Text.h"

namespace zq::test {
namespace {

// Places are compared in real pixels, so that the system must not scale them for us.
[[maybe_unused]] const bool kDpiAware =
    ::SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2) != FALSE;

constexpr RECT kUsualPlace{150, 120, 900, 640};

void Append(std::string& bytes, std::int64_t value, int count) {
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

void AppendPadded(std::string& bytes, std::string text) {
  text.resize(150, ' ');
  bytes += text;
}

// It holds a list; a message box may have the same title.
bool IsMainWindow(Window window) {
  return ::FindWindowExW(window.Handle(), nullptr, L"SysListView32", nullptr) != nullptr &&
         window.HasText("Zeroquill");
}

Window WaitMain(const Program& program) {
  Window found;
  const auto look = [&] {
    for (Window window : program.Windows()) {
      if (IsMainWindow(window)) found = window;
    }
    return static_cast<bool>(found) || !program.IsRunning();
  };
  if (!WaitFor(look) || !found) throw DriverError("no main window; there is " + program.Describe());
  return found;
}

}  // namespace

std::string SettingsFile::Bytes() const {
  std::string bytes;
  Append(bytes, passes, 4);
  AppendPadded(bytes, lastFolder);
  AppendPadded(bytes, lastFilesFolder);
  for (const std::int16_t field : {gridLines, maximize, promptToSave, reportFontSize, skipNewJobNote,
                                   includeSubFolders, explorerManager, toolBars, progressBars}) {
    Append(bytes, field, 2);
  }
  return bytes;
}

std::string PlacementFile::Bytes() const {
  std::string bytes;
  for (const std::int16_t field : {width, height, left, top}) Append(bytes, field, 2);
  return bytes;
}

PlacementFile PlacementFile::Of(RECT screen) {
  const auto twips = [](LONG pixels) { return static_cast<std::int16_t>(pixels * TwipsPerPixel()); };
  return {twips(screen.right - screen.left), twips(screen.bottom - screen.top), twips(screen.left),
          twips(screen.top)};
}

int TwipsPerPixel() {
  return 1440 / static_cast<int>(::GetDpiForSystem());
}

MainWindow::MainWindow(const Program& program)
    : window(WaitMain(program)),
      list(window.ChildOfClass(WC_LISTVIEWA)),
      statusBar(window.ChildOfClass(STATUSCLASSNAMEA)),
      program_(&program) {
}

std::vector<Window> MainWindow::ToolBars() const {
  std::vector<Window> toolBars;
  for (Window child : window.Children()) {
    if (child.ClassName() == TOOLBARCLASSNAMEA) toolBars.push_back(child);
  }
  std::sort(toolBars.begin(), toolBars.end(), [](Window a, Window b) {
    const RECT first = a.ScreenRect();
    const RECT second = b.ScreenRect();
    return std::make_pair(first.top, first.left) < std::make_pair(second.top, second.left);
  });
  return toolBars;
}

std::vector<ToolButton> MainWindow::Tools() const {
  std::vector<ToolButton> tools;
  for (Window toolBar : ToolBars()) {
    if (!tools.empty())
      tools.push_back({.command = 0, .caption = "", .enabled = false, .checked = false, .separator = true});
    for (ToolButton& tool : ToolButtons(toolBar)) tools.push_back(std::move(tool));
  }
  return tools;
}

ToolButton MainWindow::Tool(std::string_view caption) const {
  for (ToolButton& tool : Tools()) {
    if (tool.caption == caption) return std::move(tool);
  }
  throw DriverError("no tool '" + std::string(caption) + "'");
}

void MainWindow::WaitJobTools(bool enabled) const {
  for (const char* caption : {"Save Job", "Wipe Now"}) {
    Await(std::string("'") + caption + "' to be " + (enabled ? "enabled" : "disabled"),
          [&] { return Tool(caption).enabled == enabled; });
  }
}

Window MainWindow::OpenMenu(WORD menuKey) const {
  window.WaitEnabled();  // keys are lost on a window that still has a modal one
  TypeKey(window, menuKey, {VK_MENU});
  Await("a menu", [&] { return static_cast<bool>(FindMenu(*program_)); });
  return FindMenu(*program_);
}

void MainWindow::ChooseMenu(WORD menuKey, WORD commandKey) const {
  const Window menu = OpenMenu(menuKey);
  TypeKey(window, commandKey);
  Await("the end of the menu", [&] { return !menu.IsVisible(); });
}

void MainWindow::WaitItems(std::string_view text) const {
  Await("'" + std::string(text) + "' in the status bar", [&] { return Items() == text; });
}

Window FindMenu(const Program& program) {
  for (Window window : program.Windows()) {
    if (window.ClassName() == "#32768") return window;
  }
  return {};
}

void ExpectBox(const MessageBoxView& box, std::string_view title, std::string_view text, BoxIcon icon,
               const std::vector<std::string>& buttons, std::string_view defaultButton) {
  EXPECT_EQ(box.title, title);
  EXPECT_EQ(box.text, text);
  EXPECT_EQ(ToString(box.icon), ToString(icon));
  EXPECT_EQ(box.buttons, buttons);
  EXPECT_EQ(box.defaultButton, defaultButton);
}

// One that is shown: the others are names for screen readers.
bool IsLabel(Window window) {
  const LONG_PTR type = window.Style() & SS_TYPEMASK;
  return window.ClassName() == "Static" && (window.Style() & WS_VISIBLE) != 0 &&
         (type == SS_LEFT || type == SS_OWNERDRAW);
}

void ExpectLabelsFit(Window dialog) {
  constexpr int kPoints = 8;
  const auto dpi = static_cast<int>(::GetDpiForSystem());
  HDC screen = ::GetDC(nullptr);
  HFONT font =
      ::CreateFontW(-::MulDiv(kPoints, dpi, 72), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                    OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, L"Tahoma");
  HGDIOBJ before = ::SelectObject(screen, font);
  int labels = 0;
  for (Window child : dialog.Children()) {
    if (!IsLabel(child)) continue;
    ++labels;
    const RECT place = child.ScreenRect();
    RECT needed{0, 0, place.right - place.left, 0};
    ::DrawTextW(screen, ToWide(child.Text()).c_str(), -1, &needed, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    EXPECT_LE(needed.bottom, place.bottom - place.top) << "cut off: " << child.Text();
    EXPECT_LE(needed.right, place.right - place.left) << "cut off: " << child.Text();
  }
  ::SelectObject(screen, before);
  ::DeleteObject(font);
  ::ReleaseDC(nullptr, screen);
  EXPECT_GT(labels, 0);
}

void ExpectRunTimeError(const Program& program, std::string_view text) {
  const MessageBoxView box = program.WaitBox("Zeroquill");
  ExpectBox(box, "Zeroquill", text, BoxIcon::Error, {"OK"}, "OK");
  box.Answer("OK");
  EXPECT_EQ(program.WaitExit(), 1u);
}

std::string Quoted(const std::string& path) {
  return "\"" + path + "\"";
}

std::string Marked(std::string_view mark, std::size_t bytes) {
  std::string content;
  content.reserve(bytes + 64);
  for (int line = 0; content.size() < bytes; ++line) {
    content += mark;
    content += std::to_string(line);
    content += '\n';
  }
  content.resize(bytes);
  return content;
}

HeldFile::HeldFile(const std::string& path, DWORD share)
    : file_(::CreateFileW(ToWide(path).c_str(), GENERIC_READ | GENERIC_WRITE, share, nullptr, OPEN_EXISTING,
                          0, nullptr)) {
  if (file_ == INVALID_HANDLE_VALUE) throw DriverError("can't hold " + path);
}

HeldFile::~HeldFile() {
  ::CloseHandle(file_);
}

void ZeroquillTest::Prepare(SettingsFile settings) const {
  settings.promptToSave = 0;
  WriteFileBytes(settingsPath_, settings.Bytes());
  WriteFileBytes(placementPath_, PlacementFile::Of(kUsualPlace).Bytes());
  WriteFileBytes(markerPath_, "");
}

}  // namespace zq::test
