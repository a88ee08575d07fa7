// The QuickWipe Bin in the real program: opened by its key, dropped on, closed, with the main window going
// and coming.
#include "e2e/Zeroquill.h"

namespace zq::test {
namespace {

class QuickBin : public ZeroquillTest {
 protected:
  void SetUp() override { Prepare(); }

  // The picture that takes drops: the one that hears the mouse.
  static Window DropPicture(Window bin) {
    for (const Window child : bin.Children()) {
      if (child.ClassName() == "Static" && (child.Style() & SS_NOTIFY) != 0) return child;
    }
    throw DriverError("the Bin has no picture to drop on");
  }
};

TEST_F(QuickBin, TakesThePlaceOfTheMainWindowAndWipesWhatIsDropped) {
  // In none of the program's own texts: its folder is looked through, too.
  constexpr char kSecret[] = "a letter for the Bin, line ";
  const std::string content = Marked(kSecret, 20000);
  const std::string path = scratch_.Make("letters\\dropped.txt", content);
  const std::string kept = scratch_.Make("letters\\kept.txt", "stays");
  const Program program(exe_);
  const MainWindow main(program);
  TypeKey(main.window, 'Q', {VK_CONTROL});
  const Window bin = program.WaitWindow("QuickWipe Bin");
  Await("the main window to be minimised", [&] { return ::IsIconic(main.window.Handle()) != FALSE; });
  EXPECT_TRUE(bin.IsTopmost());
  EXPECT_FALSE(bin.Owner());
  EXPECT_TRUE(main.window.IsEnabled());

  EXPECT_EQ(DragFilesTo(DropPicture(bin).Centre(), {path}), static_cast<DWORD>(DROPEFFECT_COPY));
  EXPECT_FALSE(PathExists(path));
  EXPECT_FALSE(FolderHolds(scratch_.Path(), kSecret));
  EXPECT_EQ(ReadFileBytes(kept), "stays");
  EXPECT_EQ(StatusPanels(bin.ChildOfClass("msctls_statusbar32")).front(), "Last Operation: Success");
  EXPECT_FALSE(PathExists(reportPath_)) << "there is no report of it";

  bin.Child("Close Bin").Press();
  bin.WaitGone();
  Await("the main window to be back", [&] { return ::IsIconic(main.window.Handle()) == FALSE; });
}

}  // namespace
}  // namespace zq::test
