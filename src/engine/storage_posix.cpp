#include "engine/storage_posix.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace zq::engine {
namespace {

namespace fs = std::filesystem;
using Kind = StorageInfo::Kind;

// Loop devices on loop devices, at worst in a circle.
constexpr int kDeepest = 16;

// The first line, without the blanks at its end. Empty where there is no such file.
std::string Line(const fs::path& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  while (!line.empty() && (line.back() == ' ' || line.back() == '\0')) line.pop_back();
  return line;
}

class Walk {
 public:
  explicit Walk(std::string sys) : sys_(std::move(sys)) {}

  StorageInfo Run(dev_t device) {
    const fs::path top = PathOf(device);
    if (top.empty()) return {};
    Visit(top, 0);
    info_.trims =
        !Line(top / "queue/discard_max_bytes").empty() && Line(top / "queue/discard_max_bytes") != "0";
    if (!known_) info_.kind = Kind::Unknown;
    return info_;
  }

 private:
  // The device's folder, of a partition that of the disk.
  fs::path PathOf(dev_t device) const {
    std::error_code error;
    const std::string number = std::to_string(major(device)) + ':' + std::to_string(minor(device));
    fs::path path = fs::canonical(fs::path(sys_) / "dev/block" / number, error);
    if (error) return {};
    return fs::exists(path / "partition", error) ? path.parent_path() : path;
  }

  void Visit(const fs::path& path, int depth) {
    if (depth > kDeepest || path.empty()) return Take(Kind::Unknown);
    bool isMadeOfOthers = false;
    std::error_code error;
    for (const fs::directory_entry& slave : fs::directory_iterator(path / "slaves", error)) {
      isMadeOfOthers = true;
      fs::path below = fs::canonical(slave.path(), error);
      if (!error && fs::exists(below / "partition", error)) below = below.parent_path();
      Visit(error ? fs::path() : below, depth + 1);
    }
    if (const std::string file = Line(path / "loop/backing_file"); !file.empty()) {
      isMadeOfOthers = true;
      struct stat facts {};
      Visit(::stat(file.c_str(), &facts) == 0 ? PathOf(facts.st_dev) : fs::path(), depth + 1);
    }
    if (!isMadeOfOthers) TakeDisk(path);
  }

  void TakeDisk(const fs::path& path) {
    const std::string rotational = Line(path / "queue/rotational");
    const std::string discard = Line(path / "queue/discard_max_bytes");
    if (info_.model.empty()) info_.model = Line(path / "device/model");
    if (info_.serial.empty()) info_.serial = Line(path / "device/serial");
    if (info_.serial.empty()) info_.serial = Line(path / "serial");
    if (rotational == "0") return Take(Kind::Flash);
    // A disk that takes discards chooses places in some way, as shingled and thin ones do; and what a virtual
    // machine says of its disks is made up.
    const std::string name = path.filename();
    const bool isVirtual = name.starts_with("vd") || name.starts_with("xvd") || name.starts_with("nbd") ||
                           name.starts_with("loop") || name.starts_with("ram") || name.starts_with("zram");
    Take(rotational == "1" && discard == "0" && !isVirtual && !IsMadeUp(Line(path / "device/model"))
             ? Kind::Rotating
             : Kind::Unknown);
  }

  // The worst of all counts; what isn't known may be as bad.
  void Take(Kind kind) {
    if (!known_ || kind == Kind::Flash || (kind == Kind::Unknown && info_.kind != Kind::Flash))
      info_.kind = kind;
    known_ = true;
  }

  std::string sys_;
  StorageInfo info_;
  bool known_ = false;
};

}  // namespace

StorageInfo StorageOf(dev_t device, bool inMemory, const std::string& sys) {
  if (inMemory) {
    StorageInfo info;
    info.kind = Kind::Memory;
    return info;
  }
  return Walk(sys).Run(device);
}

}  // namespace zq::engine
