#include "engine/FileWipe.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>

namespace zq::engine {
namespace {

using OpenCall = std::function<Status(Access access, std::unique_ptr<File>& file)>;

// Rounded up to whole clusters, so that the slack behind the end is covered too.
std::uint64_t Extent(const FileInfo& info, const std::string& path) {
  if (info.inRecord) return info.lengthBytes;
  if (info.room) {
    return info.room->empty()
               ? info.lengthBytes
               : std::max(info.lengthBytes, info.room->back().offsetBytes + info.room->back().sizeBytes);
  }
  const std::uint64_t bytes = std::max(info.lengthBytes, info.allocatedBytes);
  const std::uint64_t cluster = std::max<std::uint32_t>(info.clusterBytes, 1);
  const std::uint64_t rest = bytes % cluster;
  if (rest == 0) return bytes;
  if (bytes > std::numeric_limits<std::uint64_t>::max() - cluster) {
    throw MakeFailure("Opening", path, "its length can't be right");
  }
  const std::uint64_t whole = bytes + (cluster - rest);
  return info.mostBytes == 0 ? whole : std::max(bytes, std::min(whole, info.mostBytes));
}

// Opens a file or a stream in the way that fits it, and learns how much of it there is to cover.
Overwriter OpenForOverwriting(Operation& operation, const std::string& path, const OpenCall& open,
                              FileInfo& info) {
  std::unique_ptr<File> file;
  std::uint64_t extent = 0;
  // What writes have to be able to end at.
  const auto end = [&] {
    return !info.room           ? extent
           : info.room->empty() ? 0
                                : info.room->back().offsetBytes + info.room->back().sizeBytes;
  };
  const auto openAs = [&](Access access) {
    file.reset();
    Require(open(access, file), "Opening", path);
    Require(file->Info(info), "Looking at", path);
    if (!info.notInPlace.empty()) {
      throw MakeFailure("Opening", path, "it can't be overwritten in place, since " + info.notInPlace);
    }
    extent = Extent(info, path);
  };
  openAs(Access::Direct);
  // Only a cached write can be as short as the content of a record, and only a cached one leaves it there.
  if (file->Alignment() > 1 && (info.inRecord || end() % file->Alignment() != 0)) openAs(Access::Cached);

  Overwriter part(operation, std::move(file), path);
  part.SetExtent(extent);
  if (info.room) part.SetRoom(*info.room);
  if (!info.caveat.empty()) operation.AddNote(info.caveat);
  if (info.mergesEqual) part.SetRandomOnly();
  return part;
}

void CheckLength(Overwriter& part, std::uint64_t lengthBytes, FileInfo& info) {
  constexpr char kLooking[] = "Looking again at";
  Require(part.TheFile().Info(info), kLooking, part.Path());
  if (info.lengthBytes != lengthBytes) {
    throw MakeFailure(kLooking, part.Path(), "another program has changed its length during the wipe");
  }
  if (!info.notInPlace.empty()) throw MakeFailure(kLooking, part.Path(), info.notInPlace);
}

void RemoveOverwritten(std::vector<Overwriter>& streams, std::size_t first) {
  for (std::size_t i = first; i < streams.size(); ++i) {
    const std::string path = streams[i].Path() + " (already overwritten)";
    Require(streams[i].TheFile().SetLength(0), "Shortening", path);
    Require(streams[i].TheFile().Remove(), "Removing", path);
  }
  while (streams.size() > first) streams.pop_back();
}

}  // namespace

void FileProgress::Start(std::uint64_t lengthBytes, std::uint64_t workBytes) {
  // Halved until it fits: the share stays right, and the text still shows a number of some meaning.
  while (lengthBytes > std::numeric_limits<std::int32_t>::max()) lengthBytes /= 2;
  bytesTotal_ = static_cast<std::int32_t>(lengthBytes);
  workBytes_ = workBytes;
  workDone_ = 0;
  Raise(0);
}

void FileProgress::Worked(std::uint64_t bytes) {
  workDone_ += bytes;
  if (!operation_.timer.IsDue()) return;
  const double share =
      workBytes_ == 0 ? 1.0 : static_cast<double>(workDone_) / static_cast<double>(workBytes_);
  // The total itself is kept for the end, when the file is gone.
  const auto done = static_cast<std::int32_t>(share * bytesTotal_);
  Raise(std::clamp(done, 0, std::max(bytesTotal_ - 1, 0)));
}

void FileProgress::Finish() {
  operation_.timer.Raised();
  operation_.events.WipeProgress(bytesTotal_, bytesTotal_, 100, item_);
}

void FileProgress::Raise(std::int32_t bytesDone) {
  const std::int32_t percent =
      bytesTotal_ == 0 ? 0 : static_cast<std::int32_t>(std::int64_t{bytesDone} * 100 / bytesTotal_);
  operation_.timer.Raised();
  operation_.events.WipeProgress(bytesDone, bytesTotal_, percent, item_);
  operation_.LookForCancel();
}

Failure NotMeant(const std::string& path) {
  return MakeFailure("Opening", path, "it isn't any more what was to be wiped: something else is there now");
}

FileWipe::FileWipe(Operation& operation, Place& place, std::string name, std::string path,
                   std::optional<FileId> meant)
    : operation_(operation),
      place_(place),
      item_{std::move(path), std::move(name), ItemKind::File},
      nameNow_(item_.name),
      meant_(meant),
      progress_(operation, item_) {
}

void FileWipe::Open() {
  parts_.push_back(OpenForOverwriting(
      operation_, item_.path,
      [this](Access access, std::unique_ptr<File>& file) {
        return place_.folder->OpenFile(item_.name, access, file);
      },
      info_));
  if (meant_ && Identity() != *meant_) throw NotMeant(item_.path);
  lengthsBytes_.push_back(info_.lengthBytes);

  std::vector<std::string> streams;
  Require(parts_.front().TheFile().ListStreams(streams), "Listing the streams of", item_.path);
  for (const std::string& stream : streams) {
    FileInfo streamInfo;
    parts_.push_back(OpenForOverwriting(
        operation_, item_.path + ':' + stream,
        [&](Access access, std::unique_ptr<File>& file) {
          return parts_.front().TheFile().OpenStream(stream, access, file);
        },
        streamInfo));
    lengthsBytes_.push_back(streamInfo.lengthBytes);
  }
}

std::uint64_t FileWipe::CoveredBytes() const {
  std::uint64_t bytes = 0;
  for (const Overwriter& part : parts_) bytes += part.CoveredBytes();
  return bytes;
}

void FileWipe::Start() {
  progress_.Start(info_.lengthBytes, CoveredBytes() * (operation_.passes.size() + 1));
}

void FileWipe::CheckUnwritten() {
  FileInfo info;
  for (std::size_t i = 0; i < parts_.size(); ++i) CheckLength(parts_[i], lengthsBytes_[i], info);
}

// The passes have lengthened each part to its extent. The file itself comes last, so that its facts stay.
void FileWipe::CheckOverwritten() {
  for (std::size_t i = parts_.size(); i > 0; --i)
    CheckLength(parts_[i - 1], parts_[i - 1].ExtentBytes(), info_);
}

void FileWipe::Shorten() {
  CheckOverwritten();
  hiddenPath_ = item_.path + " (already overwritten)";
  RemoveOverwritten(parts_, 1);
  Require(parts_.front().TheFile().SetLength(0), "Shortening", hiddenPath_);
}

const FileId& FileWipe::Identity() {
  if (!id_) {
    FileId id;
    Require(parts_.front().TheFile().Identity(id), "Looking at", item_.path);
    id_ = id;
  }
  return *id_;
}

bool FileWipe::IsSameFileAs(FileWipe& other) {
  return HasSeveralNames() && other.HasSeveralNames() && Identity() == other.Identity();
}

void FileWipe::Hide() {
  File& file = parts_.front().TheFile();
  if (!file.SetDates().Ok()) {
    operation_.AddNote("The dates of what was wiped could not be changed everywhere and may still be found.");
  }
  HideName(operation_, *place_.folder, nameNow_, hiddenPath_, place_.shortestName,
           [&](const std::string& name) {
             Status status = file.Rename(name);
             if (status.Ok()) nameNow_ = name;
             return status;
           });
  hiddenPath_ = item_.path + " (already overwritten, now named " + nameNow_ + ')';
}

void FileWipe::Remove() {
  const bool mayHaveOtherNames = HasSeveralNames() || !operation_.namesLeft.empty();
  if (mayHaveOtherNames) Identity();
  Require(parts_.front().TheFile().Remove(), "Removing", hiddenPath_);
  parts_.clear();
  if (HasSeveralNames()) {
    operation_.namesLeft[*id_] = info_.names - 1;
  } else if (mayHaveOtherNames) {
    operation_.namesLeft.erase(*id_);
  }
}

void FileWipe::Finish() {
  progress_.Finish();
  operation_.TellWiped(item_);
}

void WipeFolderStreams(Operation& operation, Folder& folder, const std::string& path) {
  std::vector<std::string> names;
  Require(folder.ListStreams(names), "Listing the streams of", path);
  for (const std::string& name : names) {
    std::string streamPath = path;
    streamPath.append(":").append(name);
    FileInfo info;
    std::vector<Overwriter> parts;
    parts.push_back(OpenForOverwriting(
        operation, streamPath,
        [&](Access access, std::unique_ptr<File>& file) { return folder.OpenStream(name, access, file); },
        info));
    const Item item{streamPath, streamPath, ItemKind::Other};
    FileProgress progress(operation, item);
    progress.Start(info.lengthBytes, parts.front().CoveredBytes() * (operation.passes.size() + 1));
    for (const Pass& pass : operation.passes) {
      parts.front().WritePass(pass, progress);
      parts.front().Flush();
      progress.Worked(0);
    }
    parts.front().Verify(progress);
    CheckLength(parts.front(), parts.front().ExtentBytes(), info);
    RemoveOverwritten(parts, 0);
  }
}

}  // namespace zq::engine
