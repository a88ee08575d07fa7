#include "unit/engine/FakeDevice.h"

#include <algorithm>
#include <utility>

namespace zq::engine::test {
namespace {

// With all that a text of a system can bring: quotes and line breaks.
Status Broken() {
  return {Trouble::Other, 1117, "The \"device\" has failed.\r\n"};
}
Status NotFound() {
  return {Trouble::NotFound, 2, "The file is not there."};
}
Status Taken() {
  return {Trouble::Exists, 183, "The name is taken."};
}
Status TooMany() {
  return {Trouble::TooManyOpen, 24, "Too many open files"};
}
Status Full() {
  return {Trouble::NoSpace, 112, "The disk is full."};
}

std::vector<std::string> PartsOf(const std::string& path) {
  std::vector<std::string> parts;
  std::string part;
  for (const char c : path + '/') {
    if (c != '/') {
      part += c;
    } else if (!part.empty()) {
      parts.push_back(std::move(part));
      part.clear();
    }
  }
  return parts;
}

// Of millions of counts, so the sanitizers don't look at each of them.
#ifdef __clang__
__attribute__((no_sanitize("address", "undefined")))
#endif
void AddOne(std::uint16_t* counts, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) ++counts[i];
}

}  // namespace

Status FakeSeeds::Fill(std::span<std::byte> seed) {
  ++calls;
  if (calls == failAtCall) return Broken();
  for (std::size_t i = 0; i < seed.size(); ++i) {
    seed[i] = static_cast<std::byte>(i < 4 ? calls >> (8 * static_cast<int>(i)) : 7);
  }
  return {};
}

class FakeFile final : public File {
 public:
  FakeFile(FakeDevice& device, std::shared_ptr<Node> node,
           std::map<std::string, std::shared_ptr<Node>>& siblings, std::string folderPath, std::string name,
           bool direct, bool isStream)
      : device_(device),
        node_(std::move(node)),
        siblings_(siblings),
        folderPath_(std::move(folderPath)),
        name_(std::move(name)),
        direct_(direct),
        isStream_(isStream) {
    ++device_.openHandles;
    ++node_->openCount;
  }
  ~FakeFile() override {
    if (device_.underWay_.count(this) != 0) device_.violations.push_back("closed in a transfer: " + Path());
    --device_.openHandles;
    if (--node_->openCount == 0 && node_->goesWhenClosed && IsOurs()) siblings_.erase(name_);
  }

  Status Info(FileInfo& info) override {
    if (Status status = device_.Begin("info", Path()); !status.Ok()) return status;
    info.lengthBytes = node_->written.size();
    info.allocatedBytes = node_->allocatedBytes;
    info.clusterBytes = device_.clusterBytes;
    info.inRecord = device_.recordBytes > 0 && !node_->inCluster && !node_->written.empty() &&
                    node_->written.size() <= device_.recordBytes;
    info.mergesEqual = device_.mergesEqual && isStream_;
    info.notInPlace = node_->notInPlace;
    info.room = node_->room;
    info.caveat = node_->caveat;
    info.names = node_->names;
    return {};
  }

  Status Identity(FileId& id) override {
    if (Status status = device_.Begin("identity", Path()); !status.Ok()) return status;
    id = {1, {node_->number, 0}};
    return {};
  }

  std::size_t Alignment() const override { return direct_ ? device_.sectorBytes : 1; }

  Status Write(std::uint64_t offset, std::span<const std::byte> data, std::size_t& written) override {
    written = 0;
    CheckAlignment(offset, data.data(), data.size());
    if (Status status = device_.Begin("write", Path(), offset, data.size()); !status.Ok()) return status;
    std::size_t size = data.size();
    if (node_->room && !FakeDevice::HasRoom(*node_, offset, size)) {
      device_.violations.push_back("took room: " + Path());
    }
    if (device_.IsShort()) {
      device_.faultHappened = true;
      size = size / 2 / Alignment() * Alignment();
    }
    // Some systems write what fits when not all does, others nothing.
    const std::size_t room = RoomFor(offset, size);
    if (room < size) size = device_.writesWhatFits ? room : 0;
    if (direct_ && !node_->original.empty() && node_->original.size() <= device_.recordBytes) {
      device_.violations.push_back("moved out of its record: " + Path());
    }
    if (size == 0 && !data.empty() && !device_.IsShort()) {
      device_.ops.back().ok = false;
      return std::exchange(node_->wasFull, true) && !device_.onceFull.Ok() ? device_.onceFull : Full();
    }
    const std::string bytes(reinterpret_cast<const char*>(data.data()), size);
    device_.ops.back().size = size;
    device_.ops.back().data = bytes;
    if (node_->written.size() < offset + size) node_->written.resize(offset + size);
    node_->written.replace(offset, size, bytes);
    if (node_->record) ++device_.recordPasses[*node_->record];
    if (device_.HitBy(FakeDevice::Fault::LoseWrite)) {
      device_.faultHappened = true;
    } else {
      node_->dirty.push_back({offset, bytes});
    }
    if (direct_) device_.Pass(size);
    written = size;
    return {};
  }

