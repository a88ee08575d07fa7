#include "e2e/walk/SettingsStage.h"

#include <algorithm>
#include <optional>

#include "e2e/walk/Inventory.h"

namespace zq::test {
namespace {

Window Rebar(const MainWindow& main) {
  return main.window.ChildOfClass(REBARCLASSNAMEA);
}

// A colour of the system as pictures have it.
std::uint32_t ColourOf(int index) {
  const DWORD colour = ::GetSysColor(index);
  return GetRValue(colour) << 16U | GetGValue(colour) << 8U | GetBValue(colour);
}

}  // namespace

void Give(const MainWindow& main, std::string_view tool) {
  main.window.WaitEnabled();  // a window that still has a modal one takes no command
  main.window.Command(CommandIdOf(tool));
}

PreferencesWindow::PreferencesWindow(const Program& program, const MainWindow& main) : main_(main.window) {
  Give(main, "mnuFilePreferences");
  window = program.WaitWindow("Preferences");
}

void PreferencesWindow::Show(Page page) const {
  const Window tabs = window.ChildOfClass(WC_TABCONTROLA);
  const int wanted = static_cast<int>(page);
  while (SelectedTab(tabs) != wanted) {
    const int before = SelectedTab(tabs);
    tabs.PostKey(before < wanted ? VK_RIGHT : VK_LEFT);
    Await("another tab", [&] { return SelectedTab(tabs) != before; });
  }
  constexpr const char* kFrames[] = {"Wipe Security", "Other Settings & Environment", "Explorer Manager"};
  window.Child(kFrames[wanted]).WaitVisible();
}

void PreferencesWindow::Tick(std::string_view caption, bool ticked) const {
  const Window box = window.Child(caption);
  if (!box.IsVisible()) throw DriverError("nobody can press what isn't shown: " + box.Describe());
  box.Press();
  Await("the change of " + box.Describe(), [&] { return box.IsChecked() == ticked; });
}

void PreferencesWindow::ChooseFontSize(std::string_view points) const {
  SelectEntry(window.ChildOfClass("ComboBox"), points);
}

void PreferencesWindow::WaitGone() const {
  window.WaitGone();
  main_.WaitEnabled();
}

void PreferencesWindow::ExpectShows(const SettingsFile& settings) const {
  EXPECT_EQ(window.Child(kOption3).IsChecked(), settings.passes == 3);
  EXPECT_EQ(window.Child(kOption5).IsChecked(), settings.passes == 5);
  EXPECT_EQ(window.Child(kOption7).IsChecked(), settings.passes != 3 && settings.passes != 5);
  EXPECT_EQ(window.Child(kProgressBars).IsChecked(), settings.progressBars == 1);
  EXPECT_EQ(window.Child(kToolBars).IsChecked(), settings.toolBars == 1);
  EXPECT_EQ(window.Child(kGridLines).IsChecked(), settings.gridLines == 1);
  EXPECT_EQ(window.Child(kMaximize).IsChecked(), settings.maximize == 1);
  EXPECT_EQ(window.Child(kPrompt).IsChecked(), settings.promptToSave == 1);
  EXPECT_EQ(window.Child(kManager).IsChecked(), settings.explorerManager == 1);
  const bool listed = settings.reportFontSize == 8 || settings.reportFontSize == 10;
  EXPECT_EQ(SelectedEntry(window.ChildOfClass("ComboBox")),
            std::to_string(listed ? settings.reportFontSize : 12));
}

std::optional<bool> HasLines(const ListView& list) {
  RECT place = list.TheWindow().ScreenRect();
  const LONG width = place.right - place.left;
  const LONG height = place.bottom - place.top;
  // Without scroll bars, header, rows, and the words of an empty list.
  place = {place.left + width / 10, place.top + height * 6 / 10, place.left + width * 8 / 10,
           place.top + height * 9 / 10};
  const Picture picture = GrabScreen(place);
  const std::uint32_t ground = ColourOf(COLOR_WINDOW);
  int empty = 0;
  int lines = 0;
  for (int y = 0; y < picture.height; ++y) {
    const auto row = picture.pixels.begin() + static_cast<std::ptrdiff_t>(y) * picture.width;
    if (!std::all_of(row, row + picture.width, [&](auto pixel) { return pixel == *row; })) continue;
    ++(*row == ground ? empty : lines);
  }
  if (empty == picture.height) return false;
  // Columns have lines, too, so that there is no row without any.
  if (empty == 0 && lines > 1 && lines < picture.height / 4) return true;
  return std::nullopt;
}

std::optional<bool> HasPlainBars(const MainWindow& main) {
  // Inside the first panel's text, without the edge of the bar itself.
  RECT place = main.statusBar.ScreenRect();
  place = {place.left + 4, place.top + 1, place.left + 60, place.bottom};
  const Picture panel = GrabScreen(place);
  const auto& pixels = panel.pixels;
  if (std::find(pixels.begin(), pixels.end(), ColourOf(COLOR_BTNTEXT)) == pixels.end()) return std::nullopt;
  const std::uint32_t edge = ColourOf(COLOR_BTNSHADOW);
  bool sunken = false;
  for (auto row = pixels.begin(); row != pixels.end(); row += panel.width)
    sunken = sunken || std::all_of(row, row + panel.width, [&](auto pixel) { return pixel == edge; });

  // The gripper of the first band, from top to bottom.
  place = Rebar(main).ScreenRect();
  place = {place.left, place.top, place.left + static_cast<LONG>(::GetDpiForSystem() / 6), place.top + 40};
  const Picture gripper = GrabScreen(place);
  bool raised = false;
  for (int x = 0; x < gripper.width; ++x) {
    int shaded = 0;
    for (int y = 0; y < gripper.height; ++y) shaded += gripper.At(x, y) == edge ? 1 : 0;
    raised = raised || shaded > gripper.height / 2;
  }
  return sunken == raised ? std::optional(sunken) : std::nullopt;
}

int RowsOfBands(const MainWindow& main) {
  return static_cast<int>(Rebar(main).Send(RB_GETROWCOUNT));
}

void DragLastBandDown(const MainWindow& main) {
  const Window rebar = Rebar(main);
  RECT band{};
  const RemoteMemory memory(rebar, sizeof band);
  rebar.Send(RB_GETRECT, static_cast<WPARAM>(rebar.Send(RB_GETBANDCOUNT) - 1), memory.Param());
  memory.Read(0, &band, sizeof band);
  constexpr LONG kOnTheGripper = 4;
  const LPARAM grip = MAKELPARAM(band.left + kOnTheGripper, (band.top + band.bottom) / 2);
  const LPARAM below = MAKELPARAM(band.left + kOnTheGripper, band.bottom + (band.bottom - band.top) / 2);
  rebar.Post(WM_LBUTTONDOWN, MK_LBUTTON, grip);
  rebar.Post(WM_MOUSEMOVE, MK_LBUTTON, below);
  rebar.Post(WM_LBUTTONUP, 0, below);
}

}  // namespace zq::test
