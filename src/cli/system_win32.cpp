// The system as zqwipe sees it, on Windows. Paths of any length: W calls with \\?\ paths.
#include <windows.h>
#include <fcntl.h>
#include <io.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <cwchar>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "cli/System.h"
#include "platform/win32/UniqueHandle.h"
#include "platform/win32/Wide.h"

namespace zq::cli {
namespace {

std::atomic<bool> interrupted{false};

// Tells of a request to stop, and of an answer, while one is waited for. Never freed: the thread that reads
// the answer may outlive the program's end.
struct Waiting {
  std::mutex mutex;
  std::condition_variable changed;
  std::optional<std::string> answer;
  bool ended = false;
};
Waiting& TheWaiting() {
  static Waiting& waiting = *new Waiting;
  return waiting;
}

constexpr wchar_t kLongPrefix[] = L"\\\\?\\";
constexpr wchar_t kLongNetworkPrefix[] = L"\\\\?\\UNC\\";

bool StartsWith(const std::wstring& text, const wchar_t* start) {
  return text.compare(0, std::wcslen(start), start) == 0;
}

std::string ErrorText(DWORD code) {
  wchar_t text[512] = L"";
  DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                                  0, text, static_cast<DWORD>(std::size(text)), nullptr);
  while (length > 0 && std::wcschr(L"\r\n. ", text[length - 1]) != nullptr) --length;
  if (length == 0) return "error " + std::to_string(code);
  return FromWide({text, length});
}

// The full path with the prefix that lifts the limit on its length. Empty with `trouble` if there is none.
std::wstring LongPath(const std::string& path, std::string& trouble) {
  const std::wstring wide = ToWideIfValid(path);
  const DWORD room = wide.empty() ? 0 : ::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
  std::wstring full(room, L'\0');
  if (room > 0) full.resize(::GetFullPathNameW(wide.c_str(), room, full.data(), nullptr));
  if (full.empty()) {
    trouble = "it is not a path";
  } else if (StartsWith(full, L"\\\\.\\")) {
    trouble = "it is a device";
    full.clear();
  } else if (!StartsWith(full, kLongPrefix)) {
    full = StartsWith(full, L"\\\\") ? kLongNetworkPrefix + full.substr(2) : kLongPrefix + full;
  }
  return full;
}

// As the user would write it, in the case in which the system keeps it.
std::string FinalPath(HANDLE handle) {
  for (const DWORD form : {VOLUME_NAME_DOS, VOLUME_NAME_GUID}) {  // a volume need not have a letter
    const DWORD room = ::GetFinalPathNameByHandleW(handle, nullptr, 0, form);
    if (room == 0) continue;
    std::wstring path(room, L'\0');
    const DWORD length = ::GetFinalPathNameByHandleW(handle, path.data(), room, form);
    if (length == 0 || length >= room) continue;
    path.resize(length);
    if (StartsWith(path, kLongNetworkPrefix)) return "\\\\" + FromWide(path.substr(8));
    const bool hasLetter = StartsWith(path, kLongPrefix) && path.size() > 5 && path[5] == L':';
    return FromWide(hasLetter ? path.substr(4) : path);
  }
  return {};
}

UniqueFile OpenEntry(const std::wstring& longPath) {
  // Without any right to its content: the entry itself, be it in use or a link.
  return UniqueFile(::CreateFileW(
      longPath.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

EntryType TypeOf(HANDLE handle, DWORD attributes) {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
    FILE_ATTRIBUTE_TAG_INFO info{};
    if (::GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &info, sizeof info) == 0 ||
        IsReparseTagNameSurrogate(info.ReparseTag)) {
      return EntryType::Link;
    }
  }
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return EntryType::Folder;
  return (attributes & FILE_ATTRIBUTE_DEVICE) != 0 ? EntryType::Other : EntryType::File;
}

Guarded Guard(const std::string& path) {
  const Located located = Locate(path);
  Guarded guarded{located.canonical, located.id, {}};
  const std::vector<std::string> all = WithAllAbove(located.canonical, PathStyle::Windows);
  for (std::size_t i = 1; i < all.size(); ++i) guarded.above.push_back(Locate(all[i]).id);
  return guarded;
}

std::optional<std::string> Variable(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return value;
}

// The home, and those of the other users, which stand beside it.
void AddHomes(const std::string& home, std::vector<Guarded>& homes) {
  homes.push_back(Guard(home));
  const std::vector<std::string> all = WithAllAbove(homes.back().path, PathStyle::Windows);
  if (all.size() < 3) return;  // beside it there would be all folders of the drive
  std::string trouble;
  const std::wstring above = LongPath(all[1], trouble);
  WIN32_FIND_DATAW data{};
  const HANDLE search = ::FindFirstFileW((above + L"\\*").c_str(), &data);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring name = data.cFileName;
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 || name == L"." || name == L"..") continue;
    homes.push_back(Guard(all[1] + '\\' + FromWide(name)));
  } while (::FindNextFileW(search, &data) != 0);
  ::FindClose(search);
}

// Windows calls it on a thread of its own.
BOOL WINAPI NoteInterrupt(DWORD event) {
  interrupted = true;
  {
    const std::lock_guard lock(TheWaiting().mutex);
    TheWaiting().changed.notify_all();
  }
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) return TRUE;
  // A closed console or the end of the session: the process ends when this returns, or after some five
  // seconds, so the wipe is given the time to stop in good order.
  ::Sleep(4'000);
  return TRUE;
}

