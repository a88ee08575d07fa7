// "Wipe with Zeroquill" of the companion, as the shell comes by it: the user's registry and "Send to" folder,
// and drops on its class through COM.
#include <windows.h>
#include <ole2.h>
#include <shlobj.h>

#include <cstdlib>
#include <fstream>

#include "e2e/ManagerStage.h"
#include "e2e/Wiping.h"
#include "support/driver/Drop.h"
#include "support/driver/Picture.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

constexpr char kWipeFiles[] = "Wipe with Zeroquill";
// For what hangs: a disk that others use makes each pass over a file slow.
constexpr Limit kLongestWipe{600000};
constexpr CLSID kVerbClass = {0x8f0c6b1e, 0x5d3a, 0x4c47, {0x9b, 0x4e, 0x2a, 0x7d, 0x51, 0xe0, 0xc9, 0xf3}};
constexpr wchar_t kClassId[] = L"{8F0C6B1E-5D3A-4C47-9B4E-2A7D51E0C9F3}";
const std::wstring kClassKey = std::wstring(L"Software\\Classes\\CLSID\\") + kClassId;
const std::wstring kVerbKey = L"Software\\Classes\\AllFilesystemObjects\\shell\\Zeroquill.Wipe";
const std::wstring kProgramKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ZQExMan.exe";

// A text of the registry; "none" where there is none.
std::string RegistryText(HKEY root, const std::wstring& key, const wchar_t* name = nullptr) {
  wchar_t text[600] = L"";
  DWORD bytes = sizeof text;
  const LSTATUS read = ::RegGetValueW(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &bytes);
  return read == ERROR_SUCCESS ? ToUtf8(text) : "none";
}

void SetRegistryText(HKEY root, const std::wstring& key, const wchar_t* name, const std::string& text) {
  const std::wstring wide = ToWide(text);
  if (::RegSetKeyValueW(root, key.c_str(), name, REG_SZ, wide.c_str(),
                        static_cast<DWORD>((wide.size() + 1) * sizeof(wchar_t))) != ERROR_SUCCESS)
    throw DriverError("the registry takes no text");
}

// The rights of a user who is no administrator, or of one whom Windows hasn't asked yet.
HANDLE OrdinaryRights() {
  HANDLE own = nullptr;
  if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &own)) throw DriverError("no token");
  TOKEN_ELEVATION elevation{};
  TOKEN_LINKED_TOKEN linked{};
  DWORD size = 0;
  const bool isElevated = ::GetTokenInformation(own, TokenElevation, &elevation, sizeof elevation, &size) &&
                          elevation.TokenIsElevated;
  const bool found =
      !isElevated || ::GetTokenInformation(own, TokenLinkedToken, &linked, sizeof linked, &size);
  ::CloseHandle(own);
  if (!found) throw DriverError("no token without an administrator's rights");
  if (!isElevated) return nullptr;
  HANDLE primary = nullptr;
  const BOOL made = ::DuplicateTokenEx(linked.LinkedToken, TOKEN_ALL_ACCESS, nullptr, SecurityImpersonation,
                                       TokenPrimary, &primary);
  ::CloseHandle(linked.LinkedToken);
  if (!made) throw DriverError("no token for a process");
  return primary;
}

std::string SendToEntry() {
  wchar_t* folder = nullptr;
  if (FAILED(::SHGetKnownFolderPath(FOLDERID_SendTo, KF_FLAG_CREATE, nullptr, &folder)))
    throw DriverError("no folder for Send to");
  const std::string path = ToUtf8(folder) + "\\" + kWipeFiles + ".lnk";
  ::CoTaskMemFree(folder);
  return path;
}

// The program that a shortcut leads to.
std::string ShortcutProgram(const std::string& path) {
  if (FAILED(::OleInitialize(nullptr))) throw DriverError("no OLE");
  void* object = nullptr;
  wchar_t program[MAX_PATH] = L"";
  if (SUCCEEDED(
          ::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &object))) {
    auto* const link = static_cast<IShellLinkW*>(object);
    if (SUCCEEDED(link->QueryInterface(IID_IPersistFile, &object))) {
      auto* const file = static_cast<IPersistFile*>(object);
      if (SUCCEEDED(file->Load(ToWide(path).c_str(), STGM_READ)))
        link->GetPath(program, MAX_PATH, nullptr, SLGP_RAWPATH);
      file->Release();
    }
    link->Release();
  }
  ::OleUninitialize();
  return ToUtf8(program);
}

