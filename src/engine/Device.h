// What the engine asks of a system: folders, files and their flushes. One implementation for each system
// (device_win32.cpp; device_posix.cpp and the files that it names), and in the tests one in memory that
// records and fails.
//
// All paths and names are UTF-8. No call throws, except std::bad_alloc. No call follows a link unless it
// says so. A call that returns a failure has changed nothing, or at most written a part of the data.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zq::engine {

struct StorageInfo;

// What the engine has to tell apart among the failures of a system call.
enum class Trouble {
  None,
  NotFound,     // the entry doesn't exist (any more)
  Exists,       // the new name is taken
  NoSpace,      // the device is full: how every filling of free space ends
  TooManyOpen,  // so many files and folders are open that the system opens no more
  Refused,      // a refusal of our own: a link, not a regular file; `text` says which, `code` is 0
  Other,
};

// The outcome of a device call. `code` and `text` are the system's own.
struct [[nodiscard]] Status {
  Trouble trouble = Trouble::None;
  std::int32_t code = 0;
  std::string text;

  bool Ok() const { return trouble == Trouble::None; }
  static Status Refusal(std::string reason) { return {Trouble::Refused, 0, std::move(reason)}; }
};

// How a file's writes travel. Direct writes pass the system's cache and have to be aligned; where the
// system or the file system can't do them the device quietly opens Cached, as File::Alignment then tells.
enum class Access { Direct, Cached };

// What a file is, whatever names it has: no two files of a machine have the same.
struct FileId {
  std::uint64_t volume = 0;
  std::array<std::uint64_t, 2> file{};

  auto operator<=>(const FileId&) const = default;
};

// What a path leads to, so that it can be told again whatever has happened to the folders on the way.
struct EntryId {
  FileId file;
  // What it was reached through, where a system can have the same folder in several places: of a mount
  // (Linux). 0: not known, or there is no such thing.
  std::uint64_t mount = 0;
  // Not compared: as long as it lives the system gives the numbers to nothing else. Empty where there are too
  // many to be held.
  std::shared_ptr<const void> hold = nullptr;

  bool operator==(const EntryId& other) const { return file == other.file && mount == other.mount; }
};

struct ByteRange {
  std::uint64_t offsetBytes = 0;
  std::uint64_t sizeBytes = 0;
};

struct FileInfo {
  std::uint64_t lengthBytes = 0;
  // What the file occupies; more than the length if space was reserved behind its end. 0: not known.
  std::uint64_t allocatedBytes = 0;
  std::uint32_t clusterBytes = 0;  // the unit in which the file system gives out space
  // The content lies in the file's own record (NTFS: in the MFT), not in clusters. Writing beyond the
  // present length would move it out into clusters and leave the old bytes in the record.
  bool inRecord = false;
  // The file system may put equal contents of two files together, and then what has become superfluous is
  // never overwritten: only random data, which are equal to nothing else, are safe to write.
  bool mergesEqual = false;
  // Of a sparse file: the parts of it that have room on the device, in order, each of whole clusters. Nothing
  // else of it holds data, and writing there would take room. Unset for other files: they have all they need.
  std::optional<std::vector<ByteRange>> room;
  // The length that no file goes beyond there, whole clusters or not; 0: none that matters.
  std::uint64_t mostBytes = 0;
  // Empty, or a sentence for the user, who has this file wiped all the same: what may be left of it in places
  // that can't be reached from here.
  std::string caveat;
  // Empty, or why overwriting this file would leave its old content somewhere: "it is compressed". When it is
  // asked again later: or has left it, "another program has moved it during the wipe".
  std::string notInPlace;
  std::uint32_t names = 1;  // hard links
};

// An open regular file, or a named stream of one. Closed when destroyed, which can't fail in a way that
// matters: everything that has to be on the device was flushed before.
class File {
 public:
  File() = default;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  virtual ~File() = default;

  virtual Status Info(FileInfo& info) = 0;
  // Which file this is. Apart from Info, since a system may take its time for it, and mostly nobody asks.
  // Streams have none.
  virtual Status Identity(FileId& id);

  // 1, or what offset, size and buffer address of each Read and Write must be multiples of.
  virtual std::size_t Alignment() const = 0;

