// The companion, started as its own process: its window, its one instance, the icon's menu, and the wipe of
// the Recycle Bin, on a bin that is built here byte for byte.
#include <windows.h>
#include <sddl.h>
#include <shellapi.h>

#include "e2e/ManagerStage.h"
#include "support/BinBytes.h"
#include "support/driver/Picture.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

constexpr char kWipeBin[] = "Wipe Recycle Bin";
constexpr char kSecret[] = "what nobody must read again";
constexpr char kBins[] = "D:\\$Recycle.Bin";
// What the icon sends to its window, and what its menu sends.
constexpr UINT kFromTheIcon = WM_APP + 0x20;
constexpr int kWipeBinCommand = 102;

std::string OwnId() {
  HANDLE token = nullptr;
  if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token)) throw DriverError("no token");
  alignas(TOKEN_USER) char buffer[256];
  DWORD size = 0;
  const BOOL read = ::GetTokenInformation(token, TokenUser, buffer, sizeof buffer, &size);
  ::CloseHandle(token);
  wchar_t* text = nullptr;
  if (!read || !::ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(buffer)->User.Sid, &text))
    throw DriverError("no user");
  const std::string id = ToUtf8(text);
  ::LocalFree(text);
  return id;
}

void MakeFolder(const std::string& path) {
  if (!::CreateDirectoryA(path.c_str(), nullptr) && ::GetLastError() != ERROR_ALREADY_EXISTS)
    throw DriverError("no folder " + path);
}

class Manager : public ManagerTest {
 protected:
  const std::string own_ = std::string(kBins) + "\\" + OwnId();
  const std::string another_ = std::string(kBins) + "\\S-1-5-21-1-2-3-1002";

  void SetUp() override {
    // The drive is ours alone, and is empty.
    if (::GetDriveTypeW(L"D:\\") == DRIVE_NO_ROOT_DIR) GTEST_SKIP() << "no small drive D: here";
    for (const std::string& folder : {std::string(kBins), own_, another_, own_ + "\\$RFOLDER"})
      MakeFolder(folder);
    WriteFileBytes(own_ + "\\desktop.ini", "[.ShellClassInfo]");
    WriteFileBytes(another_ + "\\$R000001.txt", "theirs");
    WriteFileBytes(own_ + "\\$ROLD001.txt", kSecret);
    WriteFileBytes(own_ + "\\$IOLD001.txt", FirstVersionRecord(u"C:\\Papers\\old.txt", sizeof kSecret - 1));
    WriteFileBytes(own_ + "\\$RNEW001.txt", kSecret);
    WriteFileBytes(own_ + "\\$INEW001.txt", SecondVersionRecord(u"C:\\Papers\\new.txt", sizeof kSecret - 1));
    WriteFileBytes(own_ + "\\$RFOLDER\\inner.txt", kSecret);
    WriteFileBytes(own_ + "\\$IFOLDER", SecondVersionRecord(u"C:\\Papers\\folder", sizeof kSecret - 1));
    WriteFileBytes(own_ + "\\$RORPHAN.txt", kSecret);
    WriteFileBytes(own_ + "\\$IORPHA2.txt", SecondVersionRecord(u"C:\\Papers\\orphan.txt", 1));
    WriteFileBytes(own_ + "\\$IOLD002.txt", "a damaged record");
    WriteFileBytes(own_ + "\\$ROLD002.txt", kSecret);
  }
  void TearDown() override {
    for (const std::string& folder : {own_, another_})
      for (const char* name : {"desktop.ini", "$ROLD001.txt", "$IOLD001.txt", "$RNEW001.txt", "$INEW001.txt",
                               "$RFOLDER\\inner.txt", "$IFOLDER", "$RORPHAN.txt", "$IORPHA2.txt",
                               "$IOLD002.txt", "$ROLD002.txt", "$R000001.txt"})
        ::DeleteFileA((folder + "\\" + name).c_str());
    for (const std::string& folder : {own_ + "\\$RFOLDER", own_, another_, std::string(kBins)})
      ::RemoveDirectoryA(folder.c_str());
  }
};

TEST_F(Manager, RunsOnceBehindItsHiddenWindowUntilThatIsClosed) {
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  const Window window = WaitManager();
  EXPECT_EQ(window.ProcessId(), program.Id());
  EXPECT_EQ(window.Text(), kManagerTitle);
  EXPECT_FALSE(window.IsVisible());
  EXPECT_EQ(::GetParent(window.Handle()), nullptr);
  EXPECT_EQ(Program(manager_).WaitExit(), 0u) << "the second one";
  EXPECT_TRUE(window);
  window.Post(WM_CLOSE, 0, 12345);
  EXPECT_EQ(program.WaitExit(), 0u);
  EXPECT_FALSE(ManagerWindow());
  // It stands in nobody's way: the next one starts.
  const Program again(manager_);
  WaitManager().Close();
  EXPECT_EQ(again.WaitExit(), 0u);
}

TEST_F(Manager, MenuOfItsIconEndsIt) {
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  const Window window = WaitManager();
  window.Post(kFromTheIcon, MAKEWPARAM(300, 300), MAKELPARAM(WM_CONTEXTMENU, 1));
  Await("the menu", [&] { return static_cast<bool>(FindMenu(program)); });
  TakePicture(FindMenu(program), "manager-menu");
  window.PostText("x");
  EXPECT_EQ(program.WaitExit(), 0u);
}