  Status Flush() override {
    if (device_.underWay_.count(this) != 0) device_.violations.push_back("flushed in a transfer: " + Path());
    if (Status status = device_.Begin("flush", Path()); !status.Ok()) return status;
    Store();
    return {};
  }

  Status DropCache() override {
    if (Status status = device_.Begin("drop cache", Path()); !status.Ok()) return status;
    dropped_ = true;
    return {};
  }

  Status Read(std::uint64_t offset, std::span<std::byte> data, std::size_t& got) override {
    got = 0;
    CheckAlignment(offset, data.data(), data.size());
    if (Status status = device_.Begin("read", Path(), offset, data.size()); !status.Ok()) return status;
    const std::string& source = direct_ || dropped_ ? node_->stored : node_->written;
    if (offset < source.size()) {
      got = std::min<std::size_t>(data.size(), source.size() - offset);
      std::transform(source.begin() + static_cast<std::ptrdiff_t>(offset),
                     source.begin() + static_cast<std::ptrdiff_t>(offset + got), data.begin(),
                     [](char c) { return static_cast<std::byte>(c); });
    }
    device_.Pass(got);
    return {};
  }

  Status ListStreams(std::vector<std::string>& names) override {
    names.clear();
    if (Status status = device_.Begin("list streams", Path()); !status.Ok()) return status;
    for (const auto& [name, stream] : node_->streams) names.push_back(name);
    return {};
  }