  // Writes at most data.size() bytes at `offsetBytes`, lengthening the file where needed.
  virtual Status Write(std::uint64_t offsetBytes, std::span<const std::byte> data, std::size_t& written) = 0;

  // Returns when all that was written is on the device itself, past the caches of system and device.
  virtual Status Flush() = 0;

  // Makes the next Reads come from the device, as far as the system allows.
  virtual Status DropCache() = 0;
  virtual Status Read(std::uint64_t offsetBytes, std::span<std::byte> data, std::size_t& got) = 0;

  // The names of the file's other streams, as OpenStream takes them. Empty where there is no such thing.
  virtual Status ListStreams(std::vector<std::string>& names) = 0;
  virtual Status OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) = 0;

  virtual Status SetLength(std::uint64_t lengthBytes) = 0;

  // Sets all dates of the file that can be set to one moment, the same for all files.
  virtual Status SetDates() = 0;

  // Gives the file a new name in its folder. Trouble::Exists if the name is taken. The entry must still
  // be this very file; another one that has come under its name is left alone, as a failure.
  virtual Status Rename(const std::string& newName) = 0;

  // Makes length, dates and name durable.
  virtual Status FlushEntry() = 0;

  // Whether another program has it open, as far as the system tells; false where it doesn't. For the reason
  // of a failure alone: it is asked by keeping the other ones waiting for a moment.
  virtual bool IsOpenElsewhere() { return false; }

  // Removes the entry (or the stream) and closes the file, which is of no use after. Ok only if the entry
  // is gone. The same identity rule as for Rename.
  virtual Status Remove() = 0;

  // Tells the device that it may forget the content, which can't be read after that. Refused where the system
  // has no such call for a file.
  virtual Status Trim() { return Status::Refusal("a file can't be trimmed here"); }
};

enum class EntryKind {
  File,
  Folder,
  Link,        // symbolic link, or whatever else stands for something in another place
  FolderLink,  // the same where the system says that it stands for a folder: a junction
  Other,       // pipe, socket, device
};

struct Entry {
  std::string name;
  EntryKind kind = EntryKind::Other;
};

struct SpaceInfo {
  std::uint64_t freeBytes = 0;  // what this user may still write
  // What is free beside that and kept for others: for the administrator, or by a quota.
  std::uint64_t keptBytes = 0;
  bool keptByQuota = false;
  std::uint32_t clusterBytes = 0;
};

// The room in which a folder keeps names, and in which those of entries that were renamed or removed stay
// until others come to stand there.
struct NameRoom {
  enum class Kind {
    Slots,  // one after the other; the folder grows when it is full, and never shrinks (FAT)
    Tree,   // sorted, so that nobody knows where the next one goes (NTFS)
  };
  Kind kind = Kind::Slots;
  std::uint64_t bytes = 0;
};

// An open folder. While it is open nobody can put another folder, or a link, in its place: everything
// reached through it is inside it.
class Folder {
 public:
  Folder() = default;
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  virtual ~Folder() = default;

  // Which folder this is, without a hold.
  virtual Status Identity(EntryId& id);

  virtual Status List(std::vector<Entry>& entries) = 0;

  // Opens a regular file for overwriting. Refused, without waiting for anything, for all else. An open
  // file must not outlive its folder.
  virtual Status OpenFile(const std::string& name, Access access, std::unique_ptr<File>& file) = 0;
  // Makes a new empty file; Trouble::Exists if the name is taken.
  virtual Status AddFile(const std::string& name, Access access, std::unique_ptr<File>& file) = 0;
  // Opens a folder inside this one; refused if it is a link.
  virtual Status OpenFolder(const std::string& name, std::unique_ptr<Folder>& folder) = 0;
  virtual Status AddFolder(const std::string& name, std::unique_ptr<Folder>& folder) = 0;
  // Opens the folder that holds this one by now, wherever that is: the caller has to look which one it is.
  // Only where Device::OpenAtOnce limits the levels of a walk.
  virtual Status OpenAbove(std::unique_ptr<Folder>& folder);

  // The length of a name in the units in which the file system stores it, at least 1.
  virtual std::size_t NameLength(const std::string& name) const {
    return std::max<std::size_t>(name.size(), 1);
  }