TEST_F(Manager, MenuOfItsIconOpensTheProgram) {
  Prepare();
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  const Window window = WaitManager();
  window.Post(kFromTheIcon, MAKEWPARAM(300, 300), MAKELPARAM(WM_CONTEXTMENU, 1));
  Await("the menu", [&] { return static_cast<bool>(FindMenu(program)); });
  window.PostText("o");
  const auto isMain = [](Window any) {
    return any.IsVisible() && any.HasText("Zeroquill") &&
           ::FindWindowExW(any.Handle(), nullptr, L"SysListView32", nullptr) != nullptr;
  };
  Await("the main window", [&] { return !TopLevelWindows(isMain).empty(); });
  TopLevelWindows(isMain).front().Close();
  Await("its end", [&] { return TopLevelWindows(isMain).empty(); });
}

TEST_F(Manager, WipesTheBinAfterItsQuestionAndNothingElse) {
  SettingsFile settings;
  settings.passes = 5;
  Prepare(settings);
  const std::string before = ReadFileBytes(settingsPath_);
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  WaitManager().Command(kWipeBinCommand);
  const MessageBoxView question = program.WaitBox(kWipeBin);
  TakePicture(question.window, "manager-bin-question");
  ExpectBox(question, kWipeBin,
            "This operation will securely wipe the 6 items in your Recycle Bin.\r\n\r\n"
            "Contents: 6 files, 1 folder\r\nSize: " +
                std::to_string(5 * (sizeof kSecret - 1) +
                               SecondVersionRecord(u"C:\\Papers\\orphan.txt", 1).size()) +
                " Bytes\r\nSecurity level: 5 (equal to 15 data writes per byte)\r\n\r\n"
                "Once the wipe operation is complete, they will not be recoverable.\r\n\r\n"
                "Are you sure you wish to continue?",
            BoxIcon::Question, {"OK", "Cancel"}, "OK");
  EXPECT_TRUE(PathExists(own_ + "\\$ROLD001.txt")) << "not before the answer";
  question.Answer("OK");
  const MessageBoxView summary = program.WaitBox(kWipeBin);
  TakePicture(summary.window, "manager-bin-summary");
  ExpectBox(summary, kWipeBin, "The wipe operation is now complete.", BoxIcon::Information, {"OK"}, "OK");
  EXPECT_FALSE(FolderHolds(kBins, kSecret));
  EXPECT_FALSE(FolderHolds(kBins, Utf16Bytes(u"Papers")));
  EXPECT_FALSE(FolderHolds(own_, "$R"));
  EXPECT_FALSE(FolderHolds(own_, "$I"));
  EXPECT_EQ(ReadFileBytes(own_ + "\\desktop.ini"), "[.ShellClassInfo]");
  EXPECT_EQ(ReadFileBytes(another_ + "\\$R000001.txt"), "theirs");
  EXPECT_EQ(ReadFileBytes(settingsPath_), before);
  summary.Answer("OK");
  WaitManager().Command(kWipeBinCommand);
  const MessageBoxView empty = program.WaitBox(kWipeBin);
  ExpectBox(empty, kWipeBin, "Your Recycle Bin is empty.", BoxIcon::Information, {"OK"}, "OK");
  empty.Answer("OK");
  WaitManager().Close();
  EXPECT_EQ(program.WaitExit(), 0u);
}

TEST_F(Manager, TellsWhatCouldNotBeWipedAndKeepsItsRecord) {
  Prepare();
  const HeldFile held(own_ + "\\$RNEW001.txt");
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  WaitManager().Command(kWipeBinCommand);
  program.WaitBox(kWipeBin).Answer("OK");
  const MessageBoxView summary = program.WaitBox(kWipeBin);
  ExpectBox(summary, kWipeBin,
            "The wipe operation has ended.\r\n\r\n"
            "Some items could not be wiped.  The list that follows tells which, and why.",
            BoxIcon::Warning, {"OK"}, "OK");
  summary.Answer("OK");
  const Window list = program.WaitWindow(kWipeBin);
  TakePicture(list, "manager-bin-failures");
  EXPECT_EQ(list.ChildOfClass("ListBox").Send(LB_GETCOUNT), 1);
  EXPECT_TRUE(PathExists(own_ + "\\$INEW001.txt")) << "with it the shell can still bring it back";
  EXPECT_FALSE(PathExists(own_ + "\\$ROLD001.txt"));
  list.Child("OK").Press();
  list.WaitGone();
  WaitManager().Close();
  EXPECT_EQ(program.WaitExit(), 0u);
}

TEST_F(Manager, IsClosedOverItsQuestionWithoutAWipe) {
  Prepare();
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  WaitManager().Command(kWipeBinCommand);
  program.WaitBox(kWipeBin);
  WaitManager().Close();
  EXPECT_EQ(program.WaitExit(), 0u);
  EXPECT_EQ(ReadFileBytes(own_ + "\\$ROLD001.txt"), kSecret);
  EXPECT_EQ(ReadFileBytes(own_ + "\\$RFOLDER\\inner.txt"), kSecret);
}

}  // namespace
}  // namespace zq::test