  Status OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) override {
    if (Status status = device_.Begin("open stream", Path() + ':' + name); !status.Ok()) return status;
    const auto found = node_->streams.find(name);
    if (found == node_->streams.end()) return NotFound();
    stream = std::make_unique<FakeFile>(device_, found->second, node_->streams, Path(), name,
                                        access == Access::Direct && device_.direct, true);
    return {};
  }

  Status SetLength(std::uint64_t length) override {
    if (Status status = device_.Begin("set length", Path(), length); !status.Ok()) return status;
    device_.CheckOverwritten(*node_, Path(), "shortened");
    node_->written.resize(length);
    node_->stored.resize(length);
    node_->writeCounts.resize(length);
    node_->original.resize(std::min<std::size_t>(node_->original.size(), length));
    node_->allocatedBytes = 0;
    return {};
  }

  Status SetDates() override {
    if (Status status = device_.Begin("set dates", Path()); !status.Ok()) return status;
    node_->dated = true;
    return {};
  }

  Status Rename(const std::string& newName) override {
    if (Status status = device_.Begin("rename", Path() + " > " + newName); !status.Ok()) return status;
    if (siblings_.count(newName) != 0) {
      device_.ops.back().ok = false;
      return Taken();
    }
    if (!IsOurs()) return Status::Refusal("another file has come under this name");
    siblings_[newName] = siblings_[name_];
    siblings_.erase(name_);
    name_ = newName;
    return {};
  }

  Status FlushEntry() override {
    if (Status status = device_.Begin("flush entry", Path()); !status.Ok()) return status;
    Store();
    return {};
  }

  Status Trim() override { return device_.trims ? device_.Begin("trim", Path()) : File::Trim(); }

  Status Remove() override {
    if (Status status = device_.Begin("remove", Path()); !status.Ok()) return status;
    if (!IsOurs()) return Status::Refusal("another file has come under this name");
    device_.CheckOverwritten(*node_, Path(), "removed");
    if (!isStream_ && !node_->streams.empty())
      device_.violations.push_back("removed with a stream: " + Path());
    siblings_.erase(name_);
    --node_->names;
    return {};
  }

 private:
  std::string Path() const {
    return isStream_ ? folderPath_ + ':' + name_ : device_.Join(folderPath_, name_);
  }
  bool IsOurs() const {
    const auto found = siblings_.find(name_);
    return found != siblings_.end() && found->second == node_;
  }

  void CheckAlignment(std::uint64_t offset, const std::byte* data, std::size_t size) {
    const std::size_t alignment = Alignment();
    if (offset % alignment != 0 || size % alignment != 0 ||
        reinterpret_cast<std::uintptr_t>(data) % alignment != 0) {
      device_.violations.push_back("not aligned: " + Path());
    }
  }

  // How much of a write the device has room for.
  std::size_t RoomFor(std::uint64_t offset, std::size_t size) const {
    if (device_.capacityBytes == 0) return size;
    const std::uint64_t end = offset + size;
    if (end <= node_->written.size()) return size;
    if (node_->written.empty() && end <= device_.recordBytes) {
      if (device_.recordSlots > 0) {
        --device_.recordSlots;
        device_.mostRecordsTaken = std::max(device_.mostRecordsTaken, ++device_.recordsTaken);
        const std::size_t record = device_.TakeRecord();
        node_->record = record;
        node_->number = record + 1;
        node_->onGone = [&device = device_, record] {
          device.takenRecords[record] = false;
          ++device.recordSlots;
          --device.recordsTaken;
        };
        return size;
      }
      node_->inCluster = true;
    }
    const std::uint64_t own = device_.ClustersOf(*node_);
    const std::uint64_t free = device_.FreeBytes() + own;
    const std::uint64_t most = free / device_.clusterBytes * device_.clusterBytes;
    if (most <= offset) return 0;
    return static_cast<std::size_t>(std::min<std::uint64_t>(size, most - offset));
  }

  void Store() {
    std::uint64_t dirtyBytes = 0;
    for (const Node::Range& range : node_->dirty) {
      const std::size_t end = range.offset + range.data.size();
      if (node_->stored.size() < end) {
        node_->stored.resize(end);
        node_->writeCounts.resize(end);
      }
      node_->stored.replace(range.offset, range.data.size(), range.data);
      dirtyBytes += range.data.size();
    }
    if (!node_->original.empty()) CountWrites();  // of others nobody asks
    if (!direct_) device_.Pass(dirtyBytes);
    device_.clock_.Advance(device_.flushLatency);
    node_->dirty.clear();
  }

  // A byte that was written twice before a flush reached the medium once.
  void CountWrites() {
    std::vector<std::pair<std::size_t, std::size_t>> reached;  // begin and end
    for (const Node::Range& range : node_->dirty)
      reached.emplace_back(range.offset, range.offset + range.data.size());
    std::sort(reached.begin(), reached.end());
    std::size_t counted = 0;
    for (const auto& [begin, end] : reached) {
      const std::size_t first = std::max(begin, counted);
      if (first >= end) continue;
      AddOne(&node_->writeCounts.at(first), end - first);
      counted = end;
    }
  }

  FakeDevice& device_;
  std::shared_ptr<Node> node_;
  std::map<std::string, std::shared_ptr<Node>>& siblings_;
  std::string folderPath_;
  std::string name_;
  bool direct_;
  bool isStream_;
  bool dropped_ = false;
};

class FakeFolder final : public Folder {
 public:
  FakeFolder(FakeDevice& device, std::shared_ptr<Node> node, std::string path)
      : device_(device), node_(std::move(node)), path_(std::move(path)) {
    ++device_.openHandles;
    device_.mostOpenFolders = std::max(device_.mostOpenFolders, ++device_.openFolders);
  }
  ~FakeFolder() override {
    --device_.openHandles;
    --device_.openFolders;
    if (holdsLock_) node_->locked = false;
  }

  Status Identity(EntryId& id) override {
    if (Status status = device_.Begin("identity", path_); !status.Ok()) return status;
    id = {{1, {node_->number, 0}}, node_->mount};
    return {};
  }