  // Whether a name lies in its file's record, where one that takes the same room covers it (NTFS), and
  // nothing else covers what is left of it in the folder.
  virtual bool NamesLieInRecords() const { return false; }

  // The folder's own named streams, as for File.
  virtual Status ListStreams(std::vector<std::string>& names) = 0;
  virtual Status OpenStream(const std::string& name, Access access, std::unique_ptr<File>& stream) = 0;

  // Renames and removes an entry that isn't open: an empty folder, a link (itself, never its target), a
  // filler file. The entry must be of the kind told.
  virtual Status Rename(const Entry& entry, const std::string& newName) = 0;
  virtual Status Remove(const Entry& entry) = 0;

  // Makes the removals and renamings in this folder durable.
  virtual Status Flush() = 0;

  virtual Status Space(SpaceInfo& space) = 0;

  // --- For filling free space ---

  // Makes a file without a name, of which nothing is left once it is closed, however the process ends.
  // Refused where there is no such thing.
  virtual Status AddNameless(Access, std::unique_ptr<File>&) {
    return Status::Refusal("there are no files without names");
  }
  // Makes a file that goes with its last handle where the system can promise that, and else stays until
  // Remove. Nobody else may open it meanwhile.
  virtual Status AddFiller(const std::string& name, Access access, std::unique_ptr<File>& file) {
    return AddFile(name, access, file);
  }
  // True if a filler has to stay open: its name goes, or has gone, with that.
  virtual bool FillersGoWhenClosed() const { return false; }
  // Has files that are added from now on stored as they are, neither compressed nor sparse, whatever those of
  // the folder above are. What can't be had shows in the files' FileInfo.
  virtual void StoreAsIs() {}
  // Keeps other runs of the engine from taking the folder for one that nobody uses. False if another has it.
  virtual bool Lock() { return true; }
  // Has the file system give out what it keeps back for its own needs, until the answer goes. Null where it
  // keeps nothing, or that isn't allowed.
  virtual std::shared_ptr<void> GiveOutReserve() { return nullptr; }
  // The length of the table of records in which the file system keeps small contents, names and places of all
  // files, and which never shrinks; false if it has none, or it isn't told.
  virtual bool RecordTable(std::uint64_t&) { return false; }
  // Whether a new file is said to get the next free record behind that of the file made last, around the
  // table; FileId::file[0] is then the record's number.
  virtual bool GivesRecordsInTurn() const { return false; }
  // Tells the device which space is free, of the whole file system. `mayGoOn` is asked several times a
  // second; after a no the rest is left. Refused where it isn't allowed, or the device takes no such call.
  virtual Status TrimFreeSpace(const std::function<bool()>&) {
    return Status::Refusal("free space can't be trimmed here");
  }

  // What the folder lies on; what can't be found out is unknown.
  virtual void Storage(StorageInfo& storage);

  // False where the file system clears a name when its entry goes, or it isn't known.
  virtual bool RoomForNames(NameRoom& room) {
    room = {};
    return false;
  }

  // Writes over blocks close to the folder that hold nothing any more, once what was removed from it is
  // durable: among them are mostly those of the folder itself, which were given back with the names in them.
  // Only where a folder isn't written to its place before it gives back its room (xfs). `mayGoOn` is asked
  // several times a second; after a no the rest is left.
  virtual void CoverFreedBlocks(const std::function<bool()>&) {}

  // The log of the file system, which has the names too, for Device::ClearTraces: a number that no other's
  // has, or 0 where there is none that anything could be done about.
  virtual std::uint64_t Log() const { return 0; }
};

// Reads and writes that are under way together. Every one that was begun ends by a Wait; neither its file
// nor its memory may go before.
class TransferQueue {
 public:
  struct Ended {
    std::size_t tag = 0;
    std::size_t bytes = 0;  // that were read or written; fewer than asked for is no failure
    Status status;
  };

  TransferQueue() = default;
  TransferQueue(const TransferQueue&) = delete;
  TransferQueue& operator=(const TransferQueue&) = delete;
  virtual ~TransferQueue() = default;

  // How many may be under way.
  virtual std::size_t Depth() const = 0;

