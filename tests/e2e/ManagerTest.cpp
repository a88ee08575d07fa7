// The companion, started as its own process: its window, its one instance, the icon's menu, and the wipe of
// the Recycle Bin, on a bin that is built here byte for byte.
#include <windows.h>
#include <sddl.h>
#include <shellapi.h>

#include "e2e/Zeroquill.h"
#include "support/BinBytes.h"
#include "support/driver/Drop.h"
#include "support/driver/Picture.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

constexpr char kTitle[] = "ZQ Explorer Manager";
constexpr char kWipeBin[] = "Wipe Recycle Bin";
constexpr char kSecret[] = "what nobody must read again";
constexpr char kBins[] = "D:\\$Recycle.Bin";
// What the icon sends to its window, and what its menu sends.
constexpr UINT kFromTheIcon = WM_APP + 0x20;
constexpr int kWipeBinCommand = 102;

Window ManagerWindow() {
  return Window(::FindWindowW(nullptr, L"ZQ Explorer Manager"));
}

Window WaitManager() {
  Await("the companion's window", [] { return static_cast<bool>(ManagerWindow()); });
  return ManagerWindow();
}

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

constexpr char kWipeFiles[] = "Wipe with Zeroquill";
constexpr CLSID kVerbClass = {0x8f0c6b1e, 0x5d3a, 0x4c47, {0x9b, 0x4e, 0x2a, 0x7d, 0x51, 0xe0, 0xc9, 0xf3}};
constexpr wchar_t kClassKey[] = L"Software\\Classes\\CLSID\\{8F0C6B1E-5D3A-4C47-9B4E-2A7D51E0C9F3}";
constexpr wchar_t kVerbKey[] = L"Software\\Classes\\AllFilesystemObjects\\shell\\Zeroquill.Wipe";

// A text of this user's part of the registry; "" where there is none.
std::string RegistryText(const std::wstring& key, const wchar_t* name) {
  wchar_t text[600] = L"";
  DWORD bytes = sizeof text;
  const LSTATUS read =
      ::RegGetValueW(HKEY_CURRENT_USER, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &bytes);
  return read == ERROR_SUCCESS ? ToUtf8(text) : "";
}

void MakeFolder(const std::string& path) {
  if (!::CreateDirectoryA(path.c_str(), nullptr) && ::GetLastError() != ERROR_ALREADY_EXISTS)
    throw DriverError("no folder " + path);
}

// Waits until this companion serves its class: the keys, of which a former one that was killed has left its
// own, are written behind that.
void WaitVerb(const std::string& manager) {
  Await("the verb", [&] {
    return RegistryText(std::wstring(kClassKey) + L"\\LocalServer32", nullptr) == "\"" + manager + "\"" &&
           !RegistryText(std::wstring(kVerbKey) + L"\\DropTarget", L"CLSID").empty();
  });
}

class Manager : public ZeroquillTest {
 protected:
  const std::string manager_ = folder_ + "\\ZQExMan.exe";
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
  const Program program(manager_);
  const Window window = WaitManager();
  EXPECT_EQ(window.ProcessId(), program.Id());
  EXPECT_EQ(window.Text(), kTitle);
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
  const Program program(manager_);
  const Window window = WaitManager();
  window.Post(kFromTheIcon, MAKEWPARAM(300, 300), MAKELPARAM(WM_CONTEXTMENU, 1));
  Await("the menu", [&] { return static_cast<bool>(FindMenu(program)); });
  TakePicture(FindMenu(program), "manager-menu");
  window.PostText("x");
  EXPECT_EQ(program.WaitExit(), 0u);
}

TEST_F(Manager, MenuOfItsIconOpensTheProgram) {
  Prepare();
  const Program program(manager_);
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
  const Program program(manager_);
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
  const Program program(manager_);
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
  const Program program(manager_);
  WaitManager().Command(kWipeBinCommand);
  program.WaitBox(kWipeBin);
  WaitManager().Close();
  EXPECT_EQ(program.WaitExit(), 0u);
  EXPECT_EQ(ReadFileBytes(own_ + "\\$ROLD001.txt"), kSecret);
  EXPECT_EQ(ReadFileBytes(own_ + "\\$RFOLDER\\inner.txt"), kSecret);
}

