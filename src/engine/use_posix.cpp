#include "engine/use_posix.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "engine/calls_posix.h"

namespace zq::engine {
namespace {

std::string ReadLine(const std::string& path) {
  const UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd.IsOpen()) return {};
  char text[4096];
  const ssize_t got = ::read(fd.Get(), text, sizeof text);
  std::string line(text, got > 0 ? static_cast<std::size_t>(got) : 0);
  while (!line.empty() && line.back() == '\n') line.pop_back();
  return line;
}

struct Image {
  dev_t device = 0;
  ino_t inode = 0;
};

struct Images {
  std::vector<Image> files;
  bool known = true;  // these are all
};

// A device's number as the loop driver gives it: of 64 bits, though encoded as one of 32 is.
dev_t DeviceOf(std::uint64_t number) {
  return ::makedev(static_cast<unsigned>((number & 0xfff00) >> 8),
                   static_cast<unsigned>((number & 0xff) | ((number >> 12) & 0xfff00)));
}

void AddImage(const std::string& loop, Images& images) {
  const std::string backing = ReadLine("/sys/block/" + loop + "/loop/backing_file");
  if (backing.empty()) return;  // there is none
  bool isKnown = false;
  if (const UniqueFd fd(::open(("/dev/" + loop).c_str(), O_RDONLY | O_CLOEXEC)); fd.IsOpen()) {
    loop_info64 info{};
    struct stat facts {};
    // Behind a name in another space's /dev there may be another device.
    if (::fstat(fd.Get(), &facts) == 0 && S_ISBLK(facts.st_mode) &&
        ReadLine("/sys/block/" + loop + "/dev") ==
            std::to_string(major(facts.st_rdev)) + ':' + std::to_string(minor(facts.st_rdev)) &&
        ::ioctl(fd.Get(), LOOP_GET_STATUS64, &info) == 0) {
      images.files.push_back({DeviceOf(info.lo_device), static_cast<ino_t>(info.lo_inode)});
      isKnown = true;
    }
  }
  // The device may not be ours to open. The path may be another one from here, or lead nowhere: the file can
  // lie in a space of mounts of its own, or have no name any more.
  struct stat facts {};
  if (::stat(backing.c_str(), &facts) == 0) {
    images.files.push_back({facts.st_dev, facts.st_ino});
    isKnown = true;
  }
  images.known = images.known && isKnown;
}

Images FindImages() {
  Images images;
  struct Close {
    void operator()(DIR* stream) const { ::closedir(stream); }
  };
  const std::unique_ptr<DIR, Close> stream(::opendir("/sys/block"));
  images.known = stream != nullptr;
  bool sawAny = false;
  while (const dirent* entry = stream ? ::readdir(stream.get()) : nullptr) {
    sawAny = sawAny || entry->d_name[0] != '.';
    if (std::string_view(entry->d_name).starts_with("loop")) AddImage(entry->d_name, images);
  }
  // An empty folder is what is left of /sys in a space where it isn't mounted.
  images.known = images.known && sawAny;
  return images;
}

// There can be thousands of files to ask for in a second.
Images RecentImages() {
  using Clock = std::chrono::steady_clock;
  static std::mutex mutex;
  static Images images;
  static Clock::time_point asked;
  const std::lock_guard lock(mutex);
  if (asked == Clock::time_point{} || Clock::now() - asked > std::chrono::milliseconds(200)) {
    images = FindImages();
    asked = Clock::now();
  }
  return images;
}

}  // namespace

Status CheckRemovable(int folderFd, const std::string& name, const EntryFacts& facts) {
  if ((facts.attributes & STATX_ATTR_IMMUTABLE) != 0) {
    return Status::Refusal("it is marked as immutable: Operation not permitted");
  }
  if ((facts.attributes & STATX_ATTR_APPEND) != 0) {
    return Status::Refusal("it is marked as append-only: Operation not permitted");
  }
  // To remove it as a folder is refused for what isn't one, but only after all that would keep it from being
  // removed at all.
  if (::unlinkat(folderFd, name.c_str(), AT_REMOVEDIR) == 0) {
    return Status::Refusal("something else has come under this name");
  }
  if (errno == ENOTDIR) return {};
  if (errno != EPERM) return LastError();
  EntryFacts folder;
  if (Status status = LookAt(folderFd, "", folder); !status.Ok()) return status;
  if ((folder.attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0) {
    return Status::Refusal(
        "its folder is marked so that nothing is removed from it: Operation not permitted");
  }
  if ((folder.mode & S_ISVTX) != 0) {
    return Status::Refusal("its folder lets nobody but the owner remove it: Operation not permitted");
  }
  return Status::Refusal(
      "the system doesn't let it be removed, as a swap file in use: Operation not permitted");
}

Status CheckNoImage(int folderFd, const std::string& name, const EntryFacts& facts) {
  // No file system fits into less.
  constexpr std::uint64_t kLeastImage = 16384;
  if (facts.lengthBytes < kLeastImage) return {};
  const Images images = RecentImages();
  for (const Image& image : images.files) {
    if (image.device == facts.device && image.inode == facts.inode) {
      return Status::Refusal("it is the image of a loop device");
    }
  }
  if (images.known) return {};
  // A device has its image open for writing, and then this isn't given.
  const UniqueFd fd(::openat(folderFd, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (fd.IsOpen() && ::fcntl(fd.Get(), F_SETLEASE, F_RDLCK) == 0) {
    ::fcntl(fd.Get(), F_SETLEASE, F_UNLCK);
    return {};
  }
  return Status::Refusal("it can't be found out whether it is the image of a loop device");
}

}  // namespace zq::engine