  // As File::Write and File::Read, with the outcome told by Wait together with `tag`.
  virtual void BeginWrite(File& file, std::uint64_t offsetBytes, std::span<const std::byte> data,
                          std::size_t tag) = 0;
  virtual void BeginRead(File& file, std::uint64_t offsetBytes, std::span<std::byte> data,
                         std::size_t tag) = 0;

  // Waits until one has ended, in whatever order. Only to be called while one is under way.
  virtual Ended Wait() = 0;
  // The same, and returns false when none has ended by `limit`, where the queue can do that.
  virtual bool WaitFor(std::chrono::milliseconds, Ended& ended) {
    ended = Wait();
    return true;
  }
  // Has the system give up what is under way, as far as it can. All of it ends by Wait as ever.
  virtual void GiveUp() {}
};

class Device {
 public:
  Device() = default;
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;
  virtual ~Device() = default;

  // Opens the folder that a user named; links on the way to it are followed as everywhere.
  virtual Status OpenFolder(const std::string& path, std::unique_ptr<Folder>& folder) = 0;

  // What is at `path` now, itself and not what it leads to if it is a link. Opens nothing for writing.
  virtual Status Identify(const std::string& path, EntryId& id);

  // Splits a path into the folder that holds the entry and the entry's name. `name` is empty when the path
  // is a root, which has no folder above it. Refused for what can't be an entry (an empty path, "..").
  virtual Status Split(const std::string& path, std::string& folderPath, std::string& name) const = 0;
  virtual std::string Join(const std::string& folderPath, const std::string& name) const = 0;

  // How many may be open at once, so that enough is left for the rest of the process.
  struct Limits {
    std::size_t files = SIZE_MAX;
    std::size_t folders = SIZE_MAX;  // that are kept for something to be done in them later
    std::size_t levels = SIZE_MAX;   // on the way from the top of a walk down to where it is
  };
  virtual Limits OpenAtOnce() const { return {}; }

  // Whether a folder can be renamed while folders inside it are open, and these can be worked on after.
  virtual bool RenamesOpenFolders() const { return false; }

  // A queue for files of this device; the device's own way of doing several things at once, or one after
  // the other where it has none.
  virtual std::unique_ptr<TransferQueue> MakeQueue();

  // File::Flush, File::FlushEntry and Folder::Flush for several, each with its own outcome in the element
  // of `outcomes` with the same index (as many as files or folders). A device for which one flush can serve
  // all of them does just that; so the last one must be the one that was changed last.
  virtual void FlushMany(std::span<File* const> files, std::span<Status> outcomes);
  virtual void FlushEntries(std::span<File* const> files, std::span<Status> outcomes);
  virtual void FlushFolders(std::span<Folder* const> folders, std::span<Status> outcomes);

  // Makes durable what has become of the entries of these folders since they were opened, those among it
  // that are gone by now. May take in more of the file system than they are.
  virtual void FlushRemovals(std::span<Folder* const> folders, std::span<Status> outcomes) {
    FlushFolders(folders, outcomes);
  }

  // Before folders are removed, all of the file system of `folder`, and after what was removed from them is
  // durable: writes them to their place. Freed while a change is only in a journal, a folder's block would
  // keep the old names.
  virtual void WriteHome(Folder& folder);

  // After entries of `folder`, or of other folders with the same log, are gone for good: clears what the log
  // keeps of them. What can't be done, but puts no content at risk, is told in `note`, as a sentence. A
  // failure is that content may be left. `mayGoOn` is asked several times a second; after a no what is left
  // to be done is left, and told.
  virtual Status ClearTraces(Folder& folder, const std::function<bool()>& mayGoOn, std::string& note);
};

struct DeviceOptions {
  // Do without the system's way of having several transfers under way, as where it isn't allowed.
  bool oneTransferAtATime = false;
  // Overwrite also where it isn't known whether new data go to the place of the old ones, as the user
  // insists. What is known to go elsewhere is refused all the same.
  bool trustFileSystem = false;
};

// The device of the system that this program was built for.
std::unique_ptr<Device> MakeSystemDevice(const DeviceOptions& options = {});

}  // namespace zq::engine