// Piece by piece, which takes less time than one text of that size.
void FillLarge(const std::string& path) {
  const std::string piece = Marked(kMark, 1u << 20);
  std::ofstream file(path, std::ios::binary);
  for (std::size_t done = 0; done < kLargeBytes; done += piece.size()) file << piece;
  if (!file.flush()) throw DriverError("no large file");
}

class ManagerVerb : public ManagerTest {
 protected:
  void SetUp() override { Prepare(); }

  const std::string sendTo_ = SendToEntry();

  void ExpectNoEntries() const {
    for (const std::wstring& key : {kClassKey, kVerbKey, kProgramKey}) {
      EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, key), "none") << ToUtf8(key);
      EXPECT_EQ(RegistryText(HKEY_LOCAL_MACHINE, key), "none") << ToUtf8(key);
    }
    EXPECT_FALSE(PathExists(sendTo_));
  }
};

TEST_F(ManagerVerb, IsThereForItsUserWhileTheCompanionRuns) {
  ExpectNoEntries();
  {
    const HANDLE ordinary = OrdinaryRights();
    const RunningManager manager(manager_, ordinary);
    if (ordinary) ::CloseHandle(ordinary);
    WaitManager();
    const std::string id = ToUtf8(kClassId);
    EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, kClassKey + L"\\LocalServer32"), "\"" + manager_ + "\"");
    EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, kVerbKey), kWipeFiles);
    EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, kVerbKey, L"MultiSelectModel"), "Player");
    EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, kVerbKey, L"NeverDefault"), "");
    EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, kVerbKey + L"\\DropTarget", L"CLSID"), id);
    EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, kProgramKey), manager_);
    EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, kProgramKey, L"DropTarget"), id);
    EXPECT_EQ(ShortcutProgram(sendTo_), manager_);
    for (const std::wstring& key : {kClassKey, kVerbKey, kProgramKey})
      EXPECT_EQ(RegistryText(HKEY_LOCAL_MACHINE, key), "none") << ToUtf8(key);
  }
  ExpectNoEntries();
}

TEST_F(ManagerVerb, OfACompanionThatCrashedGoesAtTheNextStartAndWithMoreRightsNoneComes) {
  std::string shortcut;
  {
    const HANDLE ordinary = OrdinaryRights();
    ASSERT_NE(ordinary, nullptr) << "nobody here has more rights than the shell";
    const RunningManager manager(manager_, ordinary);
    ::CloseHandle(ordinary);
    WaitManager();
    shortcut = ReadFileBytes(sendTo_);
  }
  WriteFileBytes(sendTo_, shortcut);
  SetRegistryText(HKEY_CURRENT_USER, kVerbKey, nullptr, kWipeFiles);
  SetRegistryText(HKEY_CURRENT_USER, kVerbKey + L"\\DropTarget", L"CLSID", ToUtf8(kClassId));
  SetRegistryText(HKEY_CURRENT_USER, kClassKey + L"\\LocalServer32", nullptr, "\"C:\\gone\\ZQExMan.exe\"");
  SetRegistryText(HKEY_CURRENT_USER, kProgramKey, nullptr, "C:\\gone\\ZQExMan.exe");
  const RunningManager manager(manager_);
  WaitManager();
  ExpectNoEntries();
}

TEST_F(ManagerVerb, WipesAMixedSelectionAfterItsQuestion) {
  const std::string file = scratch_.Make("given\\caf\u00e9.txt", kMark);
  scratch_.Make("given\\folder\\inner.txt", kMark);
  const std::string other = scratch_.Make("given\\other.txt", "stays");
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  WaitManager();
  EXPECT_EQ(DropFilesOnClass(kVerbClass, {file, scratch_ / "given\\folder"}), DWORD{DROPEFFECT_COPY});
  const MessageBoxView question = program.WaitBox(kWipeFiles);
  TakePicture(question.window, "manager-question");
  ExpectBox(question, kWipeFiles,
            "This operation will securely wipe the 2 selected items.\r\n\r\n"
            "Contents: 2 files, 1 folder\r\nSize: " +
                std::to_string(2 * (sizeof kMark - 1)) +
                " Bytes\r\nSecurity level: 3 (equal to 9 data writes per byte)\r\n\r\n"
                "Once the wipe operation is complete, they will not be recoverable.\r\n\r\n"
                "Are you sure you wish to continue?",
            BoxIcon::Question, {"OK", "Cancel"}, "OK");
  EXPECT_TRUE(PathExists(file)) << "not before the answer";
  question.Answer("OK");
  const MessageBoxView summary = program.WaitBox(kWipeFiles, kLongestWipe);
  TakePicture(summary.window, "manager-summary");
  ExpectBox(summary, kWipeFiles, "The wipe operation is now complete.", BoxIcon::Information, {"OK"}, "OK");
  EXPECT_FALSE(FolderHolds(scratch_ / "given", kMark));
  EXPECT_FALSE(PathExists(file));
  EXPECT_FALSE(PathExists(scratch_ / "given\\folder"));
  EXPECT_EQ(ReadFileBytes(other), "stays");
  summary.Answer("OK");
}