  Status List(std::vector<Entry>& entries) override {
    entries.clear();
    if (Status status = device_.Begin("list", path_); !status.Ok()) return status;
    for (const auto& [name, child] : node_->children) entries.push_back({name, child->kind});
    return {};
  }

  Status OpenFile(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    if (Status status = device_.Begin("open", PathOf(name)); !status.Ok()) return status;
    const auto found = node_->children.find(name);
    if (found == node_->children.end()) return NotFound();
    switch (found->second->kind) {
      case EntryKind::File:
        break;
      case EntryKind::Folder:
        return Status::Refusal("it is a folder");
      case EntryKind::Other:
        return Status::Refusal("it is not a regular file");
      default:
        return Status::Refusal("it is a link");
    }
    if (found->second->readOnly) return {Trouble::Other, 5, "Access is denied."};
    if (device_.HasTooManyOpen()) return TooMany();
    if (device_.opensForOneAlone && found->second->openCount > 0) {
      return {Trouble::Other, 32, "The file is in use."};
    }
    file = std::make_unique<FakeFile>(device_, found->second, node_->children, path_, name,
                                      access == Access::Direct && device_.direct, false);
    return {};
  }

  Status AddFile(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    if (Status status = device_.Begin("add", PathOf(name)); !status.Ok()) return status;
    if (node_->children.count(name) != 0) return Taken();
    if (device_.mostEntries > 0 && node_->children.size() >= device_.mostEntries) {
      return {Trouble::NoSpace, 112, "The device is full"};
    }
    if (!TakeRoomForEntry()) {
      device_.ops.back().ok = false;
      return Full();
    }
    node_->children[name] = std::make_shared<Node>();
    node_->children[name]->notInPlace = device_.newFilesNotInPlace;
    file = std::make_unique<FakeFile>(device_, node_->children[name], node_->children, path_, name,
                                      access == Access::Direct && device_.direct, false);
    return {};
  }

  Status AddNameless(Access access, std::unique_ptr<File>& file) override {
    if (!device_.hasNameless) return Folder::AddNameless(access, file);
    if (Status status = device_.Begin("add", PathOf("(nameless)")); !status.Ok()) return status;
    auto node = std::make_shared<Node>();
    std::erase_if(device_.nameless_, [](const auto& one) { return one.expired(); });
    device_.nameless_.push_back(node);
    file = std::make_unique<FakeFile>(device_, node, node_->children, path_, "(nameless)",
                                      access == Access::Direct && device_.direct, false);
    return {};
  }
  Status AddFiller(const std::string& name, Access access, std::unique_ptr<File>& file) override {
    if (Status status = AddFile(name, access, file); !status.Ok()) return status;
    node_->children[name]->goesWhenClosed = device_.fillersStayOpen;
    if (!node_->storesAsIs) device_.violations.push_back("a filler may be compressed: " + PathOf(name));
    return {};
  }
  bool FillersGoWhenClosed() const override { return device_.fillersStayOpen; }
  bool GivesRecordsInTurn() const override { return device_.saysRecordsInTurn; }
  void StoreAsIs() override { node_->storesAsIs = true; }
  bool Lock() override {
    if (std::exchange(node_->locked, true)) return false;
    return holdsLock_ = true;
  }
  std::shared_ptr<void> GiveOutReserve() override {
    if (device_.reserveBytes == 0) return nullptr;
    auto given = std::make_shared<int>();
    device_.reserveGiven_ = given;
    return given;
  }
  Status TrimFreeSpace(const std::function<bool()>& mayGoOn) override {
    if (!mayGoOn()) return {};
    return device_.Begin("trim", path_);
  }
  void Storage(StorageInfo& storage) override {
    storage = device_.storage;
    storage.trims = device_.trims;
  }

  std::uint64_t Log() const override { return device_.log; }
  bool NamesLieInRecords() const override { return device_.namesLieInRecords; }

  // As much as the names take, in whole blocks.
  bool RoomForNames(NameRoom& room) override {
    room = {};
    if (!device_.nameRoom) return false;
    constexpr std::uint64_t kBlockBytes = 4096;
    std::uint64_t bytes = 1;
    for (const auto& child : node_->children) bytes += child.first.size() + 8;
    room.kind = *device_.nameRoom;
    room.bytes = (bytes + kBlockBytes - 1) / kBlockBytes * kBlockBytes;
    return true;
  }

