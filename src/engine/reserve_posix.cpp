#include "engine/reserve_posix.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <climits>
#include <fstream>
#include <string>
#include <utility>

#include "engine/calls_posix.h"
#include "engine/volume_posix.h"

namespace zq::engine {
namespace {

// ext4: clusters for delayed allocation that turns out to need more than was foreseen.
class ExtReserve {
 public:
  ExtReserve(std::string path, std::uint64_t clusters) : path_(std::move(path)), clusters_(clusters) {}
  ExtReserve(const ExtReserve&) = delete;
  ExtReserve& operator=(const ExtReserve&) = delete;
  ~ExtReserve() { Set(path_, clusters_); }

  static bool Set(const std::string& path, std::uint64_t clusters) {
    std::ofstream file(path);
    file << clusters << std::flush;
    return file.good();
  }

 private:
  std::string path_;
  std::uint64_t clusters_;
};

std::shared_ptr<void> OfExt(dev_t device) {
  const std::string number = std::to_string(major(device)) + ':' + std::to_string(minor(device));
  char target[PATH_MAX];
  const ssize_t length = ::readlink(("/sys/dev/block/" + number).c_str(), target, sizeof target);
  if (length <= 0) return nullptr;
  std::string name(target, static_cast<std::size_t>(length));
  name.erase(0, name.rfind('/') + 1);
  const std::string path = "/sys/fs/ext4/" + name + "/reserved_clusters";
  std::uint64_t clusters = 0;
  if (std::ifstream file(path); !(file >> clusters) || clusters == 0) return nullptr;
  auto reserve = std::make_shared<ExtReserve>(path, clusters);
  if (!ExtReserve::Set(path, 0)) return nullptr;
  return reserve;
}

// xfs: blocks for transactions on a full disk. The structure and the calls of its own header, which isn't in
// every system's.
struct XfsReserved {
  std::uint64_t blocks;
  std::uint64_t available;
};
constexpr unsigned long kXfsSetReserved = _IOWR('X', 114, XfsReserved);
constexpr unsigned long kXfsGetReserved = _IOR('X', 115, XfsReserved);

class XfsReserve {
 public:
  XfsReserve(UniqueFd fd, std::uint64_t blocks) : fd_(std::move(fd)), blocks_(blocks) {}
  XfsReserve(const XfsReserve&) = delete;
  XfsReserve& operator=(const XfsReserve&) = delete;
  ~XfsReserve() { Set(fd_.Get(), blocks_); }

  static bool Set(int fd, std::uint64_t blocks) {
    XfsReserved wanted{blocks, 0};
    return ::ioctl(fd, kXfsSetReserved, &wanted) == 0;
  }

 private:
  UniqueFd fd_;
  std::uint64_t blocks_;
};

std::shared_ptr<void> OfXfs(int folder) {
  XfsReserved now{};
  if (::ioctl(folder, kXfsGetReserved, &now) != 0 || now.blocks == 0) return nullptr;
  UniqueFd fd(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.IsOpen()) return nullptr;
  auto reserve = std::make_shared<XfsReserve>(std::move(fd), now.blocks);
  if (!XfsReserve::Set(folder, 0)) return nullptr;
  return reserve;
}

}  // namespace

std::shared_ptr<void> GiveOutReserve(int fd, dev_t device, std::int64_t magic) {
  if (magic == kExtMagic) return OfExt(device);
  if (magic == kXfsMagic) return OfXfs(fd);
  return nullptr;
}

}  // namespace zq::engine
