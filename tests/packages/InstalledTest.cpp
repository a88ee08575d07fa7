// The installer as a user runs it, and silently: what it puts where, how a saved job opens, and what is left
// after it.
#include <shlobj.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "e2e/Zeroquill.h"
#include "support/driver/Text.h"

namespace zq::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kUninstallKey[] = R"(Software\Microsoft\Windows\CurrentVersion\Uninstall\Zeroquill)";
constexpr char kClassesKey[] = R"(Software\Classes\)";
constexpr char kJobClassKey[] = R"(Software\Classes\Zeroquill.Job)";
constexpr char kExtensionKey[] = R"(Software\Classes\.zqj)";
constexpr int kNextButton = 1;    // Next, Install, Close, Finish
constexpr int kPageTitle = 1037;  // in the head of a page
constexpr int kOldWindows = 5;
constexpr int kInUse = 3;  // the installer's exit code
// Packing and unpacking are all that takes time.
constexpr Limit kInstalling{120000};

std::string KnownFolder(REFKNOWNFOLDERID id) {
  PWSTR path = nullptr;
  const HRESULT result = ::SHGetKnownFolderPath(id, 0, nullptr, &path);
  std::string text = SUCCEEDED(result) ? ToUtf8(path) : "";
  ::CoTaskMemFree(path);
  if (text.empty()) throw DriverError("no known folder");
  return text;
}

bool HasKey(const std::string& key) {
  HKEY opened = nullptr;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, ToWide(key).c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS)
    return false;
  ::RegCloseKey(opened);
  return true;
}

std::string ValueOf(const std::string& key, const std::string& name) {
  std::wstring text(1024, L'\0');
  auto bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
  if (::RegGetValueW(HKEY_CURRENT_USER, ToWide(key).c_str(), ToWide(name).c_str(), RRF_RT_REG_SZ, nullptr,
                     text.data(), &bytes) != ERROR_SUCCESS)
    return {};
  return ToUtf8(text.c_str());
}

// The names in a folder, sorted; none where there is no such folder.
std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(ToWide(folder), error))
    names.push_back(ToUtf8(entry.path().filename().wstring()));
  std::sort(names.begin(), names.end());
  return names;
}

// All that is below the users' folders, but for what lies in folders for passing things.
std::set<std::wstring> UsersFiles() {
  std::set<std::wstring> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(L"C:\\users")) {
    const std::wstring path = entry.path().wstring();
    if (path.find(L"\\Temp") == std::wstring::npos && path.find(L"\\temp") == std::wstring::npos)
      files.insert(path);
  }
  return files;
}

// What the shell runs for the file: the program, and its arguments with the file's path in them. By the
// user's own classes, which Windows puts before the machine's; Wine asks the machine's alone.
std::pair<std::string, std::string> OpensWith(const std::string& path) {
  const std::string kind = ValueOf(std::string(kClassesKey) + path.substr(path.rfind('.')), "");
  const std::string command = ValueOf(kClassesKey + kind + "\\shell\\open\\command", "");
  const std::size_t end = command.find("\" ");
  const std::size_t place = command.find("%1");
  if (!command.starts_with('"') || end == std::string::npos || place == std::string::npos)
    throw DriverError("the command for " + kind + " is " + command);
  std::string arguments = command.substr(end + 2);
  arguments.replace(place - end - 2, 2, path);
  return {command.substr(1, end - 1), arguments};
}

class Installed : public ::testing::Test {
 protected:
  Installed() {
    RequireCage();
    SetWindows("win10");
    Clear();
    // Windows has it for every user.
    ::CreateDirectoryW(ToWide(KnownFolder(FOLDERID_LocalAppData) + "\\Programs").c_str(), nullptr);
  }
  ~Installed() override { Clear(); }