  Status OpenFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    if (Status status = device_.Begin("open folder", PathOf(name)); !status.Ok()) return status;
    const auto found = node_->children.find(name);
    if (found == node_->children.end()) return NotFound();
    if (found->second->kind == EntryKind::Link || found->second->kind == EntryKind::FolderLink) {
      return Status::Refusal("it is a link");
    }
    if (found->second->kind != EntryKind::Folder) return Status::Refusal("it is not a folder");
    if (device_.HasTooManyOpen()) return TooMany();
    folder = std::make_unique<FakeFolder>(device_, found->second, PathOf(name));
    return {};
  }

  Status OpenAbove(std::unique_ptr<Folder>& folder) override {
    if (Status status = device_.Begin("open above", path_); !status.Ok()) return status;
    if (device_.HasTooManyOpen()) return TooMany();
    const std::string path = device_.HolderOf(*node_, "/");
    if (path.empty()) return NotFound();
    folder = std::make_unique<FakeFolder>(device_, device_.Find(path), path);
    return {};
  }

  Status AddFolder(const std::string& name, std::unique_ptr<Folder>& folder) override {
    if (Status status = device_.Begin("add folder", PathOf(name)); !status.Ok()) return status;
    if (node_->children.count(name) != 0) return Taken();
    auto made = std::make_shared<Node>();
    made->kind = EntryKind::Folder;
    node_->children[name] = made;
    folder = std::make_unique<FakeFolder>(device_, made, PathOf(name));
    return {};
  }

  Status ListStreams(std::vector<std::string>& names) override {
    names.clear();
    if (Status status = device_.Begin("list streams", path_); !status.Ok()) return status;
    for (const auto& [name, stream] : node_->streams) names.push_back(name);
    return {};
  }

  Status OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) override {
    if (Status status = device_.Begin("open stream", path_ + ':' + name); !status.Ok()) return status;
    const auto found = node_->streams.find(name);
    if (found == node_->streams.end()) return NotFound();
    stream = std::make_unique<FakeFile>(device_, found->second, node_->streams, path_, name,
                                        access == Access::Direct && device_.direct, true);
    return {};
  }

  Status Rename(const Entry& entry, const std::string& newName) override {
    if (Status status = device_.Begin("rename entry", PathOf(entry.name) + " > " + newName); !status.Ok()) {
      return status;
    }
    if (Status status = CheckKind(entry); !status.Ok()) return status;
    if (node_->children.count(newName) != 0) return Taken();
    node_->children[newName] = node_->children[entry.name];
    node_->children.erase(entry.name);
    return {};
  }

  Status Remove(const Entry& entry) override {
    if (Status status = device_.Begin("remove entry", PathOf(entry.name)); !status.Ok()) return status;
    if (Status status = CheckKind(entry); !status.Ok()) return status;
    const std::shared_ptr<Node> node = node_->children[entry.name];
    if (device_.removalsNeedRoom && device_.FreeBytes() == 0 && device_.ClustersOf(*node) > 0) {
      device_.ops.back().ok = false;
      return Full();
    }
    if (!node->children.empty()) return {Trouble::Other, 145, "The folder is not empty."};
    if (!node->streams.empty()) device_.violations.push_back("removed with a stream: " + PathOf(entry.name));
    if (!node->original.empty()) device_.violations.push_back("removed unwiped: " + PathOf(entry.name));
    node_->children.erase(entry.name);
    return {};
  }

  Status Flush() override { return device_.Begin("flush folder", path_); }
  void CoverFreedBlocks(const std::function<bool()>& mayGoOn) override {
    if (mayGoOn()) device_.coveredFreed.emplace_back(path_, device_.ops.size());
  }

  Status Space(SpaceInfo& space) override {
    if (Status status = device_.Begin("space", path_); !status.Ok()) return status;
    space.freeBytes = device_.FreeBytes();
    space.keptBytes = device_.keptBytes;
    space.keptByQuota = device_.keptByQuota;
    space.clusterBytes = device_.clusterBytes;
    return {};
  }

 private:
  std::string PathOf(const std::string& name) const { return device_.Join(path_, name); }
  Status CheckKind(const Entry& entry) const {
    const auto found = node_->children.find(entry.name);
    if (found == node_->children.end()) return NotFound();
    if (found->second->kind != entry.kind) return Status::Refusal("something else has come under this name");
    return {};
  }

  // A cluster more for the folder, where its entries need one.
  bool TakeRoomForEntry() {
    if (device_.entryBytes == 0) return true;
    const auto clusters = [&](std::size_t entries) {
      return (entries * device_.entryBytes + device_.clusterBytes - 1) / device_.clusterBytes;
    };
    const std::size_t entries = node_->children.size() + 1;
    if (clusters(entries) > clusters(node_->mostChildren) && device_.FreeBytes() < device_.clusterBytes) {
      return false;
    }
    node_->mostChildren = std::max(node_->mostChildren, entries);
    return true;
  }

  FakeDevice& device_;
  std::shared_ptr<Node> node_;
  std::string path_;
  bool holdsLock_ = false;
};