TEST_F(Manager, HasItsVerbInTheRegistryWhileItRuns) {
  {
    const Program program(manager_);
    WaitVerb(manager_);
    EXPECT_EQ(RegistryText(std::wstring(kVerbKey) + L"\\DropTarget", L"CLSID"),
              "{8F0C6B1E-5D3A-4C47-9B4E-2A7D51E0C9F3}");
    EXPECT_EQ(RegistryText(kVerbKey, nullptr), kWipeFiles);
    EXPECT_EQ(RegistryText(kVerbKey, L"MultiSelectModel"), "Player");
    EXPECT_EQ(RegistryText(std::wstring(kClassKey) + L"\\LocalServer32", nullptr), "\"" + manager_ + "\"");
    // It ends without a word, as by a crash: the next one clears up behind it, too.
  }
  EXPECT_NE(RegistryText(kVerbKey, nullptr), "");
  const Program program(manager_);
  WaitManager().Close();
  EXPECT_EQ(program.WaitExit(), 0u);
  EXPECT_EQ(RegistryText(kVerbKey, nullptr), "");
  EXPECT_EQ(RegistryText(kClassKey, nullptr), "");
}

TEST_F(Manager, WipesAMixedSelectionAfterItsQuestion) {
  Prepare();
  const std::string file = scratch_.Make("given\\caf\u00e9.txt", kSecret);
  const std::string inner = scratch_.Make("given\\folder\\inner.txt", kSecret);
  const std::string other = scratch_.Make("given\\other.txt", "stays");
  const Program program(manager_);
  WaitVerb(manager_);
  EXPECT_EQ(DropFilesOnClass(kVerbClass, {file, scratch_ / "given\\folder"}), DWORD{DROPEFFECT_COPY});
  const MessageBoxView question = program.WaitBox(kWipeFiles);
  TakePicture(question.window, "manager-question");
  ExpectBox(question, kWipeFiles,
            "This operation will securely wipe the 2 selected items.\r\n\r\n"
            "Contents: 2 files, 1 folder\r\nSize: 54 Bytes\r\n"
            "Security level: 3 (equal to 9 data writes per byte)\r\n\r\n"
            "Once the wipe operation is complete, they will not be recoverable.\r\n\r\n"
            "Are you sure you wish to continue?",
            BoxIcon::Question, {"OK", "Cancel"}, "OK");
  EXPECT_TRUE(PathExists(file)) << "not before the answer";
  question.Answer("OK");
  const MessageBoxView summary = program.WaitBox(kWipeFiles);
  TakePicture(summary.window, "manager-summary");
  ExpectBox(summary, kWipeFiles, "The wipe operation is now complete.", BoxIcon::Information, {"OK"}, "OK");
  EXPECT_FALSE(FolderHolds(scratch_ / "given", kSecret));
  EXPECT_FALSE(PathExists(file));
  EXPECT_FALSE(PathExists(scratch_ / "given\\folder"));
  EXPECT_EQ(ReadFileBytes(other), "stays");
  summary.Answer("OK");
}

TEST_F(Manager, TakesTwoThousandFilesInOneDropAndTheNextBehindThem) {
  Prepare();
  std::vector<std::string> paths;
  for (int i = 0; i < 2000; ++i)
    paths.push_back(
        scratch_.Make("given\\" + std::to_string(i / 50) + "\\" + std::to_string(i) + ".txt", "x"));
  const Program program(manager_);
  WaitVerb(manager_);
  DropFilesOnClass(kVerbClass, paths);
  // The question is open, and the shell isn't kept waiting.
  const MessageBoxView question = program.WaitBox(kWipeFiles);
  EXPECT_EQ(DropFilesOnClass(kVerbClass, {"C:\\windows\\win.ini"}), DWORD{DROPEFFECT_COPY});
  EXPECT_TRUE(
      question.text.starts_with("This operation will securely wipe the 2,000 selected items.\r\n\r\n"
                                "Contents: 2,000 files, no folders\r\nSize: 1.95 KB\r\n"))
      << question.text;
  question.Answer("Cancel");
  const MessageBoxView refusal = program.WaitBox(kWipeFiles);
  TakePicture(refusal.window, "manager-refusal");
  ExpectBox(refusal, kWipeFiles,
            "Nothing of the selection was wiped, because of:\r\n\r\n"
            "C:\\windows\\win.ini - It belongs to Windows.",
            BoxIcon::Warning, {"OK"}, "OK");
  refusal.Answer("OK");
  for (const std::string& path : paths) ASSERT_TRUE(PathExists(path));
}

}  // namespace
}  // namespace zq::test