  // Of what a test that failed half-way has left.
  void Clear() const {
    std::error_code ignored;
    std::filesystem::remove_all(ToWide(folder_), ignored);
    ::DeleteFileW(ToWide(shortcut_).c_str());
    for (const char* key : {kUninstallKey, kJobClassKey, kExtensionKey})
      ::RegDeleteTreeW(HKEY_CURRENT_USER, ToWide(key).c_str());
  }

  // Which Windows the installer finds: Wine's is an older one by itself.
  static void SetWindows(const std::string& version) {
    const std::wstring text = ToWide(version);
    if (::RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\Zeroquill-setup.exe", L"Version",
                          REG_SZ, text.c_str(),
                          static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) != ERROR_SUCCESS)
      throw DriverError("Wine's version of Windows can't be set");
  }

  static unsigned Run(const std::string& path, const std::string& arguments) {
    const Program program(path, arguments);
    return program.WaitExit(kInstalling);
  }
  // The uninstaller works on a copy of itself, unless it is told its folder; then its own file stays.
  std::string InPlace(const std::string& arguments) const { return arguments + " _?=" + folder_; }

  // As Windows' settings start it, which is through when `done`, its last step. It works on a copy of itself,
  // which this would end before it had.
  void Uninstall(const std::string& arguments, const std::function<bool()>& done) const {
    const Program program(uninstaller_, arguments);
    Await("the end of the uninstaller", done, kInstalling);
  }

  std::string MakeJob(const std::string& name) const {
    ::CreateDirectoryW(ToWide(folder_ + "\\Jobs").c_str(), nullptr);
    const std::string path = folder_ + "\\Jobs\\" + name + ".zqj";
    WriteFileBytes(path, "\"N/A\"\r\n\"[FOLDERS]\"\r\n\"[FILES]\"\r\n\"C:\\none.txt\"\r\n");
    return path;
  }

  const std::string setup_ = ProgramFolder() + "\\Zeroquill-setup.exe";
  const std::string folder_ = KnownFolder(FOLDERID_LocalAppData) + "\\Programs\\Zeroquill";
  const std::string exe_ = folder_ + "\\Zeroquill.exe";
  const std::string uninstaller_ = folder_ + "\\Uninstall.exe";
  const std::string shortcut_ = KnownFolder(FOLDERID_Programs) + "\\Zeroquill.lnk";
};

TEST_F(Installed, SilentlyItOpensItsJobsAndLeavesThemAlone) {
  const std::set<std::wstring> before = UsersFiles();
  ASSERT_EQ(Run(setup_, "/S"), 0u);
  EXPECT_THAT(NamesIn(folder_), ElementsAre("CLI11-LICENSE.txt", "LICENSE", "Uninstall.exe", "ZQExMan.exe",
                                            "Zeroquill.chm", "Zeroquill.exe", "zqwipe.exe"));
  EXPECT_TRUE(PathExists(shortcut_));
  EXPECT_EQ(ValueOf(kUninstallKey, "DisplayName"), "Zeroquill");
  EXPECT_EQ(ValueOf(kUninstallKey, "InstallLocation"), folder_);
  EXPECT_EQ(ValueOf(kUninstallKey, "QuietUninstallString"), "\"" + uninstaller_ + "\" /S");
  EXPECT_EQ(ValueOf(std::string(kJobClassKey) + "\\DefaultIcon", ""), exe_ + ",-1");

  const std::string job = MakeJob("Old papers & more");
  WriteFileBytes(folder_ + "\\sfrun.dat", "");
  const auto [opener, arguments] = OpensWith(job);
  EXPECT_EQ(opener, exe_);
  EXPECT_EQ(arguments, "\"" + job + "\"");
  {
    const Program program(opener, arguments);
    const MainWindow main(program);
    main.list.WaitRows(1);
    EXPECT_EQ(main.list.Text(0), "C:\\none.txt");
    EXPECT_EQ(StatusPanels(main.statusBar).at(1), "Job: Old papers & more");
    // Who runs it is not to lose what it does.
    EXPECT_EQ(Run(setup_, "/S"), static_cast<unsigned>(kInUse));
    EXPECT_EQ(Run(uninstaller_, InPlace("/S")), static_cast<unsigned>(kInUse));
    EXPECT_TRUE(PathExists(exe_));
    main.window.Close();
    EXPECT_EQ(program.WaitExit(), 0u);
  }
  WriteFileBytes(folder_ + "\\Report\\Report.dat", "a report");

  const std::vector<std::string> kept = {"Jobs", "Report"};
  Uninstall("/S", [&] { return NamesIn(folder_) == kept; });
  EXPECT_THAT(NamesIn(folder_ + "\\Jobs"), ElementsAre("Old papers & more.zqj"));
  EXPECT_THAT(NamesIn(folder_ + "\\Report"), ElementsAre("Report.dat"));
  EXPECT_FALSE(HasKey(kUninstallKey));
  EXPECT_FALSE(HasKey(kJobClassKey));
  EXPECT_FALSE(HasKey(kExtensionKey));
  EXPECT_FALSE(PathExists(shortcut_));

  // Over what is left, and away with it all.
  ASSERT_EQ(Run(setup_, "/S"), 0u);
  EXPECT_TRUE(PathExists(job));
  Uninstall("/S /JOBS", [&] { return !PathExists(folder_); });
  EXPECT_EQ(UsersFiles(), before);
}

