#include "e2e/FreeSpaceStage.h"

#include <algorithm>

#include "support/driver/Text.h"

namespace zq::test {
namespace {

constexpr wchar_t kSmallDrive[] = L"D:\\";
constexpr ULONGLONG kSmallDriveBytes = 64u << 20;

// What there may be less after a wipe, in bytes.
ULONGLONG KeptByTheFileSystem() {
  wchar_t fileSystem[MAX_PATH + 1] = L"";
  ::GetVolumeInformationW(kSmallDrive, nullptr, 0, nullptr, nullptr, nullptr, fileSystem, MAX_PATH + 1);
  // Its table of records never shrinks, and that it begins to grow is what tells that no free one is left in
  // it.
  constexpr ULONGLONG kStepsOfTheTable = 128 << 10;
  return std::wstring_view(fileSystem) == L"NTFS" ? kStepsOfTheTable : 0;
}

std::string Question(const std::string& drive) {
  return "This operation will securely wipe the free space on drive " + drive +
         ".  The operation can take some time for larger drives.\r\n\r\nAre you sure you wish to continue?";
}

}  // namespace

void RequireDrivesThatMayBeFilled() {
  ULARGE_INTEGER total{};
  if (!::GetDiskFreeSpaceExW(kSmallDrive, nullptr, &total, nullptr) || total.QuadPart > kSmallDriveBytes)
    throw DriverError("drive D: is none of a few megabytes");
  if (::CreateDirectoryW(L"C:\\zq-guard", nullptr)) {
    ::RemoveDirectoryW(L"C:\\zq-guard");
    throw DriverError(
        "the root of drive C: takes new folders, and a wipe of its free space would fill the disk");
  }
}

ULONGLONG FreeBytes() {
  ULARGE_INTEGER free{};
  if (!::GetDiskFreeSpaceExW(kSmallDrive, &free, nullptr, nullptr))
    throw DriverError("there is no drive D: of a few megabytes");
  return free.QuadPart;
}

std::vector<std::string> NamesOnSmallDrive() {
  std::vector<std::string> names;
  WIN32_FIND_DATAW found{};
  HANDLE search = ::FindFirstFileW(L"D:\\*", &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    const std::string name = ToUtf8(found.cFileName);
    if (name != "." && name != "..") names.push_back(name);
  } while (::FindNextFileW(search, &found));
  ::FindClose(search);
  std::sort(names.begin(), names.end());
  return names;
}

int FigureIn(const std::string& line, std::string_view before, std::string_view behind) {
  if (!line.starts_with(before) || !line.ends_with(behind) || line.size() <= before.size() + behind.size())
    throw DriverError("not of the form that was expected: " + line);
  std::string digits = line.substr(before.size(), line.size() - before.size() - behind.size());
  std::erase(digits, ',');
  return std::stoi(digits);
}

void FreeSpaceTest::SetUp() {
  RequireDrivesThatMayBeFilled();
  Prepare();
  WriteFileBytes(kKept, kKeptContent);
  names_ = NamesOnSmallDrive();
}

Window FreeSpaceTest::OpenDialog(const Program& program, const MainWindow& main) {
  main.PressTool("Wipe Free Space");
  return program.WaitWindow(kFreeSpaceDialog);
}

void ChooseDrive(Window dialog, WORD driveKey, std::string_view level) {
  const Window drives = dialog.ChildOfClass("ComboBox");
  drives.PostKey(driveKey);
  Await("the drive to be chosen",
        [&] { return drives.Send(CB_GETCURSEL) == driveKey - static_cast<WORD>('C'); });
  dialog.Child(level).Press();
  Await("the level to be chosen", [&] { return dialog.Child(level).IsChecked(); });
}

MessageBoxView FreeSpaceTest::Ask(const Program& program, Window dialog, const std::string& drive) {
  dialog.Child("OK").Press();
  const MessageBoxView box = program.WaitBox("Wipe Operation");
  ExpectBox(box, "Wipe Operation", Question(drive), BoxIcon::Question, {"OK", "Cancel"}, "OK");
  if (box.text != Question(drive)) throw DriverError("another drive than " + drive + " would be wiped");
  return box;
}

Window WaitSpaceStatus(const Program& program) {
  Window status;
  Await("the status window", [&] {
    for (Window candidate : program.Windows()) {
      if (::FindWindowExW(candidate.Handle(), nullptr, L"Button", L"Cancel Operation")) status = candidate;
    }
    return static_cast<bool>(status);
  });
  return status;
}

void FreeSpaceTest::StartUntilCleared(const std::string& folder) {
  constexpr Limit kOneStart{5000};
  const auto isCleared = [&] { return !PathExists(folder + "\\FreeSpace.dat"); };
  for (int starts = 0; starts < 10; ++starts) {
    const Program program(folder + "\\Zeroquill.exe");
    const MainWindow main(program);
    if (WaitFor(isCleared, kOneStart)) return;
  }
  throw DriverError("the record of the drive stays");
}

void FreeSpaceTest::ExpectAsBefore(ULONGLONG freeBytes) const {
  EXPECT_EQ(ReadFileBytes(kKept), kKeptContent);
  EXPECT_EQ(NamesOnSmallDrive(), names_);
  EXPECT_LE(FreeBytes(), freeBytes);
  EXPECT_GE(FreeBytes() + KeptByTheFileSystem(), freeBytes);
}

}  // namespace zq::test
