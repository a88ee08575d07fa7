// Menus, tool bar, status bar, shortcuts and the small boxes behind the commands.
#include "e2e/Zeroquill.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;

constexpr char kQuestion[] = " from your listing?";

class Commands : public ZeroquillTest {
 protected:
  void SetUp() override { Prepare(); }

  // Command-line text for `count` files that are made for it.
  std::string MakeFiles(int count) const {
    std::string arguments;
    for (int i = 1; i <= count; ++i) {
      const std::string path = scratch_.Make("papers\\paper " + std::to_string(i) + ".txt", "a paper");
      arguments += (i > 1 ? " \"" : "\"") + path + "\"";
    }
    return arguments;
  }
  std::string Paper(int number) const {
    return scratch_ / ("papers\\paper " + std::to_string(number) + ".txt");
  }
};

// What has been asked of the program before is done, and nothing but the main window has come of it.
void ExpectNothingCame(const Program& program, const MainWindow& main) {
  main.ChooseMenu('H', 'A');
  const Window about = program.WaitWindow("About Zeroquill");
  EXPECT_EQ(program.Windows().size(), 2u) << program.Describe();
  about.Child("OK").Press();
  about.WaitGone();
}

std::vector<std::string> DisabledTools(const MainWindow& main) {
  std::vector<std::string> captions;
  for (const ToolButton& tool : main.Tools()) {
    if (!tool.separator && !tool.enabled) captions.push_back(tool.caption);
  }
  return captions;
}

TEST_F(Commands, HaveTheirToolsInOrder) {
  const Program program(exe_);
  const MainWindow main(program);
  std::vector<std::string> captions;
  for (const ToolButton& tool : main.Tools()) {
    captions.push_back(tool.separator ? "-" : tool.caption);
  }
  EXPECT_THAT(captions, ElementsAre("New Job", "Open Job", "Save Job", "-", "Add Files", "Add Folder", "-",
                                    "Wipe Now", "Wipe Free Space"));
  EXPECT_THAT(main.list.Columns(), ElementsAre("Name & Location", "Size", "Folder Mask", "Sub Folders"));
}

TEST_F(Commands, AreEnabledByTheNumberOfItems) {
  struct Case {
    int rows;
    const char* items;
    std::vector<std::string> disabled;
  };
  for (const Case& c :
       {Case{0, "0 Items", {"Save Job", "Wipe Now"}}, Case{1, "1 Item", {}}, Case{3, "3 Items", {}}}) {
    SCOPED_TRACE(c.rows);
    const Program program(exe_, MakeFiles(c.rows));
    const MainWindow main(program);
    main.list.WaitRows(c.rows);
    EXPECT_EQ(DisabledTools(main), c.disabled);
    EXPECT_EQ(StatusPanels(main.statusBar).front(), "Press F1 for Help");
    EXPECT_EQ(main.Items(), c.items);
    EXPECT_EQ(main.list.Selected(), c.rows == 0 ? -1 : 0);
    const std::string suffix = "-" + std::to_string(c.rows);
    TakePicture(main.window, "commands-main" + suffix);
    for (const char key : {'F', 'A', 'H'}) {
      const Window menu = main.OpenMenu(static_cast<WORD>(key));
      TakePicture(menu, std::string("commands-menu-") + key + suffix);
      TypeKey(main.window, VK_ESCAPE);
      Await("the end of the menu", [&] { return !menu.IsVisible(); });
      TypeKey(main.window, VK_ESCAPE);  // out of the menu bar
    }
  }
}

TEST_F(Commands, ThatAreDisabledDoNothingFromTheMenuOrByShortcut) {
  const Program program(exe_);
  const MainWindow main(program);
  for (const WORD key : {'R', 'W', 'E'}) {  // Remove, Wipe Now, Edit
    const Window menu = main.OpenMenu('A');
    TypeKey(main.window, key);
    // A disabled command's key either leaves the menu open or closes it.
    TypeKey(main.window, VK_ESCAPE);
    Await("the end of the menu", [&] { return !menu.IsVisible(); });
    TypeKey(main.window, VK_ESCAPE);
  }
  TypeKey(main.window, VK_DELETE);
  TypeKey(main.window, VK_F10);
  TypeKey(main.window, 'S', {VK_CONTROL});
  TypeKey(main.window, 'W', {VK_CONTROL});
  TypeKey(main.window, 'D', {VK_CONTROL});
  ExpectNothingCame(program, main);
}

TEST_F(Commands, CountAThousandItemsWithASeparator) {
  const Program program(exe_);
  const MainWindow main(program);
  std::vector<std::string> paths;
  for (int i = 0; i < 1000; ++i) paths.push_back("C:\\nowhere\\" + std::to_string(i) + ".txt");
  EXPECT_EQ(DragFilesTo(main.list.TheWindow().Centre(), paths), static_cast<DWORD>(DROPEFFECT_COPY));
  main.list.WaitRows(1000);
  main.WaitItems("1,000 Items");
}

TEST_F(Commands, RemoveAsksAndKeepsOnNo) {
  const Program program(exe_, MakeFiles(3));
  const MainWindow main(program);
  main.list.WaitRows(3);
  main.list.Select(1);
  TypeKey(main.window, VK_DELETE);
  const MessageBoxView box = program.WaitBox("Remove Item");
  TakePicture(box.window, "commands-remove");
  ExpectBox(box, "Remove Item", "Remove " + Paper(2) + kQuestion, BoxIcon::Question, {"Yes", "No"}, "Yes");
  EXPECT_EQ(box.window.Owner(), main.window);
  EXPECT_FALSE(main.window.IsEnabled());
  box.Answer("No");
  ExpectNothingCame(program, main);
  EXPECT_EQ(main.list.Rows(), 3);
  EXPECT_EQ(main.Items(), "3 Items");
}

