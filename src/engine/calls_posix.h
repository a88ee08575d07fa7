// What all parts of the Linux device need to call the system: descriptors, failures, interrupted calls.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "engine/Device.h"

namespace zq::engine {

class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~UniqueFd() { Reset(); }

  void Reset() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }
  int Get() const { return fd_; }
  bool IsOpen() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

// A failed call's error number, and the present errno, as a status.
Status FromErrno(int code);
Status LastError();

// Calls again for as long as a signal gets in between.
template <typename Call>
auto Retry(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

// Refused if it is more than the name of one entry.
Status Named(const std::string& name);

EntryKind KindOfMode(mode_t mode);

// Makes the entries of a folder durable. A folder that may be used but not read can't be flushed by itself.
Status FlushFolder(int fd);

// Renames within a folder, and never replaces what has the new name.
Status RenameWithin(int folderFd, const std::string& name, const std::string& newName);

}  // namespace zq::engine