void ReadLine() {
  std::string line;
  char c = 0;
  DWORD got = 0;
  bool read = false;
  while ((read = ::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), &c, 1, &got, nullptr) != 0 && got == 1) &&
         c != '\n') {
    line += c;
  }
  Waiting& waiting = TheWaiting();
  const std::lock_guard lock(waiting.mutex);
  if (read) waiting.answer = std::move(line);
  waiting.ended = true;
  waiting.changed.notify_all();
}

}  // namespace

Located Locate(const std::string& path) {
  Located located;
  std::wstring longPath = LongPath(path, located.trouble);
  if (longPath.empty()) return located;
  const bool endsInSeparator = IsSeparator(path.back(), PathStyle::Windows);
  // A separator at the end would follow a link; a root keeps its own.
  if (!IsRoot(FromWide(longPath), PathStyle::Windows)) {
    while (longPath.back() == L'\\') longPath.pop_back();
  }

  const UniqueFile handle = OpenEntry(longPath);
  BY_HANDLE_FILE_INFORMATION info{};
  if (!handle || ::GetFileInformationByHandle(handle.Get(), &info) == 0) {
    located.trouble = ErrorText(::GetLastError());
    return located;
  }
  located.canonical = FinalPath(handle.Get());
  if (located.canonical.empty()) {
    located.trouble = "the system doesn't tell where it is";
    return located;
  }
  located.id = {info.dwVolumeSerialNumber,
                static_cast<std::uint64_t>(info.nFileIndexHigh) << 32 | info.nFileIndexLow};
  located.type = TypeOf(handle.Get(), info.dwFileAttributes);
  if (located.type == EntryType::File) {
    located.lengthBytes = static_cast<std::uint64_t>(info.nFileSizeHigh) << 32 | info.nFileSizeLow;
  }
  if (endsInSeparator && located.type != EntryType::Folder) {
    located.type = EntryType::Missing;
    located.trouble = "it is not a folder";
  }
  return located;
}

std::uint64_t LengthBytes(const std::string& path) {
  std::string trouble;
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (::GetFileAttributesExW(LongPath(path, trouble).c_str(), GetFileExInfoStandard, &data) == 0) return 0;
  return static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

bool Exists(const std::string& path) {
  std::string trouble;
  if (::GetFileAttributesW(LongPath(path, trouble).c_str()) != INVALID_FILE_ATTRIBUTES) return true;
  // An entry that can't be looked at is not one that is gone.
  const DWORD code = ::GetLastError();
  return code != ERROR_FILE_NOT_FOUND && code != ERROR_PATH_NOT_FOUND;
}

Surroundings FindSurroundings() {
  Surroundings surroundings;
  surroundings.style = PathStyle::Windows;
  surroundings.currentFolder = Guard(".");
  std::wstring program(32'768, L'\0');
  program.resize(::GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
  surroundings.program = Guard(FromWide(program));
  if (const auto profile = Variable("USERPROFILE")) AddHomes(*profile, surroundings.homes);
  for (const char* name : {"HOME", "PUBLIC"}) {
    if (const auto home = Variable(name)) surroundings.homes.push_back(Guard(*home));
  }
  return surroundings;
}

bool IsTerminal(std::FILE* stream) {
  // _isatty takes the null device for a terminal.
  DWORD mode = 0;
  return ::GetConsoleMode(reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(stream))), &mode) != 0;
}

int TerminalWidth(std::FILE* stream) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  const auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(stream)));
  if (::GetConsoleScreenBufferInfo(handle, &info) == 0) return 80;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

std::FILE* CreateNewFile(const std::string& path, std::string& trouble) {
  const std::wstring longPath = LongPath(path, trouble);
  if (longPath.empty()) return nullptr;
  const HANDLE handle = ::CreateFileW(longPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    trouble = ErrorText(::GetLastError());
    return nullptr;
  }
  const int fd = ::_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_WRONLY | _O_TEXT);
  std::FILE* file = fd < 0 ? nullptr : ::_fdopen(fd, "w");
  if (file == nullptr) trouble = "it can't be opened";
  return file;
}

// Ctrl+C doesn't always break off a read that waits for the console, so that is done by another thread.
std::optional<std::string> ReadAnswer() {
  Waiting& waiting = TheWaiting();
  std::thread(ReadLine).detach();
  std::unique_lock lock(waiting.mutex);
  waiting.changed.wait(lock, [&] { return waiting.ended || WasInterrupted(); });
  return WasInterrupted() ? std::nullopt : std::move(waiting.answer);
}

void PrepareStreams() {
  // The console is the user's, and other programs go on in it.
  static const UINT codePageBefore = ::GetConsoleOutputCP();
  if (codePageBefore != 0 && ::SetConsoleOutputCP(CP_UTF8)) {
    std::atexit([] { ::SetConsoleOutputCP(codePageBefore); });
  }
  // The same bytes on every system: a line break is one character there, and none of the text is changed.
  ::_setmode(::_fileno(stdout), _O_BINARY);
}

void CatchInterrupts() {
  ::SetConsoleCtrlHandler(NoteInterrupt, TRUE);
}

bool WasInterrupted() {
  return interrupted;
}

}  // namespace zq::cli
