// An open file, on Linux.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "engine/calls_posix.h"
#include "engine/entry_posix.h"
#include "engine/part_posix.h"
#include "engine/placement_posix.h"
#include "engine/volume_posix.h"

namespace zq::engine {

// The right to write to a read-only file of the user's own, for as long as this lives: what a wipe takes is
// put back where the file stays.
class GivenRight {
 public:
  GivenRight() = default;
  GivenRight(GivenRight&& other) noexcept = default;
  GivenRight& operator=(GivenRight&&) = delete;
  ~GivenRight();

  // False if the file isn't `meant`, or the right isn't ours to give.
  bool Give(int folderFd, const std::string& name, const EntryFacts& meant);

 private:
  UniqueFd file_;  // open for nothing but this
  mode_t mode_ = 0;
};

class PosixFile final : public PosixPart {
 public:
  PosixFile(UniqueFd fd, int folderFd, std::string name, const EntryFacts& facts, const Volume& volume,
            GivenRight right)
      : right_(std::move(right)),
        fd_(std::move(fd)),
        folderFd_(folderFd),
        name_(std::move(name)),
        id_(facts.Id()),
        volume_(volume) {}

  // Leaves the file cached where direct transfers are not to be had.
  void GoDirect();

  Status Info(FileInfo& info) override;

  Status Identity(FileId& id) override;

  // 512 bytes is the least that a device asks for; Write finds out about those that ask for more.
  std::size_t Alignment() const override { return direct_ ? 512 : 1; }

  Status Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) override;

  Status Flush() override;

  // What is still in the system's cache is sent to the device, and waited for; the device's own cache isn't
  // flushed by that. Of direct writes nothing should be there, but a file system may have taken them into
  // the cache all the same: the second call finds out.
  Status BeginWriteback();
  Status EndWriteback();

  Status DropCache() override;

  Status Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) override;

  // The extended attributes.
  Status ListStreams(std::vector<std::string>& names) override;
  Status OpenStream(const std::string& name, Access, std::unique_ptr<File>& stream) override;

  Status SetLength(std::uint64_t lengthBytes) override;

  Status SetDates() override;

  Status Rename(const std::string& newName) override;

  Status FlushEntry() override;

  bool IsOpenElsewhere() override;

  int Fd() const override { return fd_.Get(); }
  // This file does, by its own attribute or because it is in its inode, though others of its file system
  // don't.
  bool JournalsDataAlone() const { return !direct_ && !volume_.journalsData && JournalsData(); }
  bool IsDirect() const override { return direct_; }
  const Volume& OnVolume() const { return volume_; }

  Status Remove() override;

 private:
  bool JournalsData() const;
  // Fills in where the content lies, and why it can't be overwritten there.
  void LookAtPlace(const EntryFacts& facts, FileInfo& info);
  void LookForRoom(const EntryFacts& facts, const Placement& placement, FileInfo& info) const;
  std::string WhyNotSure(bool hasFlags) const;

  // Empty, or what another program has done since the file was first looked at. Where the content lies tells
  // of blocks that were given back, though the length may be what it was; the date tells of what has come
  // after our last write.
  std::string WhyNotTheSame(const EntryFacts& facts, const std::vector<Piece>& pieces) const;

  Status Writeback(unsigned flags);

  bool GoCached();

  // What bears our name now must be the file that is open: another one was never overwritten.
  Status CheckEntry() const;
  Status CheckEntry(EntryFacts& facts) const;

  GivenRight right_;
  UniqueFd fd_;
  int folderFd_;
  std::string name_;
  FileId id_;
  Volume volume_;
  bool direct_ = false;
  bool isEmpty_ = false;  // made so by us
  // As they were when the file was first looked at.
  std::optional<std::vector<Piece>> placement_;
  std::uint64_t openedBytes_ = 0;
  // The date of our last write, where the file system keeps it exactly.
  std::optional<timespec> writtenAt_;
};

}  // namespace zq::engine
