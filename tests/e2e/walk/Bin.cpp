// The QuickWipe Bin: opened and closed by its command and by its button, dropped on, its errors looked at.
#include "e2e/walk/Scenes.h"
#include "e2e/walk/Steps.h"

namespace zq::test {
namespace {

constexpr char kSecret[] = "a letter for the Bin, line ";  // in none of the program's own texts

// The picture that takes drops: the one that hears the mouse.
Window DropPicture(Window bin) {
  for (const Window child : bin.Children()) {
    if (child.ClassName() == "Static" && (child.Style() & SS_NOTIFY) != 0) return child;
  }
  throw DriverError("the Bin has no picture to drop on");
}

Window Open(Walk& walk) {
  walk.Command("mnuFileQuickWipeBin");
  const Window bin = walk.Run().WaitWindow("QuickWipe Bin");
  Await("the main window to be minimised", [&] { return ::IsIconic(walk.Main().window.Handle()) != FALSE; });
  EXPECT_TRUE(bin.IsTopmost());
  EXPECT_FALSE(bin.Owner());
  EXPECT_EQ(StatusPanels(bin.ChildOfClass(STATUSCLASSNAMEA)).front(), "");
  return bin;
}

void WaitClosed(const Walk& walk, Window bin) {
  bin.WaitGone();
  Await("the main window as it was", [&] { return ::IsZoomed(walk.Main().window.Handle()) != FALSE; });
}

std::string Drop(Window bin, const std::vector<std::string>& paths) {
  EXPECT_EQ(DragFilesTo(DropPicture(bin).Centre(), paths), static_cast<DWORD>(DROPEFFECT_COPY));
  return StatusPanels(bin.ChildOfClass(STATUSCLASSNAMEA)).front();
}

void ClickFirstPanel(Window bin) {
  const Window bar = bin.ChildOfClass(STATUSCLASSNAMEA);
  const LPARAM place = MAKELPARAM(12, 12);
  bar.Post(WM_LBUTTONDOWN, MK_LBUTTON, place);
  bar.Post(WM_LBUTTONUP, 0, place);
}

}  // namespace

void UseTheBin(Walk& walk) {
  const std::string letter =
      walk.scratch.Make("bin\\letter.txt", Marked(kSecret, 20000), FILE_ATTRIBUTE_READONLY);
  const std::string other = walk.scratch.Make("bin\\other.doc", Marked(kSecret, 5000));
  const std::string empty = walk.scratch.Make("bin\\empty.txt", "");
  const std::string held = walk.scratch.Make("bin\\in use.txt", "stays");
  const std::string folder = walk.scratch / "bin\\folder";
  const std::string inFolder = walk.scratch.Make("bin\\folder\\kept.txt", "stays");
  const std::string report = ReadFileBytes(walk.reportPath);

  Window bin = Open(walk);
  walk.visits.See("frmQuick", bin);
  {
    const HeldFile inUse(held);
    EXPECT_EQ(Drop(bin, {letter, held, folder, other}), "Last Operation: Errors");
  }
  walk.visits.See("frmQuick", bin, "errors");
  EXPECT_FALSE(PathExists(letter));
  EXPECT_FALSE(PathExists(other));
  walk.ExpectNoTrace(kSecret);
  EXPECT_EQ(ReadFileBytes(held), "stays");
  EXPECT_EQ(ReadFileBytes(inFolder), "stays");

  ClickFirstPanel(bin);
  const Window errors = walk.Dialog("frmQuickErrors", "QuickWipe Errors");
  const std::vector<std::string> lines = Entries(errors.ChildOfClass("ListBox"));
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(lines[0].starts_with(held + " - ")) << lines[0];
  AcceptDialog(errors);
  walk.Command("mnuFileQuickWipeBin");
  WaitClosed(walk, bin);

  bin = Open(walk);
  EXPECT_EQ(Drop(bin, {empty}), "Last Operation: Success");
  walk.visits.See("frmQuick", bin, "success");
  EXPECT_FALSE(PathExists(empty));
  bin.Child("Close Bin").Press();
  WaitClosed(walk, bin);
  bin = Open(walk);
  bin.Close();
  WaitClosed(walk, bin);
  EXPECT_EQ(ReadFileBytes(walk.reportPath), report) << "there is no report of it";
  EXPECT_EQ(walk.Main().list.Rows(), 0);
}

}  // namespace zq::test