TEST_F(Commands, RemoveTakesOneRowAfterAnotherByKeyAndMenu) {
  const Program program(exe_, MakeFiles(3));
  const MainWindow main(program);
  main.list.WaitRows(3);
  main.list.Select(1);
  TypeKey(main.window, VK_DELETE);
  program.WaitBox("Remove Item").Answer("Yes");
  main.list.WaitRows(2);
  EXPECT_EQ(main.list.Text(0), Paper(1));
  EXPECT_EQ(main.list.Text(1), Paper(3));
  EXPECT_EQ(main.list.Selected(), 1) << "the row that took its place is selected";
  main.WaitItems("2 Items");

  main.ChooseMenu('A', 'R');
  MessageBoxView box = program.WaitBox("Remove Item");
  EXPECT_EQ(box.text, "Remove " + Paper(3) + kQuestion);
  box.Answer("Yes");
  main.list.WaitRows(1);
  main.WaitItems("1 Item");
  EXPECT_EQ(main.list.Selected(), 0);

  main.ChooseMenu('A', 'R');
  program.WaitBox("Remove Item").Answer("Yes");
  main.list.WaitRows(0);
  main.WaitItems("0 Items");
  main.WaitJobTools(false);
  for (int i = 1; i <= 3; ++i) EXPECT_EQ(ReadFileBytes(Paper(i)), "a paper");
}

TEST_F(Commands, WipeNowComesByF10) {
  const Program program(exe_, MakeFiles(1));
  const MainWindow main(program);
  main.list.WaitRows(1);
  TypeKey(main.window, VK_F10);
  program.WaitBox("Wipe Operation").Answer("Cancel");
  EXPECT_TRUE(main.window.IsVisible());
  EXPECT_EQ(ReadFileBytes(Paper(1)), "a paper");
}

TEST_F(Commands, AboutTellsProductAndLicence) {
  const Program program(exe_);
  const MainWindow main(program);
  main.ChooseMenu('H', 'A');
  const Window about = program.WaitWindow("About Zeroquill");
  TakePicture(about, "commands-about");
  ExpectLabelsFit(about);
  EXPECT_EQ(about.Owner(), main.window);
  EXPECT_FALSE(main.window.IsEnabled());
  EXPECT_EQ(about.Style() & WS_THICKFRAME, 0);
  std::vector<std::string> labels;
  for (Window child : about.Children()) {
    if (child.ClassName() == "Static" && (child.Style() & SS_TYPEMASK) == SS_LEFT)
      labels.push_back(child.Text());
  }
  ASSERT_EQ(labels.size(), 4u);
  EXPECT_EQ(labels[0], "Zeroquill v1.0");
  for (const std::string& label : labels) EXPECT_NE(label, "");
  EXPECT_EQ(about.Child("OK").Text(), "&OK");
  TypeKey(about, VK_RETURN);
  about.WaitGone();
  main.window.WaitEnabled();

  // Each showing is a fresh one, and its close box closes it alone.
  main.ChooseMenu('H', 'A');
  const Window again = program.WaitWindow("About Zeroquill");
  again.Close();
  again.WaitGone();
  main.window.WaitEnabled();
  EXPECT_TRUE(program.IsRunning());
}

TEST_F(Commands, ViewLastReportSaysSoWhenThereIsNone) {
  const Program program(exe_);
  const MainWindow main(program);
  main.ChooseMenu('F', 'V');
  const MessageBoxView box = program.WaitBox("No Report");
  TakePicture(box.window, "commands-no-report");
  ExpectBox(box, "No Report", "There is no report available to view at this time.", BoxIcon::Information,
            {"OK"}, "OK");
  box.Answer("OK");
  main.window.WaitEnabled();
}

TEST_F(Commands, OpenTheActionsMenuByTheRightButton) {
  const Program program(exe_, MakeFiles(2));
  const MainWindow main(program);
  main.list.WaitRows(2);
  const POINT place = main.list.RowPoint(0);
  ClickAt(place, true);
  Await("the popup menu", [&] { return static_cast<bool>(FindMenu(program)); });
  const Window menu = FindMenu(program);
  TakePicture(menu, "commands-popup");
  const RECT rect = menu.ScreenRect();
  EXPECT_LE(std::abs(rect.left - place.x), 8);
  EXPECT_LE(std::abs(rect.top - place.y), 8);
  TypeKey(main.window, 'R');
  const MessageBoxView box = program.WaitBox("Remove Item");
  EXPECT_EQ(box.text, "Remove " + Paper(1) + kQuestion);
  box.Answer("No");

  // Below the rows, too.
  POINT below = main.list.RowPoint(1);
  below.y += 100;
  ClickAt(below, true);
  Await("the popup menu", [&] { return static_cast<bool>(FindMenu(program)); });
  TypeKey(main.window, VK_ESCAPE);
  Await("the end of the menu", [&] { return !FindMenu(program); });
  EXPECT_EQ(main.list.Rows(), 2);
}

TEST_F(Commands, UnknownOnesDoNothing) {
  const Program program(exe_, MakeFiles(1));
  const MainWindow main(program);
  main.list.WaitRows(1);
  for (const int id : {0, 1, 2, 99, 0x3FFF, 0x4FFF, 0x7FFF}) main.window.Command(id);
  TypeKey(main.window, VK_ESCAPE);
  TypeKey(main.window, VK_RETURN);
  ExpectNothingCame(program, main);
  EXPECT_EQ(main.list.Rows(), 1);
}

}  // namespace
}  // namespace zq::test
