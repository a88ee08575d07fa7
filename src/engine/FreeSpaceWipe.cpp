#include "engine/FreeSpaceWipe.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

#include "engine/RecordFill.h"

namespace zq::engine {
namespace {

// What a stage leaves, at most, and which part of the free space at most.
struct Leave {
  std::uint64_t bytes;
  std::uint64_t part;
};
constexpr Leave kStages[] = {
    {std::uint64_t{256} << 20, 8},
    {std::uint64_t{16} << 20, 64},
    {0, 1},
};
// Below the length at which a file ends on the file systems with the least (FAT).
constexpr std::uint64_t kFillerBytes = std::uint64_t{2} << 30;
// How often space that was freed meanwhile is taken in. A drive in use never comes to rest.
constexpr int kMostRounds = 4;
// Less growth than this is the file system's own coming and going.
constexpr std::uint64_t kGrowthBytes = std::uint64_t{1} << 20;
// So much is written before the drive is asked again how much is free.
constexpr std::uint64_t kAskAgainBytes = std::uint64_t{256} << 20;
// How much of a file is given back between two events.
constexpr std::uint64_t kGivenBackAtOnce = std::uint64_t{1} << 30;
// The records' share of what is told, where there are any.
constexpr double kRecordShare = 0.03;

std::int32_t ToKb(double bytes) {
  const double kb = bytes / 1024.0;
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  return kb >= static_cast<double>(kMost) ? kMost : static_cast<std::int32_t>(kb);
}

// What a write on a full drive is told when the file needs one record more, for the list of its pieces, and
// there is none: by ntfs-3g that this exists already, of which Wine makes a general failure. Where it is
// something worse, the flush of the file tells it, or a pass.
bool SaysNoRecord(const Status& status) {
  constexpr std::int32_t kGeneralFailure = 31;
  return status.trouble == Trouble::Exists || status.code == kGeneralFailure;
}

std::string InMiB(std::uint64_t bytes) {
  return std::to_string((bytes + (std::uint64_t{1} << 20) - 1) >> 20) + " MiB";
}

}  // namespace

class FreeSpaceWipe::PassMeter final : public WorkMeter {
 public:
  explicit PassMeter(FreeSpaceWipe& wipe) : wipe_(wipe) {}

  void Worked(std::uint64_t bytes) override {
    wipe_.workedBytes_ += static_cast<double>(bytes);
    wipe_.TellIfDue(wipe_.ShareOfWork());
  }