TEST_F(Installed, NotOnAnOldWindows) {
  SetWindows("win81");
  EXPECT_EQ(Run(setup_, "/S"), static_cast<unsigned>(kOldWindows));
  EXPECT_FALSE(PathExists(folder_));
}

// By its pages, each of which leaves a picture.
class Pages : public Installed {
 protected:
  // The page of that title, waited for, with its button to go on enabled.
  static void WaitPage(Window window, const std::string& title) {
    window.WaitChild(kPageTitle).WaitText(title);
    window.Child(kNextButton).WaitEnabled();
  }
  static void Next(Window window) { window.Child(kNextButton).Press(); }
};

TEST_F(Pages, InstallAndUninstall) {
  {
    const Program program(setup_);
    const Window window = program.WaitWindow("Zeroquill Setup ");
    WaitPage(window, "License Agreement");
    TakePicture(window, "setup-1-licence");
    Next(window);
    WaitPage(window, "Choose Components");
    TakePicture(window, "setup-2-components");
    Next(window);
    WaitPage(window, "Choose Install Location");
    TakePicture(window, "setup-3-folder");
    Next(window);
    // The last page has no head; what it shows stands in a dialog of its own.
    window.Child(kNextButton).WaitText("&Finish", kInstalling);
    const Window start = window.Child("Start Zeroquill");
    start.WaitVisible();
    EXPECT_TRUE(start.IsChecked());
    TakePicture(window, "setup-4-finish");
    start.Press();
    Await("the box unchecked", [&] { return !start.IsChecked(); });
    Next(window);
    EXPECT_EQ(program.WaitExit(), 0u);
  }
  EXPECT_TRUE(PathExists(exe_));
  const std::string job = MakeJob("Kept");
  {
    const Program program(uninstaller_, InPlace(""));
    const Window window = program.WaitWindow("Zeroquill Uninstall ");
    WaitPage(window, "Uninstall Zeroquill");
    TakePicture(window, "uninstall-1-confirm");
    Next(window);
    WaitPage(window, "Choose Components");
    TakePicture(window, "uninstall-2-components");
    Next(window);
    WaitPage(window, "Uninstallation Complete");
    TakePicture(window, "uninstall-3-done");
    Next(window);
    EXPECT_EQ(program.WaitExit(), 0u);
  }
  EXPECT_FALSE(PathExists(exe_));
  EXPECT_TRUE(PathExists(job));
}

}  // namespace
}  // namespace zq::test
