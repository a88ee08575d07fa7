// Extended attributes of files and folders, on Linux.
#pragma once

#include <string>
#include <vector>

#include "engine/part_posix.h"
#include "engine/volume_posix.h"

namespace zq::engine {

// The names of those attributes of `fd` that hold content.
Status ListContentAttributes(int fd, std::vector<std::string>& names);

// An extended attribute of a file or a folder, which it mustn't outlive, as a stream of it.
class PosixAttribute final : public PosixPart {
 public:
  PosixAttribute(int fd, std::string name, const Volume& volume)
      : fd_(fd), name_(std::move(name)), volume_(volume) {}

  Status Info(FileInfo& info) override;

  std::size_t Alignment() const override { return 1; }

  // A value can only be set as a whole.
  Status Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) override;

  // A journal has its own copy. What it hasn't written home before the value goes, it would forget to write.
  Status Flush() override;

  // There is no way past the file system's own cache.
  Status DropCache() override { return {}; }

  Status Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) override;

  Status ListStreams(std::vector<std::string>& names) override;
  Status OpenStream(const std::string&, Access, std::unique_ptr<File>&) override;
  // A shorter value could come to lie elsewhere. It goes as it is.
  Status SetLength(std::uint64_t) override { return {}; }
  Status SetDates() override { return {}; }
  Status Rename(const std::string&) override { return NotForAttributes(); }
  Status FlushEntry() override { return Flush(); }
  Status Remove() override;

  int Fd() const override { return fd_; }
  bool IsDirect() const override { return false; }
  const Volume& OnVolume() const { return volume_; }

 private:
  static Status NotForAttributes() { return Status::Refusal("an extended attribute has no such thing"); }
  static Status HasChanged();

  Status ReadValue(std::vector<std::byte>& value) const;

  Status WhyNotInPlace(std::string& reason) const;

  int fd_;
  std::string name_;
  Volume volume_;
};

}  // namespace zq::engine