// What real queues do at their worst: a transfer happens as late as it may, and after those that were begun
// later. The memory of a write is looked at only then.
class FakeQueue final : public TransferQueue {
 public:
  explicit FakeQueue(FakeDevice& device) : device_(device) {}
  ~FakeQueue() override {
    if (!transfers_.empty()) device_.violations.push_back("a transfer was never waited for");
  }

  std::size_t Depth() const override { return device_.queueDepth; }

  void BeginWrite(File& file, std::uint64_t offset, std::span<const std::byte> data,
                  std::size_t tag) override {
    Begin(file, tag, [&file, offset, data](std::size_t& done) { return file.Write(offset, data, done); });
  }
  void BeginRead(File& file, std::uint64_t offset, std::span<std::byte> data, std::size_t tag) override {
    Begin(file, tag, [&file, offset, data](std::size_t& done) { return file.Read(offset, data, done); });
  }

  bool WaitFor(std::chrono::milliseconds limit, Ended& ended) override {
    if (device_.answersNoMore) {
      device_.clock_.Advance(limit);
      return false;
    }
    ended = Wait();
    return true;
  }
  void GiveUp() override { device_.answersNoMore = false; }

  Ended Wait() override {
    if (device_.answersNoMore) device_.violations.push_back("waited for a device that doesn't answer");
    const Transfer transfer = std::move(transfers_.back());
    transfers_.pop_back();
    if (--device_.underWay_[transfer.file] == 0) device_.underWay_.erase(transfer.file);
    Ended ended;
    ended.tag = transfer.tag;
    ended.status = transfer.carryOut(ended.bytes);
    return ended;
  }

 private:
  struct Transfer {
    const File* file;
    std::size_t tag;
    std::function<Status(std::size_t& done)> carryOut;
  };

  void Begin(File& file, std::size_t tag, std::function<Status(std::size_t& done)> carryOut) {
    ++device_.underWay_[&file];
    transfers_.push_back({&file, tag, std::move(carryOut)});
    if (transfers_.size() > device_.queueDepth) device_.violations.push_back("too many transfers");
  }

  FakeDevice& device_;
  std::vector<Transfer> transfers_;
};

std::unique_ptr<TransferQueue> FakeDevice::MakeQueue() {
  if (queueDepth == 1) return Device::MakeQueue();
  return std::make_unique<FakeQueue>(*this);
}

