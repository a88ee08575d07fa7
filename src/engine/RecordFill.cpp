#include "engine/RecordFill.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

namespace zq::engine {
namespace {

// The longest contents that records of 4 KiB and of 1 KiB hold, about, and the steps down from there.
constexpr std::size_t kSizes[] = {3'700, 3'400, 720, 680, 640, 600, 560, 512, 448, 384, 256, 128};
constexpr std::size_t kLeastSize = 16;
// A file system that keeps tiny files without taking clusters for them might never be full of them, and one
// that gives records in turn might never come back to the first.
constexpr std::size_t kMostFillers = 200'000;
constexpr std::size_t kMostInTurn = 4'000'000;
constexpr std::size_t kGroup = 64;
// Of a group these stay until the next one is filled. The map of the records has eight to a byte, and ntfs-3g
// passes over the rest of a byte when one in front of it has become free.
constexpr std::size_t kKeptInTurn = 8;
// So many are kept open where they needn't be: opening is what takes the time.
constexpr std::size_t kMostOpen = 2'048;
// What a name may take in the fillers' folder, where only the free space tells that the table grows. A record
// takes a KiB at least, and a name a third of that at most.
constexpr std::uint64_t kNameBytes = 640;
// The shares of the work, of which only the second can be known beforehand.
constexpr double kFilling = 0.3;
constexpr double kPasses = 0.6;
constexpr double kRemoval = 0.1;

}  // namespace

void RecordFill::Run() {
  size_ = FindSize();
  if (size_ == 0) return;
  Require(stream_.Seed(operation_.seeds), "Seeding the random data for", "small files");
  goesAround_ = root_.GivesRecordsInTurn() && lap_.GoesAround();
  tableIsTold_ = root_.RecordTable(tableAtStart_);
  bool hasMore = true;
  while (hasMore) {
    hasMore = Fill();
    Overwrite();
    if (hasMore && goesAround_) RemoveBut(kKeptInTurn);
  }
  isDone_ = true;
  RemoveAll();
}

std::uint64_t RecordFill::FreeBytes() {
  SpaceInfo space;
  Require(root_.Space(space), "Asking for the free space of", "the drive");
  return space.freeBytes;
}

// 0: contents always get clusters.
std::size_t RecordFill::FindSize() {
  if (!StaysInRecord(kLeastSize)) return 0;
  const auto* const found = std::find_if(std::begin(kSizes), std::end(kSizes),
                                         [this](std::size_t size) { return StaysInRecord(size); });
  return found == std::end(kSizes) ? kLeastSize : *found;
}

// Told by the file system, or else by whether there is a cluster less.
bool RecordFill::StaysInRecord(std::size_t sizeBytes) {
  tell_(0);
  SpaceInfo before;
  Require(root_.Space(before), "Asking for the free space of", "the drive");
  Filler filler;
  if (!place_.Add(Access::Cached, filler)) return false;
  const std::vector<std::byte> content(sizeBytes, std::byte{0});
  std::size_t written = 0;
  FileInfo info;
  FileId id;
  Status status = filler.file->Write(0, content, written);
  if (status.Ok()) status = filler.file->Flush();
  if (status.Ok()) status = filler.file->Info(info);
  if (status.Ok()) status = filler.file->Identity(id);
  SpaceInfo after;
  if (status.Ok()) status = root_.Space(after);
  place_.Remove(filler);
  if (status.trouble == Trouble::NoSpace) return false;
  Require(status, "Writing", filler.path);
  const bool stays =
      info.inRecord || after.freeBytes + std::max<std::uint64_t>(before.clusterBytes, 1) > before.freeBytes;
  if (stays) lap_.Tried(id.file[0]);
  return stays;
}

bool RecordFill::Fill() {
  freeBefore_ = FreeBytes();
  std::size_t flushed = fillers_.size();
  bool isTooMany = false;
  while (!lapIsOver_ && !isTooMany && AddOne()) {
    tell_(Share(0));
    if (fillers_.size() - flushed < kGroup) continue;
    FlushGroup(flushed, fillers_.size());
    if (TableGrows(fillers_.size() - flushed)) return false;
    flushed = fillers_.size();
    if (goesAround_ && !lapIsOver_ && removedCount_ < kMostInTurn) return true;
    isTooMany = fillers_.size() >= kMostFillers || removedCount_ >= kMostInTurn;
  }
  FlushGroup(flushed, fillers_.size());
  if (!lapIsOver_ && !TableGrows(fillers_.size() - flushed)) {
    operation_.AddNote(
        "Not all records of deleted small files could be reached: there were too many of them, or "
        "the drive was full.");
  }
  return false;
}

double RecordFill::Share(double part) const {
  const auto filled = static_cast<double>(fillers_.size() - overwrittenCount_);
  if (!goesAround_) return part > 0 ? kFilling + kPasses * part : kFilling * filled / (filled + 2'000);
  const double before = static_cast<double>(removedCount_ + overwrittenCount_);
  const double all = before + filled * (kFilling + (1 - kFilling) * part);
  return all / (all + 2'000);
}

// `count` is that of the fillers that were added since it was asked last.
bool RecordFill::TableGrows(std::size_t count) {
  std::uint64_t table = 0;
  if (tableIsTold_ && root_.RecordTable(table)) return table > tableAtStart_;
  const std::uint64_t free = FreeBytes();
  const std::uint64_t before = std::exchange(freeBefore_, free);
  return free + count * kNameBytes < before;
}

bool RecordFill::AddOne() {
  Filler filler;
  try {
    if (!place_.Add(Access::Cached, filler)) return false;
  } catch (const Failure& failure) {
    if (failure.trouble == Trouble::TooManyOpen) return false;
    throw;
  }
  // From now on it is one that is removed.
  fillers_.push_back(std::move(filler));
  Filler& added = fillers_.back();
  ++openCount_;
  std::size_t written = 0;
  const Status status =
      added.file->Write(0, Content(operation_.passes.front(), stream_.Take(BlockCount(size_)), 0), written);
  if (status.trouble == Trouble::NoSpace) {
    place_.Remove(added);
    fillers_.pop_back();
    --openCount_;
    return false;
  }
  Require(status, "Writing", added.path);
  if (written < size_) throw MakeFailure("Writing", added.path, "the device takes no more data");
  if (!goesAround_) return true;
  FileId id;
  Require(added.file->Identity(id), "Looking at", added.path);
  lapIsOver_ = lap_.Took(id.file[0]);
  goesAround_ = lap_.GoesAround();
  return true;
}

void RecordFill::FlushGroup(std::size_t first, std::size_t end) {
  std::vector<File*> files;
  for (std::size_t i = first; i < end; ++i) files.push_back(fillers_[i].file.get());
  if (files.empty()) return;
  std::vector<Status> outcomes(files.size());
  operation_.device.FlushMany(files, outcomes);
  for (std::size_t i = first; i < end; ++i) Require(outcomes[i - first], "Flushing", fillers_[i].path);
  if (place_.StayOpen() || openCount_ <= kMostOpen) return;
  for (std::size_t i = first; i < end; ++i) fillers_[i].file.reset();
  openCount_ -= end - first;
}

void RecordFill::ForEachGroup(bool flushes,
                              const std::function<void(Filler& filler, std::size_t index)>& work) {
  for (std::size_t first = overwrittenCount_; first < fillers_.size(); first += kGroup) {
    const std::size_t end = std::min(first + kGroup, fillers_.size());
    for (std::size_t i = first; i < end; ++i) {
      Filler& filler = fillers_[i];
      if (!filler.file) {
        place_.Reopen(filler, Access::Cached);
        ++openCount_;
      }
      work(filler, i);
    }
    if (flushes) FlushGroup(first, end);
  }
}

void RecordFill::Overwrite() {
  const std::size_t passCount = operation_.passes.size();
  const std::size_t count = fillers_.size() - overwrittenCount_;
  const std::uint64_t blocks = BlockCount(size_);
  std::uint64_t firstBlock = 0;
  const auto blockOf = [&](std::size_t index) { return firstBlock + (index - overwrittenCount_) * blocks; };
  const auto done = [&](std::size_t pass, std::size_t index) {
    const double part = (static_cast<double>(index - overwrittenCount_) + 1) / static_cast<double>(count);
    tell_(Share((static_cast<double>(pass - 1) + part) / static_cast<double>(passCount)));
  };
  for (std::size_t pass = 1; pass < passCount; ++pass) {
    firstBlock = stream_.Take(blocks * count);
    ForEachGroup(true, [&](Filler& filler, std::size_t index) {
      Write(filler, operation_.passes[pass], blockOf(index));
      done(pass, index);
    });
  }
  ForEachGroup(false, [&](Filler& filler, std::size_t index) {
    Verify(filler, operation_.passes.back(), blockOf(index));
    done(passCount, index);
  });
  overwrittenCount_ = fillers_.size();
}

std::span<const std::byte> RecordFill::Content(const Pass& pass, std::uint64_t block, std::size_t offset) {
  const std::span<std::byte> content = operation_.buffer.Part(offset, size_);
  if (pass.random) {
    stream_.Read(block, content);
  } else {
    std::fill(content.begin(), content.end(), static_cast<std::byte>(pass.pattern));
  }
  return content;
}

void RecordFill::Write(Filler& filler, const Pass& pass, std::uint64_t block) {
  std::size_t written = 0;
  Require(filler.file->Write(0, Content(pass, block, 0), written), "Writing", filler.path);
  if (written < size_) throw MakeFailure("Writing", filler.path, "the device takes no more data");
}

void RecordFill::Verify(Filler& filler, const Pass& pass, std::uint64_t block) {
  constexpr std::size_t kOther = 64 << 10;  // in the buffer
  const std::span<const std::byte> expected = Content(pass, block, 0);
  const std::span<std::byte> found = operation_.buffer.Part(kOther, size_);
  std::size_t got = 0;
  Require(filler.file->DropCache(), "Reading back", filler.path);
  Require(filler.file->Read(0, found, got), "Reading back", filler.path);
  if (got != size_ || std::memcmp(expected.data(), found.data(), size_) != 0) {
    throw MakeFailure("Reading back", filler.path, "the device doesn't hold what was written");
  }
}

void RecordFill::RemoveBut(std::size_t keptCount) noexcept {
  const std::size_t count = fillers_.size() - std::min(keptCount, fillers_.size());
  for (std::size_t i = 0; i < count; ++i) {
    Filler& filler = fillers_[i];
    if (filler.file) --openCount_;
    try {
      place_.Remove(filler);
    } catch (const std::bad_alloc&) {
      // The next run finds it.
    }
    const double part = static_cast<double>(i + 1) / static_cast<double>(count);
    removing_(isDone_ ? kFilling + kPasses + kRemoval * part : 0);
  }
  fillers_.erase(fillers_.begin(), fillers_.begin() + static_cast<std::ptrdiff_t>(count));
  removedCount_ += count;
  overwrittenCount_ -= std::min(count, overwrittenCount_);
}

}  // namespace zq::engine
