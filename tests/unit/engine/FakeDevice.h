// A device in memory that records every operation, fails the ones it is told to fail, and enforces what
// real devices ask for. It keeps apart what was written and what is on the medium.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/Clock.h"
#include "engine/Device.h"
#include "engine/SeedSource.h"
#include "engine/Storage.h"

namespace zq::engine::test {

class FakeClock final : public Clock {
 public:
  Time Now() const override { return now_; }
  void Advance(Time time) { now_ += time; }

 private:
  Time now_{1'000'000};
};

// Seeds that count up, so that no two are the same and every run is.
class FakeSeeds final : public SeedSource {
 public:
  Status Fill(std::span<std::byte> seed) override;
  int calls = 0;
  int failAtCall = 0;  // from 1; 0: never
};

struct Node {
  EntryKind kind = EntryKind::File;
  std::map<std::string, std::shared_ptr<Node>> children;
  std::map<std::string, std::shared_ptr<Node>> streams;
  std::string original;                    // what it held when the test made it
  std::string written;                     // what a cached read gives
  std::string stored;                      // what is on the medium
  std::vector<std::uint16_t> writeCounts;  // how often each byte of the medium was overwritten
  struct Range {
    std::uint64_t offset;
    std::string data;
  };
  std::vector<Range> dirty;
  std::uint64_t allocatedBytes = 0;
  std::optional<std::vector<ByteRange>> room;  // of a sparse file; to write elsewhere in it is a violation
  std::string caveat;
  std::string notInPlace;
  bool readOnly = false;
  bool dated = false;
  std::uint64_t number = 0;  // no two files have the same, nor two folders
  std::uint64_t mount = 0;
  std::uint32_t names = 1;
  int openCount = 0;
  std::size_t mostChildren = 0;  // that there were: a folder never shrinks
  bool locked = false;
  bool storesAsIs = false;
  bool wasFull = false;    // the device, for a write to it
  bool inCluster = false;  // though it is as short as those in records
  std::optional<std::size_t> record;
  std::function<void()> onGone;

  Node() = default;
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  ~Node() {
    if (onGone) onGone();
  }
  bool goesWhenClosed = false;
};

struct Op {
  std::string kind;
  std::string path;
  std::uint64_t offset = 0;
  std::size_t size = 0;
  std::string data;  // of a write: its bytes, if keepData
  bool ok = true;
};

class FakeDevice final : public Device {
 public:
  explicit FakeDevice(FakeClock& clock);

  // --- what a test sets up ---
  std::shared_ptr<Node> MakeFile(const std::string& path, const std::string& content);
  std::shared_ptr<Node> MakeFolder(const std::string& path);
  std::shared_ptr<Node> MakeLink(const std::string& path, EntryKind kind);
  void MakeHardLink(const std::string& path, const std::string& existing);
  std::shared_ptr<Node> Find(const std::string& path) const;  // null if there is none
  bool Exists(const std::string& path) const { return Find(path) != nullptr; }

  std::uint32_t clusterBytes = 4096;
  std::uint32_t sectorBytes = 512;
  bool direct = true;          // whether it can do without the cache
  std::size_t queueDepth = 1;  // with more, transfers are carried out at Wait, the latest first
  bool renamesOpenFolders = false;
  bool opensForOneAlone = false;  // a file that is open can't be opened under another name
  int mostOpenFiles = 0;          // more files and folders can't be open at once; 0: no end
  Limits openAtOnce;
  bool mergesEqual = false;                // streams must never be written with a pattern
  std::optional<NameRoom::Kind> nameRoom;  // of all folders; none: names are cleared
  bool namesLieInRecords = false;          // of all folders
  std::uint64_t log = 0;                   // of all folders; 0: there is none
  Clock::Time clearingTime{0};             // that clearing the log's traces takes, if it may go on
  std::size_t mostEntries = 0;             // of a folder, where no more can be added; 0: no end
  std::uint64_t bytesPerSecond = 0;        // 0: no time passes
  Clock::Time flushLatency{0};
  Clock::Time entryLatency{0};      // of each change of a name, a length or dates, and of each removal
  std::uint64_t capacityBytes = 0;  // 0: no end
  bool writesWhatFits = false;      // of a write that the end of the device cuts
  Status onceFull;  // told, if it isn't Ok, by writes to a file that the device was full for before
  std::size_t recordBytes = 0;  // files up to this length take no clusters
  std::size_t recordSlots = 0;  // and so many of them have room
  // Whether the records are said to be given out in turn, and whether they are: around the table from its
  // middle, of eight those behind the first free one only when they are come to from below. Else the lowest
  // free one comes first.
  bool saysRecordsInTurn = false;
  bool givesRecordsInTurn = false;
  std::uint32_t entryBytes = 0;    // what an entry takes in its folder, in clusters that never shrink
  std::uint64_t reserveBytes = 0;  // kept back until they are given out
  std::uint64_t keptBytes = 0;     // free, and for others
  bool keptByQuota = false;
  bool hasNameless = false;             // files without names
  bool fillersStayOpen = false;         // a filler's name goes when it is closed
  bool removalsNeedRoom = false;        // on a full drive, of what has content
  std::string newFilesNotInPlace;       // FileInfo::notInPlace of files that are added
  bool trims = false;                   // the device can be told what is free
  StorageInfo storage;                  // of all folders, but for that
  bool answersNoMore = false;           // transfers end only when they are given up; needs a queue
  int passesNeeded = 9;                 // less than these on any byte at a removal is a violation
  std::function<void(const Op&)> onOp;  // before the operation is carried out

