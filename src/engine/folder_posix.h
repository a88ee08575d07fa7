// An open folder, on Linux. Everything inside it is reached through its descriptor, so that no link put in
// its place meanwhile can lead the engine elsewhere.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/calls_posix.h"
#include "engine/entry_posix.h"
#include "engine/file_posix.h"
#include "engine/volume_posix.h"

namespace zq::engine {

class PosixFolder final : public Folder {
 public:
  // `trusted` is DeviceOptions::trustFileSystem.
  PosixFolder(UniqueFd fd, const EntryFacts& facts, Volume volume, bool trusted)
      : fd_(std::move(fd)), facts_(facts), volume_(std::move(volume)), trusted_(trusted) {}

  Status Identity(EntryId& id) override {
    id = {facts_.Id(), facts_.mount};
    return {};
  }

  Status List(std::vector<Entry>& entries) override;

  Status OpenFile(const std::string& name, Access access, std::unique_ptr<File>& file) override;

  Status AddFile(const std::string& name, Access access, std::unique_ptr<File>& file) override;

  Status OpenFolder(const std::string& name, std::unique_ptr<Folder>& folder) override;

  Status AddFolder(const std::string& name, std::unique_ptr<Folder>& folder) override;

  Status OpenAbove(std::unique_ptr<Folder>& folder) override;

  std::size_t NameLength(const std::string& name) const override;

  // The extended attributes.
  Status ListStreams(std::vector<std::string>& names) override;
  Status OpenStream(const std::string& name, Access, std::unique_ptr<File>& stream) override;

  Status Rename(const Entry& entry, const std::string& newName) override;

  Status Remove(const Entry& entry) override;

  Status Flush() override { return FlushFolder(fd_.Get()); }
  int Fd() const { return fd_.Get(); }
  const Volume& OnVolume() const { return volume_; }

  Status Space(SpaceInfo& space) override;

  Status AddNameless(Access access, std::unique_ptr<File>& file) override;
  Status AddFiller(const std::string& name, Access access, std::unique_ptr<File>& file) override;
  bool FillersGoWhenClosed() const override { return !KeepsNamesOfOpenFiles(); }
  void StoreAsIs() override;
  bool Lock() override;
  bool GivesRecordsInTurn() const override { return volume_.isNtfs3g; }
  std::shared_ptr<void> GiveOutReserve() override;
  Status TrimFreeSpace(const std::function<bool()>& mayGoOn) override;
  void Storage(StorageInfo& storage) override;

  bool RoomForNames(NameRoom& room) override;
  void CoverFreedBlocks(const std::function<bool()>& mayGoOn) override;
  // The device's number, which is never 0.
  std::uint64_t Log() const override { return volume_.isOrdered ? volume_.device : 0; }

 private:
  static Status CheckRegular(mode_t mode);
  // A server in user space gives a file that is removed while it is open another name, until it is closed.
  bool KeepsNamesOfOpenFiles() const { return volume_.isNtfs3g || volume_.isFuse; }
  std::unique_ptr<File> Opened(UniqueFd fd, const std::string& name, Access access, const EntryFacts& facts,
                               GivenRight right);

  Status CheckKind(const Entry& entry) const;

  // Opens a file; `meant`, if there is one, is what it has to be.
  Status Open(const std::string& name, int flags, Access access, const EntryFacts* meant,
              std::unique_ptr<File>& file);

  UniqueFd fd_;
  EntryFacts facts_;
  Volume volume_;
  bool trusted_;
  // The folder that a user names may be a mount point; one inside it leads out of what was named.
  bool insideWalk_ = false;
};

}  // namespace zq::engine