// On the drive in memory: none of a disk's time for the passes over each.
class ManyFiles {
 public:
  explicit ManyFiles(int count) {
    Make(kFolder);
    for (int i = 0; i < count; ++i) {
      if (i % 50 == 0) Make(folders_.emplace_back(std::string(kFolder) + "\\" + std::to_string(i / 50)));
      paths.push_back(folders_.back() + "\\" + std::to_string(i) + ".txt");
      WriteFileBytes(paths.back(), kMark);
    }
  }
  ~ManyFiles() {
    for (const std::string& path : paths) ::DeleteFileA(path.c_str());
    for (const std::string& folder : folders_) ::RemoveDirectoryA(folder.c_str());
    ::RemoveDirectoryA(kFolder);
  }
  ManyFiles(const ManyFiles&) = delete;
  ManyFiles& operator=(const ManyFiles&) = delete;

  static constexpr char kFolder[] = "D:\\given";
  std::vector<std::string> paths;

 private:
  static void Make(const std::string& folder) {
    if (!::CreateDirectoryA(folder.c_str(), nullptr)) throw DriverError("no folder " + folder);
  }
  std::vector<std::string> folders_;
};

TEST_F(ManagerVerb, TakesTwoThousandFilesInOneDropAndTheNextBehindThem) {
  const ManyFiles files(2000);
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  WaitManager();
  EXPECT_EQ(DropFilesOnClass(kVerbClass, files.paths), DWORD{DROPEFFECT_COPY});
  // The question is open, and the shell isn't kept waiting.
  const MessageBoxView question = program.WaitBox(kWipeFiles, kLongestWipe);
  EXPECT_EQ(DropFilesOnClass(kVerbClass, {"C:\\windows\\win.ini"}), DWORD{DROPEFFECT_COPY});
  EXPECT_THAT(question.text, StartsWith("This operation will securely wipe the 2,000 selected items.\r\n\r\n"
                                        "Contents: 2,000 files, no folders\r\nSize: "));
  question.Answer("Cancel");
  const MessageBoxView refusal = program.WaitBox(kWipeFiles);
  TakePicture(refusal.window, "manager-refusal");
  ExpectBox(refusal, kWipeFiles,
            "Nothing of the selection was wiped, because of:\r\n\r\n"
            "C:\\windows\\win.ini - It belongs to Windows.",
            BoxIcon::Warning, {"OK"}, "OK");
  refusal.Answer("OK");
  for (const std::string& path : files.paths) ASSERT_TRUE(PathExists(path)) << path;
}

// Some, in a second or so; ZQ_DROPPED_FILES sets another count.
TEST_F(ManagerVerb, WipesEachFileOfALargeDrop) {
  const char* const wanted = std::getenv("ZQ_DROPPED_FILES");
  const ManyFiles files(wanted ? std::atoi(wanted) : 50);
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  WaitManager();
  DropFilesOnClass(kVerbClass, files.paths);
  program.WaitBox(kWipeFiles).Answer("OK");
  const MessageBoxView summary = program.WaitBox(kWipeFiles, kLongestWipe);
  EXPECT_EQ(summary.text, "The wipe operation is now complete.");
  EXPECT_FALSE(FolderHolds(ManyFiles::kFolder, kMark));
  for (const std::string& path : files.paths) ASSERT_FALSE(PathExists(path)) << path;
  summary.Answer("OK");
}