Status FakeDevice::ClearTraces(Folder&, const std::function<bool()>& mayGoOn, std::string&) {
  if (Status status = Begin("clear traces", "the log"); !status.Ok()) return status;
  constexpr Clock::Time kStep{10'000};
  for (Clock::Time left = clearingTime; left > Clock::Time{0}; left -= kStep) {
    if (!mayGoOn()) return {};
    clock_.Advance(kStep);
    clearedFor += kStep;
  }
  return {};
}

FakeDevice::FakeDevice(FakeClock& clock)
    : faultStatus(Broken()), clock_(clock), root_(std::make_shared<Node>()) {
  root_->kind = EntryKind::Folder;
}

std::shared_ptr<Node> FakeDevice::MakeFolder(const std::string& path) {
  std::shared_ptr<Node> node = root_;
  for (const std::string& part : PartsOf(path)) {
    std::shared_ptr<Node>& child = node->children[part];
    if (!child) {
      child = std::make_shared<Node>();
      child->kind = EntryKind::Folder;
      child->number = nextNumber_++;
    }
    node = child;
  }
  return node;
}

std::shared_ptr<Node> FakeDevice::MakeFile(const std::string& path, const std::string& content) {
  std::string folderPath;
  std::string name;
  if (!Split(path, folderPath, name).Ok()) return nullptr;
  auto node = std::make_shared<Node>();
  node->original = node->written = node->stored = content;
  node->writeCounts.resize(content.size());
  node->number = nextNumber_++;
  MakeFolder(folderPath)->children[name] = node;
  return node;
}

std::shared_ptr<Node> FakeDevice::MakeLink(const std::string& path, EntryKind kind) {
  std::shared_ptr<Node> node = MakeFile(path, "");
  node->kind = kind;
  return node;
}

void FakeDevice::MakeHardLink(const std::string& path, const std::string& existing) {
  std::string folderPath;
  std::string name;
  if (!Split(path, folderPath, name).Ok()) return;
  const std::shared_ptr<Node> node = Find(existing);
  MakeFolder(folderPath)->children[name] = node;
  ++node->names;
}

std::string FakeDevice::HolderOf(const Node& node, const std::string& path) const {
  for (const auto& [name, child] : Find(path)->children) {
    if (child.get() == &node) return path;
    if (child->kind != EntryKind::Folder) continue;
    if (std::string found = HolderOf(node, Join(path, name)); !found.empty()) return found;
  }
  return {};
}

std::shared_ptr<Node> FakeDevice::Find(const std::string& path) const {
  std::shared_ptr<Node> node = root_;
  for (const std::string& part : PartsOf(path)) {
    const auto found = node->children.find(part);
    if (found == node->children.end()) return nullptr;
    node = found->second;
  }
  return node;
}

std::uint64_t FakeDevice::ClustersOf(const Node& node) const {
  // One that found no free record has a cluster.
  if (node.written.size() <= recordBytes && !node.inCluster) return 0;
  return (node.written.size() + clusterBytes - 1) / clusterBytes * clusterBytes;
}

std::size_t FakeDevice::TakeRecord() {
  if (takenRecords.empty()) {
    takenRecords.resize(recordSlots + 1);  // one has just been counted off
    recordPasses.resize(takenRecords.size());
    nextRecord_ = takenRecords.size() / 2;
  }
  constexpr std::size_t kOfOneByte = 8;
  std::size_t record = givesRecordsInTurn ? nextRecord_ : 0;
  for (std::size_t tries = 0; tries <= 2 * takenRecords.size(); ++tries) {
    // In the middle of eight they are only had when none of those in front is free.
    const std::size_t begin = record - record % kOfOneByte;
    const bool isPassedOver = givesRecordsInTurn && record == nextRecord_ &&
                              std::find(takenRecords.begin() + static_cast<std::ptrdiff_t>(begin),
                                        takenRecords.begin() + static_cast<std::ptrdiff_t>(record),
                                        false) != takenRecords.begin() + static_cast<std::ptrdiff_t>(record);
    if (isPassedOver) {
      record = begin + kOfOneByte;
    } else if (!takenRecords[record]) {
      break;
    } else {
      ++record;
    }
    if (record >= takenRecords.size()) record = 0;
  }
  takenRecords[record] = true;
  recordPasses[record] = 0;
  nextRecord_ = (record + 1) % takenRecords.size();
  return record;
}

std::uint64_t FakeDevice::UsedBytes() const {
  std::uint64_t used = 0;
  std::vector<const Node*> todo{root_.get()};
  while (!todo.empty()) {
    const Node* node = todo.back();
    todo.pop_back();
    used += ClustersOf(*node);
    used += (node->mostChildren * entryBytes + clusterBytes - 1) / clusterBytes * clusterBytes;
    for (const auto& [name, child] : node->children) todo.push_back(child.get());
  }
  for (const auto& one : nameless_) {
    if (const std::shared_ptr<Node> node = one.lock()) used += ClustersOf(*node);
  }
  return used;
}

std::uint64_t FakeDevice::FreeBytes() const {
  const std::uint64_t taken = UsedBytes() + (ReserveIsGivenOut() ? 0 : reserveBytes);
  return capacityBytes - std::min(capacityBytes, taken);
}

std::size_t FakeDevice::Count(const std::string& kind) const {
  return static_cast<std::size_t>(
      std::count_if(ops.begin(), ops.end(), [&](const Op& op) { return op.ok && op.kind == kind; }));
}

Status FakeDevice::Identify(const std::string& path, EntryId& id) {
  if (Status status = Begin("identify", path); !status.Ok()) return status;
  const std::shared_ptr<Node> node = Find(path);
  if (!node) return NotFound();
  id = {{1, {node->number, 0}}, node->mount};
  return {};
}

Status FakeDevice::OpenFolder(const std::string& path, std::unique_ptr<Folder>& folder) {
  if (Status status = Begin("open folder", path); !status.Ok()) return status;
  const std::shared_ptr<Node> node = Find(path);
  if (!node) return NotFound();
  if (node->kind != EntryKind::Folder) return Status::Refusal("it is not a folder");
  folder = std::make_unique<FakeFolder>(*this, node, path);
  return {};
}

Status FakeDevice::Split(const std::string& path, std::string& folderPath, std::string& name) const {
  const std::size_t end = path.find_last_not_of('/');
  if (path.empty()) return Status::Refusal("the path is empty");
  if (end == std::string::npos) {
    folderPath = "/";
    name.clear();
    return {};
  }
  const std::size_t slash = path.rfind('/', end);
  folderPath = path.substr(0, slash + 1);
  name = path.substr(slash + 1, end - slash);
  return {};
}

std::string FakeDevice::Join(const std::string& folderPath, const std::string& name) const {
  return folderPath.back() == '/' ? folderPath + name : folderPath + '/' + name;
}

Status FakeDevice::Begin(const std::string& kind, const std::string& path, std::uint64_t offset,
                         std::size_t size) {
  ops.push_back({kind, path, offset, size, {}, true});
  if (onOp) onOp(ops.back());
  for (const char* ofEntry :
       {"set length", "set dates", "rename", "rename entry", "remove", "remove entry", "add"}) {
    if (kind == ofEntry) clock_.Advance(entryLatency);
  }
  if (kind == "flush folder") clock_.Advance(flushLatency);
  const std::size_t number = ops.size();
  if (number == faultAt) faultKind = kind;
  const bool hit = (fault == Fault::FailOnce && number == faultAt) ||
                   (fault == Fault::FailFromThenOn && number >= faultAt);
  if (!hit) return {};
  faultHappened = true;
  ops.back().ok = false;
  return faultStatus;
}

void FakeDevice::Pass(std::uint64_t bytes) {
  if (bytesPerSecond > 0) {
    clock_.Advance(Clock::Time{static_cast<std::int64_t>(bytes * 1'000'000 / bytesPerSecond)});
  }
}

// What goes must have been overwritten in all passes, to the end of its last cluster (or of its record),
// and on the medium itself.
bool FakeDevice::HasRoom(const Node& node, std::uint64_t offset, std::uint64_t size) {
  return std::any_of(node.room->begin(), node.room->end(), [&](const ByteRange& part) {
    return offset >= part.offsetBytes && offset + size <= part.offsetBytes + part.sizeBytes;
  });
}

void FakeDevice::CheckOverwritten(const Node& node, const std::string& path, const char* what) {
  if (node.original.empty()) return;
  std::uint64_t extent = std::max<std::uint64_t>(node.original.size(), node.allocatedBytes);
  if (node.original.size() > recordBytes) extent = (extent + clusterBytes - 1) / clusterBytes * clusterBytes;
  const auto covered = [&](std::uint64_t begin, std::uint64_t end) {
    const auto at = [&](std::uint64_t offset) {
      return node.writeCounts.begin() + static_cast<std::ptrdiff_t>(offset);
    };
    return node.writeCounts.size() >= end &&
           std::all_of(at(begin), at(end), [this](int count) { return count >= passesNeeded; });
  };
  const bool all = node.room
                       ? std::all_of(node.room->begin(), node.room->end(),
                                     [&](const ByteRange& part) {
                                       return covered(part.offsetBytes, part.offsetBytes + part.sizeBytes);
                                     })
                       : covered(0, extent);
  if (!all) violations.push_back(std::string(what) + " before it was overwritten: " + path);
}

}  // namespace zq::engine::test
