// The device on Linux: what is done for several files or folders together.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "engine/Device.h"
#include "engine/attribute_posix.h"
#include "engine/calls_posix.h"
#include "engine/entry_posix.h"
#include "engine/file_posix.h"
#include "engine/folder_posix.h"
#include "engine/journal_posix.h"
#include "engine/queue_posix.h"
#include "engine/uring_posix.h"
#include "engine/volume_posix.h"

namespace zq::engine {
namespace {

class PosixDevice final : public Device {
 public:
  PosixDevice(const DeviceOptions& options, std::size_t mostOpen) : options_(options), mostOpen_(mostOpen) {}

  Status OpenFolder(const std::string& path, std::unique_ptr<Folder>& folder) override {
    UniqueFd fd(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd.IsOpen() && errno == EACCES) {
      // One may use what is in a folder without being allowed to list it.
      fd = UniqueFd(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    if (!fd.IsOpen()) return LastError();
    EntryFacts facts;
    if (Status status = LookAt(fd.Get(), "", facts); !status.Ok()) return status;
    Volume volume;
    if (Status status = LookAtVolume(fd.Get(), facts, options_.trustFileSystem, volume); !status.Ok()) {
      return status;
    }
    folder = std::make_unique<PosixFolder>(std::move(fd), facts, std::move(volume), options_.trustFileSystem);
    return {};
  }

  Status Identify(const std::string& path, EntryId& id) override {
    UniqueFd fd(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!fd.IsOpen() && errno != EMFILE && errno != ENFILE) return LastError();
    EntryFacts facts;
    const Status status = fd.IsOpen() ? LookAt(fd.Get(), "", facts) : LookAt(AT_FDCWD, path, facts);
    if (!status.Ok()) return status;
    id = {facts.Id(), facts.mount};
    // The engine needs descriptors, too.
    constexpr std::size_t kMostHeld = 256;
    const std::size_t mostHeld = std::min(mostOpen_ / 4, kMostHeld);
    if (fd.IsOpen() && static_cast<std::size_t>(fd.Get()) < mostHeld)
      id.hold = std::make_shared<UniqueFd>(std::move(fd));
    return {};
  }

  Status Split(const std::string& path, std::string& folderPath, std::string& name) const override {
    std::size_t end = path.size();
    while (end > 0 && path[end - 1] == '/') --end;
    if (end == 0) {
      return Status::Refusal(path.empty() ? "the path is empty" : "it is the root of the whole system");
    }
    const std::size_t slash = path.rfind('/', end - 1);
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    name = path.substr(start, end - start);
    folderPath = start == 0 ? "." : path.substr(0, start);
    return Named(name);
  }

  std::string Join(const std::string& folderPath, const std::string& name) const override {
    if (folderPath.empty() || folderPath.back() == '/') return folderPath + name;
    return folderPath + '/' + name;
  }

  // Shares of what the process may have: the rest is for what is opened for a moment.
  Limits OpenAtOnce() const override {
    constexpr std::size_t kMostFolders = 128;
    constexpr std::size_t kMostLevels = 64;
    const std::size_t share = std::max<std::size_t>(mostOpen_ / 8, 4);
    return {share * 2, std::min(share, kMostFolders), std::min(share, kMostLevels)};
  }

  // All work goes by descriptors, which don't care what a folder is called.
  bool RenamesOpenFolders() const override { return true; }

  std::unique_ptr<TransferQueue> MakeQueue() override {
    if (!options_.oneTransferAtATime) {
      if (std::unique_ptr<Uring> ring = Uring::Make(PosixQueue::kDepth)) {
        return std::make_unique<PosixQueue>(std::move(ring));
      }
    }
    return Device::MakeQueue();
  }

  // Not by syncfs: that would wait for all that other programs have written meanwhile, which can be minutes'
  // worth. Here each file's own pages go to the device, all together, and then one flush of the device
  // serves all of them.
  void FlushMany(std::span<File* const> files, std::span<Status> outcomes) override {
    const auto isAttribute = [](File* file) { return dynamic_cast<PosixAttribute*>(file) != nullptr; };
    if (std::none_of(files.begin(), files.end(), isAttribute)) return FlushContents(files, outcomes);
    for (const bool ofAttributes : {false, true}) {
      std::vector<File*> some;
      std::vector<std::size_t> indices;
      for (std::size_t i = 0; i < files.size(); ++i) {
        if (isAttribute(files[i]) != ofAttributes) continue;
        some.push_back(files[i]);
        indices.push_back(i);
      }
      std::vector<Status> someOutcomes(some.size());
      if (ofAttributes) {
        FlushMetadata<PosixAttribute>(std::span<File* const>(some), someOutcomes,
                                      [](PosixAttribute& attribute) { return attribute.Flush(); });
      } else {
        FlushContents(some, someOutcomes);
      }
      for (std::size_t i = 0; i < indices.size(); ++i) outcomes[indices[i]] = std::move(someOutcomes[i]);
    }
  }

  void FlushContents(std::span<File* const> files, std::span<Status> outcomes) {
    if (files.size() == 1) {
      outcomes[0] = static_cast<PosixFile&>(*files[0]).Flush();
      return;
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
      auto& file = static_cast<PosixFile&>(*files[i]);
      // Where a single file's data may go through the journal, each is asked.
      const bool together = file.OnVolume().HasOneFlush() && !file.JournalsDataAlone();
      outcomes[i] = together ? file.BeginWriteback() : file.Flush();
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
      auto& file = static_cast<PosixFile&>(*files[i]);
      if (file.OnVolume().HasOneFlush() && outcomes[i].Ok()) outcomes[i] = file.EndWriteback();
    }
    OnceForEachVolume<PosixFile>(
        files, outcomes, [](const Volume& volume) { return volume.HasOneFlush(); },
        [](PosixFile& file) { return file.Flush(); });
  }

  void FlushEntries(std::span<File* const> files, std::span<Status> outcomes) override {
    FlushMetadata<PosixFile>(files, outcomes, [](PosixFile& file) { return file.FlushEntry(); });
  }

  void FlushFolders(std::span<Folder* const> folders, std::span<Status> outcomes) override {
    FlushMetadata<PosixFolder>(folders, outcomes, [](PosixFolder& folder) { return folder.Flush(); });
  }

  // Without an order the inodes of what is gone, with its dates, have a way to the device of their own.
  void FlushRemovals(std::span<Folder* const> folders, std::span<Status> outcomes) override {
    FlushMetadata<PosixFolder>(
        folders, outcomes, [](PosixFolder& folder) { return folder.Flush(); }, LittleIsUnwritten());
  }

  // Where the checkpoint isn't allowed, the changes of others have to be written too.
  void WriteHome(Folder& folder) override {
    auto& posix = static_cast<PosixFolder&>(folder);
    if (!posix.OnVolume().mayHaveJournal) return;
    if (posix.OnVolume().mayClearJournal && Checkpoint(posix.Fd(), 0)) return;
    if (LittleIsUnwritten()) Retry([&posix] { return ::syncfs(posix.Fd()); });
  }

  // The journal holds the names, and with data in it the content too, until it has come round.
  Status ClearTraces(Folder& folder, const std::function<bool()>& mayGoOn, std::string& note) override {
    auto& posix = static_cast<PosixFolder&>(folder);
    const Volume& volume = posix.OnVolume();
    if (volume.magic == kXfsMagic) {
      XfsFillLog(posix.Fd(), volume.device, mayGoOn);
      note = "The names of what was wiped may stay in the file system's log and in freed blocks for a while.";
      return {};
    }
    if (!volume.mayHaveJournal) return {};
    if (volume.mayClearJournal) {
      // Content may have gone through it: small files and extended attributes, or all of it.
      return Checkpoint(posix.Fd(), kZeroOut) ? Status{} : LastError();
    }
    Ext4FillJournal(posix.Fd(), mayGoOn);
    note =
        "The names of what was wiped may stay in the file system's journal for a while, which only an "
        "administrator may clear.";
    return {};
  }

 private:
  // What is true of names, lengths and dates for files and folders alike. Without an order among them each
  // has to be flushed, or with many of them, or if it is wanted, the whole file system, which has to write
  // what others have changed too, but does it in one go.
  template <typename Posix, typename Base, typename Flush>
  static void FlushMetadata(std::span<Base* const> all, std::span<Status> outcomes, const Flush& flush,
                            bool wholeFileSystem = false) {
    constexpr std::size_t kFew = 4;
    const bool many = wholeFileSystem || all.size() > kFew;
    for (std::size_t i = 0; i < all.size(); ++i) {
      auto& one = static_cast<Posix&>(*all[i]);
      const bool together = one.OnVolume().isOrdered || (many && one.OnVolume().oneFlushForAll);
      outcomes[i] = together ? Status{} : flush(one);
    }
    OnceForEachVolume<Posix>(
        all, outcomes, [](const Volume& volume) { return volume.isOrdered; }, flush);
    if (!many) return;
    OnceForEachVolume<Posix>(
        all, outcomes, [](const Volume& volume) { return volume.oneFlushForAll && !volume.isOrdered; },
        [](Posix& one) {
          return Retry([&one] { return ::syncfs(one.Fd()); }) == 0 ? Status{} : LastError();
        });
  }

  // Flushes the last one of each volume that is `wanted`; what comes of it is the outcome of all there.
  template <typename Posix, typename Base, typename Wanted, typename Flush>
  static void OnceForEachVolume(std::span<Base* const> all, std::span<Status> outcomes, const Wanted& wanted,
                                const Flush& flush) {
    std::vector<dev_t> flushed;
    for (std::size_t i = all.size(); i > 0; --i) {
      auto& last = static_cast<Posix&>(*all[i - 1]);
      const Volume& volume = last.OnVolume();
      if (!wanted(volume)) continue;
      if (std::find(flushed.begin(), flushed.end(), volume.device) != flushed.end()) continue;
      flushed.push_back(volume.device);
      const Status status = flush(last);
      if (status.Ok()) continue;
      for (std::size_t other = 0; other < all.size(); ++other) {
        if (static_cast<Posix&>(*all[other]).OnVolume().device == volume.device && outcomes[other].Ok()) {
          outcomes[other] = status;
        }
      }
    }
  }

  DeviceOptions options_;
  std::size_t mostOpen_;  // what the process may have open
};

}  // namespace

std::unique_ptr<Device> MakeSystemDevice(const DeviceOptions& options) {
  // As many as the process may have without asking anybody.
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
    const rlim_t before = std::exchange(limit.rlim_cur, limit.rlim_max);
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) limit.rlim_cur = before;
  }
  return std::make_unique<PosixDevice>(options, static_cast<std::size_t>(limit.rlim_cur));
}

}  // namespace zq::engine