TEST_F(ManagerVerb, RefusesASelectionThatHoldsADriveASystemFolderOrTheProgramsOwn) {
  const std::string file = scratch_.Make("given.txt", kMark);
  const RunningManager manager(manager_);
  WaitManager();
  DropFilesOnClass(kVerbClass, {file, "C:\\", "C:\\windows", "C:\\users", folder_});
  const MessageBoxView refusal = manager.program.WaitBox(kWipeFiles);
  TakePicture(refusal.window, "manager-refusals");
  EXPECT_EQ(refusal.text,
            "Nothing of the selection was wiped, because of:\r\n\r\n"
            "C:\\ - It is a whole drive or share.\r\n\r\n"
            "C:\\windows - It is or holds a folder that Windows needs.\r\n\r\n"
            "C:\\users - It is or holds a folder that Windows needs.\r\n\r\n" +
                folder_ + " - It is or holds the folder that Zeroquill runs from.");
  refusal.Answer("OK");
  EXPECT_EQ(ReadFileBytes(file), kMark);
}

TEST_F(ManagerVerb, ShowsItsProgressAndStopsAtACancel) {
  SettingsFile settings;
  settings.passes = 7;
  Prepare(settings);
  const std::string first = scratch_.Make("given\\first.txt", kMark);
  const std::string large = scratch_.Make("given\\large.dat", "");
  FillLarge(large);
  const std::string last = scratch_.Make("given\\last.txt", kMark);
  const RunningManager manager(manager_);
  const Program& program = manager.program;
  WaitManager();
  DropFilesOnClass(kVerbClass, {first, large, last});
  program.WaitBox(kWipeFiles).Answer("OK");
  const StatusWindow status(program);
  status.WaitWork("large.dat");
  EXPECT_EQ(ReadProgress(status.overall).position, 33);
  status.cancel.Press();
  const MessageBoxView question = program.WaitBox("Cancel");
  // All stands still while the question is open.
  ::SetWindowPos(question.window.Handle(), nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  TakePicture(status.window, "manager-progress");
  EXPECT_THAT(status.window.Text(), EndsWith("% - Wipe Operation"));
  question.Answer("Yes");
  const MessageBoxView summary = program.WaitBox(kWipeFiles, kLongestWipe);
  TakePicture(summary.window, "manager-cancelled");
  EXPECT_THAT(summary.text, StartsWith("The wipe operation was cancelled so all items may not have been "
                                       "completely processed."));
  EXPECT_FALSE(PathExists(first));
  EXPECT_TRUE(PathExists(large));
  EXPECT_EQ(ReadFileBytes(last), kMark);
  summary.Answer("OK");
  const Window list = program.WaitWindow(kWipeFiles);
  TakePicture(list, "manager-failures");
  EXPECT_EQ(list.ChildOfClass("ListBox").Send(LB_GETCOUNT), 1) << "the file that was in work";
  list.Child("OK").Press();
  list.WaitGone();
}

// As COM does it by the keys that a crash has left. Wine looks for the class among the machine's.
TEST_F(ManagerVerb, StartsTheCompanionWhenNoneRuns) {
  const std::wstring server = kClassKey + L"\\LocalServer32";
  SetRegistryText(HKEY_LOCAL_MACHINE, server, nullptr, "\"" + manager_ + "\"");
  const std::string file = scratch_.Make("given.txt", kMark);
  EXPECT_EQ(DropFilesOnClass(kVerbClass, {file}), DWORD{DROPEFFECT_COPY});
  ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kClassKey.c_str());
  const Window window = WaitManager();
  const HANDLE process = ::OpenProcess(SYNCHRONIZE, FALSE, window.ProcessId());
  const auto isQuestion = [&](Window any) {
    return any.IsVisible() && any.ProcessId() == window.ProcessId() && MessageBoxView::IsMessageBox(any);
  };
  Await("the question", [&] { return !TopLevelWindows(isQuestion).empty(); });
  const MessageBoxView question(TopLevelWindows(isQuestion).front());
  EXPECT_THAT(question.text, StartsWith("This operation will securely wipe:\r\n\r\n" + file + "\r\n"));
  question.Answer("Cancel");
  question.window.WaitGone();
  window.Close();
  EXPECT_EQ(::WaitForSingleObject(process, static_cast<DWORD>(kPatience.count())), WAIT_OBJECT_0);
  ::CloseHandle(process);
  EXPECT_EQ(ReadFileBytes(file), kMark);
}

}  // namespace
}  // namespace zq::test
