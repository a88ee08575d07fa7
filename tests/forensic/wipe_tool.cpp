// Wipes what is named on the command line, for tests of the engine on real file systems.
//   wipe_tool [--level L] [--trust] [--deny setup|enter ERRNO] [--at NAME COMMAND] PATH...
//   wipe_tool --free-space [--level L] [--slowly] FOLDER
// --free-space wipes the free space of the drive that FOLDER is on, which has to be a small one and not this
// machine's own. --slowly waits in each event after the first one and a half
// megabytes, for a kill to come between.
// --deny has the kernel refuse this call of io_uring with that error (Linux).
// --at runs COMMAND by the system's shell when the wipe of the item called NAME has just started: once it
// is open and before its first pass. Exit code 0 if everything named is gone, else 1; every event but
// progress is a line of the output.
#include <sys/stat.h>
#ifndef _WIN32
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "engine/SecureDelete.h"

namespace zq::engine {
namespace {

class PrintedEvents final : public EngineEvents {
 public:
  PrintedEvents(std::string itemName, std::string command)
      : itemName_(std::move(itemName)), command_(std::move(command)) {}

  void WipeProgress(std::int32_t, std::int32_t, std::int32_t, const Item& item) override {
    if (ran_ || command_.empty() || item.name != itemName_) return;
    ran_ = true;
    std::fflush(stdout);
    if (std::system(command_.c_str()) != 0) {
      std::printf("the command failed\n");
      std::exit(3);
    }
  }
  void WipeError(std::int32_t code, const std::string& text) override {
    std::printf("error %d %s\n", code, text.c_str());
  }
  void ItemEnded(const Item& item, const ItemEnd& end) override {
    if (end.errorCode != 0) WipeError(end.errorCode, end.text);
    if (end.outcome == Outcome::Wiped && item.kind == ItemKind::File) {
      std::printf("wiped %s\n", item.name.c_str());
    }
  }
  void FreeSpaceProgress(const std::string&, std::int32_t percent, std::int32_t kbDone,
                         std::int32_t kbTotal) override {
    std::printf("space %d %d %d\n", percent, kbDone, kbTotal);
    // Not while it fills records, of which there may be thousands with an event each.
    if (slowly && kbDone > kRecordsKB) std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }

  static constexpr std::int32_t kRecordsKB = 1500;

  bool slowly = false;

  bool CommandIsDue() const { return !command_.empty() && !ran_; }

 private:
  const std::string itemName_;
  const std::string command_;
  bool ran_ = false;
};

// Whoever fills a drive in a test must not fill this machine's.
bool IsSmallDrive(const std::string& path) {
  constexpr std::uintmax_t kMost = std::uintmax_t{2} << 30;
  std::error_code error;
  const std::filesystem::space_info space = std::filesystem::space(path, error);
  if (error || space.capacity > kMost) return false;
#ifdef _WIN32
  return true;
#else
  struct stat root {};
  struct stat facts {};
  return ::stat("/", &root) == 0 && ::stat(path.c_str(), &facts) == 0 && root.st_dev != facts.st_dev;
#endif
}

// For all that this process does from now on. False if the kernel takes no such filter.
bool Deny(const std::string& call, int error) {
#ifdef _WIN32
  static_cast<void>(call), static_cast<void>(error);
  return false;
#else
  const long number = call == "setup" ? __NR_io_uring_setup : __NR_io_uring_enter;
  sock_filter steps[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(number), 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error)),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program{static_cast<unsigned short>(std::size(steps)), steps};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0 &&
         ::syscall(number, -1, 0, 0, 0, nullptr, 0) == -1 && errno == error;
#endif
}

int Run(const std::vector<std::string>& arguments) {
  std::int32_t level = 3;
  DeviceOptions options;
  std::string itemName;
  std::string command;
  bool freeSpace = false;
  bool slowly = false;
  std::size_t next = 0;
  while (next < arguments.size() && arguments[next].rfind("--", 0) == 0) {
    const std::string& option = arguments[next];
    if (option == "--trust") {
      options.trustFileSystem = true;
      next += 1;
    } else if (option == "--free-space") {
      freeSpace = true;
      next += 1;
    } else if (option == "--slowly") {
      slowly = true;
      next += 1;
    } else if (option == "--level" && next + 1 < arguments.size()) {
      level = std::atoi(arguments[next + 1].c_str());
      next += 2;
    } else if (option == "--deny" && next + 2 < arguments.size()) {
      if (!Deny(arguments[next + 1], std::atoi(arguments[next + 2].c_str()))) {
        std::fprintf(stderr, "wipe_tool: the call can't be denied\n");
        return 3;
      }
      next += 3;
    } else if (option == "--at" && next + 2 < arguments.size()) {
      itemName = arguments[next + 1];
      command = arguments[next + 2];
      next += 3;
    } else {
      std::fprintf(stderr, "wipe_tool: %s?\n", option.c_str());
      return 2;
    }
  }
  if (next == arguments.size()) {
    std::fprintf(stderr, "wipe_tool: nothing to wipe\n");
    return 2;
  }

  SteadyClock clock;
  SystemSeed seeds;
  const std::unique_ptr<Device> device = MakeSystemDevice(options);
  PrintedEvents events(itemName, command);
  SecureDelete engine(*device, seeds, clock, events,
                      [](const std::string&, const std::string&) { return false; });
  events.slowly = slowly;
  int result = 0;
  if (freeSpace) {
    if (!IsSmallDrive(arguments[next])) {
      std::fprintf(stderr, "wipe_tool: %s is not on a small drive of its own\n", arguments[next].c_str());
      return 2;
    }
    if (!engine.WipeFreeSpace(arguments[next], level)) {
      std::printf("failed: %s\n", engine.LastErrorText().c_str());
      result = 1;
    }
    if (!engine.Note().empty()) std::printf("note: %s\n", engine.Note().c_str());
    return result;
  }
  for (; next < arguments.size(); ++next) {
    const std::string& path = arguments[next];
    struct stat facts {};
    const bool isFolder = ::stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
    if (!(isFolder ? engine.WipeFolder(path, level) : engine.WipeFile(path, level))) {
      std::printf("failed: %s\n", engine.LastErrorText().c_str());
      result = 1;
    }
    if (!engine.Note().empty()) std::printf("note: %s\n", engine.Note().c_str());
  }
  // A test whose intervention never happened would prove nothing.
  if (events.CommandIsDue()) {
    std::fprintf(stderr, "wipe_tool: %s was never started\n", itemName.c_str());
    return 3;
  }
  return result;
}

}  // namespace
}  // namespace zq::engine

int main(int argc, char** argv) {
  // Otherwise lines of the command would come before those that were printed earlier.
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  return zq::engine::Run({argv + 1, argv + argc});
}
