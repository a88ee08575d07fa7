// The system as zqwipe sees it, on Linux.
#include <fcntl.h>
#include <limits.h>
#include <pwd.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <fstream>
#include <memory>
#include <optional>
#include <system_error>

#include "cli/System.h"

namespace zq::cli {
namespace {

// Lock-free, which a signal handler needs.
std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);

std::string ErrorText(int code) {
  return std::generic_category().message(code);
}

std::optional<std::string> Resolved(const std::string& path) {
  const std::unique_ptr<char, decltype(&::free)> real(::realpath(path.c_str(), nullptr), &::free);
  if (!real) return std::nullopt;
  return std::string(real.get());
}

FileId IdOf(const struct stat& facts) {
  return {facts.st_dev, facts.st_ino};
}

FileId IdOf(const std::string& path) {
  struct stat facts {};
  return ::lstat(path.c_str(), &facts) == 0 ? IdOf(facts) : FileId{};
}

Guarded Guard(const std::string& path) {
  Guarded guarded{path, IdOf(path), {}};
  if (path.empty()) return guarded;
  const std::vector<std::string> all = WithAllAbove(path, PathStyle::Posix);
  for (std::size_t i = 1; i < all.size(); ++i) guarded.above.push_back(IdOf(all[i]));
  return guarded;
}

// A home may be named by way of a link: both the link and what it leads to are to stay.
void AddHome(const char* path, std::vector<Guarded>& homes) {
  if (path == nullptr || path[0] != '/') return;
  const Located located = Locate(path);
  if (!located.canonical.empty()) homes.push_back(Guard(located.canonical));
  if (located.type != EntryType::Link) return;
  if (const auto resolved = Resolved(path)) homes.push_back(Guard(*resolved));
}

// "\040" for a blank, and so on: how the kernel writes paths into its table.
std::string WithoutOctal(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 3 < text.size()) {
      plain += static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0'));
      i += 3;
    } else {
      plain += text[i];
    }
  }
  return plain;
}

std::vector<std::string> MountPoints() {
  std::vector<std::string> points;
  std::ifstream mounts("/proc/self/mountinfo");
  for (std::string line; std::getline(mounts, line);) {
    // "36 35 98:0 / /mnt rw,noatime - ext4 /dev/root rw": the fifth field.
    std::size_t start = 0;
    for (int field = 1; field < 5 && start != std::string::npos; ++field) {
      start = line.find(' ', start);
      if (start != std::string::npos) ++start;
    }
    if (start == std::string::npos) continue;
    points.push_back(WithoutOctal(line.substr(start, line.find(' ', start) - start)));
  }
  return points;
}

extern "C" void NoteInterrupt(int) {
  interrupted = true;
}

}  // namespace

Located Locate(const std::string& path) {
  Located located;
  if (path.empty()) {
    located.trouble = "the path is empty";
    return located;
  }
  // A separator at the end would follow a link.
  std::string plain = path;
  while (plain.size() > 1 && plain.back() == '/') plain.pop_back();

  struct stat facts {};
  if (::lstat(plain.c_str(), &facts) != 0) {
    located.trouble = ErrorText(errno);
  } else {
    located.id = IdOf(facts);
    located.type = S_ISREG(facts.st_mode)   ? EntryType::File
                   : S_ISDIR(facts.st_mode) ? EntryType::Folder
                   : S_ISLNK(facts.st_mode) ? EntryType::Link
                                            : EntryType::Other;
    if (S_ISREG(facts.st_mode)) located.lengthBytes = static_cast<std::uint64_t>(facts.st_size);
    if (plain.size() < path.size() && located.type != EntryType::Folder) {
      located.type = EntryType::Missing;
      located.trouble = "it is not a folder";
    }
  }

  const std::string name(LastName(plain, PathStyle::Posix));
  if (name.empty() || name == "." || name == "..") {
    if (const auto resolved = Resolved(plain)) located.canonical = *resolved;
    return located;
  }
  std::string folder = plain.substr(0, plain.size() - name.size());
  if (folder.empty()) folder = ".";
  if (auto resolved = Resolved(folder)) {
    if (resolved->back() != '/') *resolved += '/';
    located.canonical = *resolved + name;
  }
  return located;
}

std::uint64_t LengthBytes(const std::string& path) {
  struct stat facts {};
  // A walk gets to paths that are longer than the system takes: those are followed in parts.
  int folder = AT_FDCWD;
  std::size_t start = 0;
  bool found = true;
  while (found && path.size() - start >= PATH_MAX) {
    const std::size_t slash = path.rfind('/', start + PATH_MAX - 1);
    found = slash != std::string::npos && slash > start;
    const int next =
        found ? ::openat(folder, path.substr(start, slash - start).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)
              : -1;
    if (folder != AT_FDCWD) ::close(folder);
    folder = next;
    found = folder >= 0;
    start = slash + 1;
  }
  found = found && ::fstatat(folder, path.c_str() + start, &facts, AT_SYMLINK_NOFOLLOW) == 0;
  if (folder >= 0) ::close(folder);
  return found ? static_cast<std::uint64_t>(facts.st_size) : 0;
}

bool Exists(const std::string& path) {
  struct stat facts {};
  // An entry that can't be looked at is not one that is gone.
  return ::lstat(path.c_str(), &facts) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

Surroundings FindSurroundings() {
  Surroundings surroundings;
  surroundings.style = PathStyle::Posix;
  if (const auto current = Resolved(".")) surroundings.currentFolder = Guard(*current);
  if (const auto program = Resolved("/proc/self/exe")) surroundings.program = Guard(*program);
  AddHome(::getenv("HOME"), surroundings.homes);
  ::setpwent();
  while (const passwd* user = ::getpwent()) AddHome(user->pw_dir, surroundings.homes);
  ::endpwent();
  surroundings.mountPoints = MountPoints();
  return surroundings;
}

bool IsTerminal(std::FILE* stream) {
  return ::isatty(::fileno(stream)) == 1;
}

int TerminalWidth(std::FILE* stream) {
  winsize size{};
  return ::ioctl(::fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::FILE* CreateNewFile(const std::string& path, std::string& trouble) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  std::FILE* file = fd < 0 ? nullptr : ::fdopen(fd, "w");
  if (file == nullptr) trouble = ErrorText(errno);
  return file;
}

std::optional<std::string> ReadAnswer() {
  std::string answer;
  for (int c = std::getchar(); c != '\n'; c = std::getchar()) {
    if (c == EOF || WasInterrupted()) return std::nullopt;
    answer += static_cast<char>(c);
  }
  return answer;
}

void PrepareStreams() {
  // The end of a reader must not end a wipe half way.
  ::signal(SIGPIPE, SIG_IGN);
}

void CatchInterrupts() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction former {};
    if (::sigaction(number, nullptr, &former) == 0 && former.sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = NoteInterrupt;
    ::sigemptyset(&action.sa_mask);
    // Without SA_RESTART: the wait for an answer ends too.
    ::sigaction(number, &action, nullptr);
  }
}

bool WasInterrupted() {
  return interrupted;
}

}  // namespace zq::cli
