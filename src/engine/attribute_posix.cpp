#include "engine/attribute_posix.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "engine/calls_posix.h"

namespace zq::engine {
namespace {

// What users and programs have put there. The others (labels, access lists, capabilities) hold no content but
// rights, which mustn't change under a file that may have to stay.
bool HoldsContent(std::string_view attribute) {
  return attribute.starts_with("user.") || attribute.starts_with("trusted.");
}

Status ListAttributes(int fd, std::vector<std::string>& names) {
  names.clear();
  std::string list;
  for (;;) {
    const ssize_t size = ::flistxattr(fd, nullptr, 0);
    if (size == 0 || (size < 0 && errno == ENOTSUP)) return {};
    if (size < 0) return LastError();
    list.resize(static_cast<std::size_t>(size));
    const ssize_t got = ::flistxattr(fd, list.data(), list.size());
    if (got >= 0) {
      list.resize(static_cast<std::size_t>(got));
      break;
    }
    if (errno != ERANGE) return LastError();  // else one has been added meanwhile
  }
  for (std::size_t at = 0; at < list.size(); at += names.back().size() + 1) names.emplace_back(&list[at]);
  return {};
}

}  // namespace

Status ListContentAttributes(int fd, std::vector<std::string>& names) {
  Status status = ListAttributes(fd, names);
  std::erase_if(names, [](const std::string& name) { return !HoldsContent(name); });
  return status;
}

Status PosixAttribute::Info(FileInfo& info) {
  const ssize_t size = ::fgetxattr(fd_, name_.c_str(), nullptr, 0);
  if (size < 0) return LastError();
  info = {};
  info.lengthBytes = static_cast<std::uint64_t>(size);
  info.inRecord = true;
  // ext4 keeps equal blocks of attributes once, and frees the other without a write.
  info.mergesEqual = true;
  return WhyNotInPlace(info.notInPlace);
}

Status PosixAttribute::Write(std::uint64_t offsetBytes, std::span<const std::byte> data,
                             std::size_t& written) {
  written = 0;
  std::vector<std::byte> value;
  if (Status status = ReadValue(value); !status.Ok()) return status;
  if (offsetBytes > value.size() || data.size() > value.size() - offsetBytes) return HasChanged();
  std::copy(data.begin(), data.end(), value.begin() + static_cast<std::ptrdiff_t>(offsetBytes));
  if (::fsetxattr(fd_, name_.c_str(), value.data(), value.size(), XATTR_REPLACE) != 0) return LastError();
  written = data.size();
  return {};
}

Status PosixAttribute::Flush() {
  if (Retry([this] { return ::fsync(fd_); }) != 0) return LastError();
  return volume_.mayClearJournal && !Checkpoint(fd_, 0) ? LastError() : Status{};
}

Status PosixAttribute::Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) {
  got = 0;
  std::vector<std::byte> value;
  if (Status status = ReadValue(value); !status.Ok()) return status;
  if (offsetBytes > value.size()) return HasChanged();
  got = std::min<std::size_t>(data.size(), value.size() - offsetBytes);
  std::copy_n(value.begin() + static_cast<std::ptrdiff_t>(offsetBytes), got, data.begin());
  return {};
}

Status PosixAttribute::ListStreams(std::vector<std::string>& names) {
  names.clear();
  return {};
}

Status PosixAttribute::OpenStream(const std::string&, Access, std::unique_ptr<File>&) {
  return NotForAttributes();
}

Status PosixAttribute::Remove() {
  return ::fremovexattr(fd_, name_.c_str()) == 0 ? Status{} : LastError();
}

Status PosixAttribute::HasChanged() {
  return Status::Refusal("another program has changed its length during the wipe");
}

Status PosixAttribute::ReadValue(std::vector<std::byte>& value) const {
  const ssize_t size = ::fgetxattr(fd_, name_.c_str(), nullptr, 0);
  if (size < 0) return LastError();
  value.resize(static_cast<std::size_t>(size));
  const ssize_t got = ::fgetxattr(fd_, name_.c_str(), value.data(), value.size());
  if (got < 0) return errno == ERANGE ? HasChanged() : LastError();
  value.resize(static_cast<std::size_t>(got));
  return {};
}

Status PosixAttribute::WhyNotInPlace(std::string& reason) const {
  constexpr std::int64_t kTmpfsMagic = 0x01021994;
  constexpr std::int64_t kRamfsMagic = 0x858458F6;
  if (volume_.magic == kTmpfsMagic || volume_.magic == kRamfsMagic) return {};  // in memory alone
  if (volume_.magic != kExtMagic) {
    reason = "the file system doesn't promise to overwrite an extended attribute where it lies";
    return {};
  }
  if (volume_.MayNotClearJournal()) {
    reason = "the file system's journal has copies of it, which only an administrator may clear";
    return {};
  }
  // With the feature ea_inode a value that is longer than half a block, or that finds no room beside the
  // others, lies in a file of its own, and a new one is made for each new value. Nothing tells about it.
  std::vector<std::string> names;
  if (Status status = ListAttributes(fd_, names); !status.Ok()) return status;
  std::uint64_t bytes = 0;
  for (const std::string& name : names) {
    const ssize_t size = ::fgetxattr(fd_, name.c_str(), nullptr, 0);
    if (size > 0) bytes += static_cast<std::uint64_t>(size);
  }
  if (bytes > volume_.clusterBytes / 2) {
    reason = "it is so large that the file system may put each new value in a new place";
  }
  return {};
}

}  // namespace zq::engine
