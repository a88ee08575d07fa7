// What the walk through the settings works with: the preferences as a user changes them, and what settings
// do, as it is seen on the screen and in the bytes of files.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "e2e/Wiping.h"

namespace zq::test {

// Gives a command of the menus or of the tool bar, by its name in the program.
void Give(const MainWindow& main, std::string_view tool);

// The dialog of the preferences.
class PreferencesWindow {
 public:
  enum class Page { Security, Settings, Manager };

  // Opens it by its command.
  PreferencesWindow(const Program& program, const MainWindow& main);

  Window window;

  // Goes from tab to tab by the arrow keys.
  void Show(Page page) const;
  void Tick(std::string_view caption, bool ticked) const;
  void ChooseFontSize(std::string_view points) const;
  // Presses OK; a question that comes of it is the caller's.
  void PressOk() const { window.Child("OK").Press(); }
  void WaitGone() const;

  // It shows these settings, on all of its pages.
  void ExpectShows(const SettingsFile& settings) const;

 private:
  Window main_;
};

// The captions of its boxes.
inline constexpr char kOption3[] = "Level 3 Wiping (equal to 9 data writes per byte) - Strong Security";
inline constexpr char kOption5[] = "Level 5 Wiping (equal to 15 data writes per byte) - Stronger Security";
inline constexpr char kOption7[] = "Level 7 Wiping (equal to 21 data writes per byte) - Strongest Security";
inline constexpr char kProgressBars[] = "Use Progress Bar Visual Styles";
inline constexpr char kToolBars[] = "Use Menu Visual Styles (XP or higher)";
inline constexpr char kGridLines[] = "Display Gridlines in Zeroquill Bin";
inline constexpr char kMaximize[] = "Maximize Window at Startup";
inline constexpr char kPrompt[] = "Prompt to Save Zeroquill Jobs";
inline constexpr char kManager[] = "Load Explorer Manager at System Startup";

// Whether lines run across the list on the screen where it has no row; nothing while it is not painted.
std::optional<bool> HasLines(const ListView& list);

// Whether status bar and tool bar have the edges that they have without visual styles alone; nothing while
// they are not painted, or each in another way.
std::optional<bool> HasPlainBars(const MainWindow& main);

// How many rows the bands of the tool bar stand in.
int RowsOfBands(const MainWindow& main);
// Drags the last band of the tool bar by its gripper into a row of its own.
void DragLastBandDown(const MainWindow& main);

}  // namespace zq::test