  // The n-th operation (from 1) goes wrong.
  enum class Fault { None, FailOnce, FailFromThenOn, ShortWrite, ShortFromThenOn, LoseWrite };
  Fault fault = Fault::None;
  std::size_t faultAt = 0;
  bool faultHappened = false;
  std::string faultKind;  // of the operation that it hit
  Status faultStatus;     // what it fails with; with all that a text of a system can bring

  // --- what a test looks at ---
  std::vector<Op> ops;
  std::vector<std::string> violations;
  std::size_t recordsTaken = 0;  // of recordSlots, now
  std::size_t mostRecordsTaken = 0;
  std::vector<bool> takenRecords;  // empty until the first one is
  std::vector<int> recordPasses;   // of each, of writes that it had; as many as there are records
  Clock::Time clearedFor{0};
  std::vector<std::pair<std::string, std::size_t>>
      coveredFreed;  // folders, each with the number of ops before
  int openHandles = 0;
  std::uint64_t FreeBytes() const;
  bool ReserveIsGivenOut() const { return reserveBytes == 0 || !reserveGiven_.expired(); }
  int openFolders = 0;      // among them
  int mostOpenFolders = 0;  // at any moment
  std::uint64_t UsedBytes() const;
  // How many operations of one kind succeeded.
  std::size_t Count(const std::string& kind) const;

  // --- Device ---
  Status Identify(const std::string& path, EntryId& id) override;
  Status OpenFolder(const std::string& path, std::unique_ptr<Folder>& folder) override;
  Status Split(const std::string& path, std::string& folderPath, std::string& name) const override;
  std::string Join(const std::string& folderPath, const std::string& name) const override;
  Limits OpenAtOnce() const override { return openAtOnce; }
  bool RenamesOpenFolders() const override { return renamesOpenFolders; }
  std::unique_ptr<TransferQueue> MakeQueue() override;
  Status ClearTraces(Folder& folder, const std::function<bool()>& mayGoOn, std::string& note) override;

 private:
  std::size_t TakeRecord();

  friend class FakeQueue;
  friend class FakeFile;
  friend class FakeFolder;

  // Records the operation. Not Ok if the fault has hit it.
  Status Begin(const std::string& kind, const std::string& path, std::uint64_t offset = 0,
               std::size_t size = 0);
  bool HasTooManyOpen() const { return mostOpenFiles > 0 && openHandles >= mostOpenFiles; }
  // The path of the folder that holds the node beneath `path`; empty if there is none.
  std::string HolderOf(const Node& node, const std::string& path) const;
  bool HitBy(Fault wanted) const { return fault == wanted && ops.size() == faultAt; }
  bool IsShort() const {
    return HitBy(Fault::ShortWrite) || (fault == Fault::ShortFromThenOn && ops.size() >= faultAt);
  }
  std::uint64_t ClustersOf(const Node& node) const;
  void Pass(std::uint64_t bytes);
  static bool HasRoom(const Node& node, std::uint64_t offset, std::uint64_t size);
  void CheckOverwritten(const Node& node, const std::string& path, const char* what);

  FakeClock& clock_;
  std::uint64_t nextNumber_ = 1;
  std::shared_ptr<Node> root_;
  std::vector<std::weak_ptr<Node>> nameless_;
  std::size_t nextRecord_ = 0;
  std::weak_ptr<int> reserveGiven_;
  std::map<const File*, int> underWay_;  // transfers of each open file
};

}  // namespace zq::engine::test
