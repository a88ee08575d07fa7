// The program under test in a folder of its own: the files it keeps there, its main window, its boxes.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/driver/Driver.h"

namespace zq::test {

// Settings.dat, field by field; a new one holds what the program starts with.
struct SettingsFile {
  std::int32_t passes = 3;
  std::string lastFolder;                                // padded with blanks
  std::string lastFilesFolder = std::string(150, '\0');  // padded with blanks
  std::int16_t gridLines = 0;
  std::int16_t maximize = 0;
  std::int16_t promptToSave = 1;
  std::int16_t reportFontSize = 8;
  std::int16_t skipNewJobNote = 0;
  std::int16_t includeSubFolders = 0;
  std::int16_t explorerManager = 0;
  std::int16_t toolBars = 1;
  std::int16_t progressBars = 1;

  std::string Bytes() const;
};

// Settings2.dat, in twips.
struct PlacementFile {
  std::int16_t width = 0;
  std::int16_t height = 0;
  std::int16_t left = 0;
  std::int16_t top = 0;

  std::string Bytes() const;
  // The placement of a window that lies so on this screen, in pixels.
  static PlacementFile Of(RECT screen);
};

int TwipsPerPixel();

// The main window, waited for.
class MainWindow {
 public:
  explicit MainWindow(const Program& program);

  Window window;
  ListView list;
  Window statusBar;

  // The tools of the tool bar's bands as they stand, with a separator between two bands.
  std::vector<ToolButton> Tools() const;
  ToolButton Tool(std::string_view caption) const;
  void PressTool(std::string_view caption) const { window.Command(Tool(caption).command); }
  // Waits until the tools "Save Job" and "Wipe Now" are enabled or not, which goes with the list.
  void WaitJobTools(bool enabled) const;

  // Opens a menu of the menu bar by its access key, and gives its window.
  Window OpenMenu(WORD menuKey) const;
  // Opens it and chooses a command by its access key.
  void ChooseMenu(WORD menuKey, WORD commandKey) const;

  // The number of items in the status bar.
  std::string Items() const { return StatusPanels(statusBar).back(); }
  void WaitItems(std::string_view text) const;

 private:
  std::vector<Window> ToolBars() const;
  const Program* program_;
};

// The program's menu that is open; empty if there is none.
Window FindMenu(const Program& program);

void ExpectBox(const MessageBoxView& box, std::string_view title, std::string_view text, BoxIcon icon,
               const std::vector<std::string>& buttons, std::string_view defaultButton);

// A label with a text: the system draws it, or its form.
bool IsLabel(Window window);

// Each label of the dialog is as high and wide as its text needs, in the dialogs' font.
void ExpectLabelsFit(Window dialog);

// The report of a failure that ends the program: reads it, answers it, and waits for the end.
void ExpectRunTimeError(const Program& program, std::string_view text);

// A path in quotes, as a command line and the report have it.
std::string Quoted(const std::string& path);

// Numbered lines, each with the mark, so that any part of the content is found wherever it has gone.
std::string Marked(std::string_view mark, std::size_t bytes);

// A file held open by the test in a way that lets others do no more than `share` says.
class HeldFile {
 public:
  explicit HeldFile(const std::string& path, DWORD share = 0);
  ~HeldFile();
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;

 private:
  HANDLE file_;
};

// The program's folder, fresh for each test.
class ZeroquillTest : public ::testing::Test {
 protected:
  const ScratchFolder scratch_;
  const std::string folder_ = scratch_.CopyIn("Zeroquill");
  const std::string exe_ = folder_ + "\\Zeroquill.exe";
  const std::string settingsPath_ = folder_ + "\\Settings.dat";
  const std::string placementPath_ = folder_ + "\\Settings2.dat";
  const std::string markerPath_ = folder_ + "\\sfrun.dat";
  const std::string reportPath_ = folder_ + "\\Report\\Report.dat";

  // A folder of a user who has seen the welcome and isn't asked to save, with the window at a place that
  // leaves a corner of the screen free.
  void Prepare(SettingsFile settings = {}) const;
};

}  // namespace zq::test