 private:
  FreeSpaceWipe& wipe_;
};

void FreeSpaceWipe::Run(const std::string& drive) {
  std::optional<Failure> failure;
  bool cancelled = false;
  path_ = drive;
  Require(operation_.device.OpenFolder(drive, root_), "Opening", drive);
  place_.emplace(operation_, *root_, drive);
  try {
    Work();
  } catch (const Failure& caught) {
    failure = caught;
  } catch (const Cancelled&) {
    cancelled = true;
  } catch (...) {
    // Out of memory, most likely: the drive must not stay full all the same.
    ReleaseAll();
    throw;
  }
  ReleaseAll();
  try {
    place_->Close();
  } catch (const Failure& left) {
    // A drive that stays full is what the user has to know first.
    throw failure ? Failure{failure->code, failure->text + "; and " + left.text} : left;
  }
  if (failure) throw Failure(*failure);
  if (cancelled) throw Cancelled{};
  Trim();
  round_ = 0;
  growing_ = false;
  share_ = 1;
  bytesOfRound_ += bytesBefore_;
  bytesBefore_ = 0;
  Tell();
  place_.reset();
  operation_.traces.Add(std::move(root_), path_, false);
}

void FreeSpaceWipe::Work() {
  LookAtSpace();
  Tell();
  const std::size_t left = RemoveLeftFillers(*root_, [this] {
    TellIfDue(0);
    return true;
  });
  if (left > 0) LookAtSpace();
  if (keptBytes_ > kGrowthBytes) {
    operation_.AddNote("Of the free space " + InMiB(keptBytes_) +
                       " are kept for the administrator and were not overwritten.");
  }
  {
    RecordFill records(
        operation_, *place_, *root_,
        [this](double share) {
          if (share > 0) recordShare_ = kRecordShare;
          TellIfDue(recordShare_ * share);
        },
        [this](double share) {
          share_ = std::max(share_, recordShare_ * share);
          StillAlive();
        });
    records.Run();
  }
  for (round_ = 0; round_ < kMostRounds; ++round_) {
    share_ = round_ == 0 ? share_ : 0;
    recordShare_ = round_ == 0 ? recordShare_ : 0;
    WipeRound();
    // All is given back by now but what the first stage holds.
    const std::uint64_t expected = filledBytes_ - held_.back().filledBytes;
    const std::uint64_t free = FreeBytes();
    if (free < expected + kGrowthBytes || round_ + 1 == kMostRounds) break;
    bytesBefore_ += bytesOfRound_ - std::min(bytesOfRound_, expected);
    bytesOfRound_ = free;
  }
}

// With what the file system keeps back for itself, where it can be had later.
void FreeSpaceWipe::LookAtSpace() {
  const std::shared_ptr<void> reserve = root_->GiveOutReserve();
  SpaceInfo space;
  Require(root_->Space(space), "Asking for the free space of", path_);
  if (space.keptByQuota && space.keptBytes > kGrowthBytes) {
    throw MakeFailure("Overwriting the free space of", path_,
                      "by a quota this user may fill only " + InMiB(space.freeBytes) + " of the " +
                          InMiB(space.freeBytes + space.keptBytes) + " that are free");
  }
  keptBytes_ = space.keptBytes;
  bytesOfRound_ = space.freeBytes;
  clusterBytes_ = std::max<std::uint32_t>(space.clusterBytes, 1);
  root_->Storage(storage_);
}

void FreeSpaceWipe::WipeRound() {
  filledBytes_ = 0;
  workedBytes_ = 0;
  const std::uint64_t free = FreeBytes();
  std::shared_ptr<void> reserve;
  for (const Leave& leave : kStages) {
    stages_.emplace_back();
    if (leave.bytes == 0) reserve = root_->GiveOutReserve();
    FillStage(stages_.back(), leave.bytes == 0 ? 0 : std::min(leave.bytes, free / leave.part));
  }
  Settle(FreeBytes());
  while (!stages_.empty()) {
    OverwriteStage(stages_.back());
    // The lists of the files' pieces lie in blocks, too, which a journal would write to their place only
    // later: never, once they are free again, and what stood there before would stay.
    place_->FlushFolder();
    operation_.device.WriteHome(*root_);
    if (stages_.size() == 1) {
      held_.push_back(std::move(stages_.back()));
    } else {
      ReleaseStage(stages_.back());
    }
    stages_.pop_back();
    // Not before there is room again from which it could be made.
    reserve.reset();
  }
}

void FreeSpaceWipe::FillStage(Stage& stage, std::uint64_t leaveBytes) {
  while (FillOneFile(stage, leaveBytes, Access::Direct)) {
  }
  // What has less than a cluster, on file systems that keep several ends of files in one.
  if (leaveBytes == 0) FillOneFile(stage, 0, Access::Cached);
}

bool FreeSpaceWipe::FillOneFile(Stage& stage, std::uint64_t leaveBytes, Access access) {
  if (FreeBytes() <= leaveBytes && leaveBytes > 0) return false;
  Filler made;
  if (!place_->Add(access, made)) return false;
  try {
    stage.fillers.push_back({made.name, Overwriter(operation_, nullptr, made.path)});
  } catch (...) {
    place_->Remove(made);
    throw;
  }
  Overwriter& filler = stage.fillers.back().writer;
  filler.Reopen(std::move(made.file));
  const std::uint64_t taken = FillFile(filler, leaveBytes, access);
  stage.filledBytes += taken;
  return taken >= kFillerBytes / 2 || (taken > 0 && leaveBytes == 0);
}

std::uint64_t FreeSpaceWipe::FillFile(Overwriter& filler, std::uint64_t leaveBytes, Access access) {
  const std::size_t smallest =
      access == Access::Cached
          ? 1
          : std::clamp<std::size_t>(std::max<std::size_t>(clusterBytes_, filler.TheFile().Alignment()), 1,
                                    std::size_t{64} << 10);
  std::size_t largest =
      access == Access::Cached ? std::max<std::size_t>(clusterBytes_ / 2, 1) : Pace::kLargestUnit;
  filler.BeginGrowing(operation_.passes.front());
  bool wasFull = false;
  std::uint64_t mayTake = 0;  // before the drive is asked again
  while (filler.ExtentBytes() < kFillerBytes) {
    if (leaveBytes > 0 && mayTake < smallest) {
      const std::uint64_t free = FreeBytes();
      if (free < leaveBytes + smallest) break;
      mayTake = std::min(free - leaveBytes, kAskAgainBytes);
    }
    std::size_t size = std::min(filler.UnitBytes(), largest);
    if (leaveBytes > 0) size = static_cast<std::size_t>(std::min<std::uint64_t>(size, mayTake));
    size = std::max(size - size % smallest, smallest);
    std::size_t grown = 0;
    const Status status = filler.Grow(size, grown);
    filledBytes_ += grown;
    workedBytes_ += static_cast<double>(grown);
    mayTake -= std::min<std::uint64_t>(mayTake, grown);
    if (status.trouble == Trouble::NoSpace) {
      if (size <= smallest) break;
      largest = size / 2;
      wasFull = true;
    } else if (wasFull && SaysNoRecord(status)) {
      break;
    } else {
      Require(status, "Writing", filler.Path());
    }
    NoticeGrowth();
    TellIfDue(ShareOfWork());
  }
  filler.Flush();
  return filler.ExtentBytes();
}

// The fill takes in what is freed meanwhile by itself; only the total has to follow.
void FreeSpaceWipe::NoticeGrowth() {
  if (filledBytes_ < bytesOfRound_ + kGrowthBytes) return;
  bytesOfRound_ = filledBytes_ + FreeBytes();
  growing_ = true;
}

// The drive is full, so all is known. What differs by little is what the file system needs for itself.
void FreeSpaceWipe::Settle(std::uint64_t unreachedBytes) {
  growing_ = false;
  constexpr std::uint64_t kPartForItself = 512;
  const std::uint64_t itsOwn = kGrowthBytes + bytesOfRound_ / kPartForItself;
  if (filledBytes_ + itsOwn < bytesOfRound_) bytesOfRound_ = filledBytes_;
  if (unreachedBytes > itsOwn) {
    operation_.AddNote("Of the free space " + InMiB(unreachedBytes) +
                       " are kept back by the file system and were not overwritten.");
  }
}

void FreeSpaceWipe::OverwriteStage(Stage& stage) {
  const std::size_t passCount = operation_.passes.size();
  PassMeter meter(*this);
  CheckPlaces(stage, true);
  for (std::size_t pass = 1; pass <= passCount; ++pass) {
    for (Large& filler : stage.fillers) {
      if (pass < passCount) {
        filler.writer.WritePass(operation_.passes[pass], meter);
        filler.writer.Flush();
      } else {
        filler.writer.Verify(meter);
      }
      meter.Worked(0);
    }
  }
  CheckPlaces(stage, false);
}

// Remembers where the fillers lie, or compares: what has been moved was written in two places, and in neither
// by all passes.
void FreeSpaceWipe::CheckPlaces(Stage& stage, bool first) {
  for (Large& filler : stage.fillers) {
    FileInfo info;
    Require(filler.writer.TheFile().Info(info), "Looking at", filler.writer.Path());
    if (!info.notInPlace.empty() && !first) {
      throw MakeFailure("Overwriting the free space of", path_, info.notInPlace);
    }
    TellIfDue(ShareOfWork());
  }
}

void FreeSpaceWipe::ReleaseStage(Stage& stage) {
  for (Large& large : stage.fillers) {
    std::unique_ptr<File> file = large.writer.TakeFile();
    std::uint64_t left = large.writer.ExtentBytes();
    if (file && storage_.trims) trimmedFiles_ = file->Trim().Ok() || trimmedFiles_;
    while (file && left > kGivenBackAtOnce) {
      left -= kGivenBackAtOnce;
      if (!file->SetLength(left).Ok()) break;
      StillAlive();
    }
    Filler filler{std::move(file), large.name, large.writer.Path()};
    place_->Remove(filler);
    StillAlive();
  }
  stage.fillers.clear();
}

// The last ones first: they are what keeps the drive full.
void FreeSpaceWipe::ReleaseAll() {
  for (auto* const stages : {&stages_, &held_}) {
    while (!stages->empty()) {
      ReleaseStage(stages->back());
      stages->pop_back();
    }
  }
}

void FreeSpaceWipe::Trim() {
  if (!storage_.trims) return;
  const Status status = root_->TrimFreeSpace([this] {
    TellIfDue(share_);
    return true;
  });
  operation_.AddNote(status.Ok() || trimmedFiles_
                         ? "Afterwards the device was told to forget what was in the free space (trim)."
                         : "The device takes hints about free space (trim), but it could not be given one: " +
                               status.text + '.');
}

std::uint64_t FreeSpaceWipe::FreeBytes() {
  SpaceInfo space;
  Require(root_->Space(space), "Asking for the free space of", path_);
  return space.freeBytes;
}

// The read-back counts as one pass more.
double FreeSpaceWipe::ShareOfWork() const {
  const double all = static_cast<double>(std::max(filledBytes_, bytesOfRound_)) *
                     static_cast<double>(operation_.passes.size() + 1);
  return recordShare_ + (1 - recordShare_) * (all > 0 ? std::min(workedBytes_ / all, 1.0) : 1.0);
}

void FreeSpaceWipe::TellEvent() {
  const double done = static_cast<double>(bytesBefore_) + share_ * static_cast<double>(bytesOfRound_);
  const double total = static_cast<double>(bytesBefore_) + static_cast<double>(bytesOfRound_);
  const bool grown = growing_ || round_ > 0;
  const auto percent =
      grown ? 101 + static_cast<std::int32_t>(share_ * 99) : static_cast<std::int32_t>(share_ * 100);
  timer_.Raised();
  operation_.events.FreeSpaceProgress(path_, percent, ToKb(done), ToKb(total));
}

void FreeSpaceWipe::Tell() {
  TellEvent();
  operation_.LookForCancel();
}

// What a handler throws here would leave the drive full.
void FreeSpaceWipe::StillAlive() noexcept {
  try {
    if (timer_.IsDue()) TellEvent();
  } catch (...) {
    timer_.Raised();
  }
}

void FreeSpaceWipe::TellIfDue(double shareOfRound) {
  share_ = std::max(share_, shareOfRound);
  if (timer_.IsDue()) Tell();
}

}  // namespace zq::engine
