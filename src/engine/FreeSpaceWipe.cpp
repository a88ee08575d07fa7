#include "engine/FreeSpaceWipe.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <optional>

namespace zq::engine {
namespace {

// Below the 4 GiB at which a file on FAT ends.
constexpr std::uint64_t kFillerBytes = std::uint64_t{1} << 30;
// How often space that was freed meanwhile is taken in. A drive in use never comes to rest.
constexpr int kMostRounds = 4;
// Less growth than this is the file system's own coming and going.
constexpr std::uint64_t kGrowthBytes = std::uint64_t{1} << 20;
// The longest content that an NTFS record of 1 KiB can hold, about, and the steps down from it.
constexpr std::size_t kRecordBytes = 720;
constexpr std::size_t kRecordStep = 64;
// A file system that keeps tiny files without taking clusters for them might never be full of them.
constexpr std::size_t kMostRecordFillers = 200'000;
constexpr std::size_t kNameLength = 12;

std::int32_t ToKb(double bytes) {
  const double kb = bytes / 1024.0;
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  return kb >= static_cast<double>(kMost) ? kMost : static_cast<std::int32_t>(kb);
}

}  // namespace

class FreeSpaceWipe::PassMeter final : public WorkMeter {
 public:
  PassMeter(FreeSpaceWipe& wipe, std::size_t passIndex, std::uint64_t passBytes)
      : wipe_(wipe), passIndex_(passIndex), passBytes_(std::max<std::uint64_t>(passBytes, 1)) {}

  void Worked(std::uint64_t bytes) override {
    doneBytes_ += bytes;
    const double part = std::min(1.0, static_cast<double>(doneBytes_) / static_cast<double>(passBytes_));
    // The read-back counts as one pass more.
    const auto all = static_cast<double>(wipe_.operation_.passes.size() + 1);
    wipe_.TellIfDue((static_cast<double>(passIndex_) + part) / all);
  }

 private:
  FreeSpaceWipe& wipe_;
  std::size_t passIndex_;
  std::uint64_t passBytes_;
  std::uint64_t doneBytes_ = 0;
};

void FreeSpaceWipe::Run(const std::string& drive) {
  std::optional<Failure> failure;
  bool cancelled = false;
  try {
    MakeFolder(drive);
    for (round_ = 0; round_ < kMostRounds; ++round_) {
      WipeRound();
      const std::uint64_t freed = FreeBytes();
      if (freed < leftoverBytes_ + kGrowthBytes) break;
      bytesBefore_ += bytesOfRound_;
      bytesOfRound_ = freed;
    }
  } catch (const Failure& caught) {
    failure = caught;
  } catch (const Cancelled&) {
    cancelled = true;
  } catch (...) {
    // Out of memory, most likely: the drive must not stay full all the same.
    const std::exception_ptr first = std::current_exception();
    try {
      RemoveFillers();
    } catch (...) {
    }
    std::rethrow_exception(first);
  }
  try {
    RemoveFillers();
  } catch (const Failure& left) {
    // A drive that stays full is what the user has to know first.
    throw failure ? Failure{failure->code, failure->text + "; and " + left.text} : left;
  }
  if (failure) throw *failure;
  if (cancelled) throw Cancelled{};
  round_ = 0;
  growing_ = false;
  share_ = 1;
  bytesOfRound_ += bytesBefore_;
  bytesBefore_ = 0;
  Tell();
}

void FreeSpaceWipe::MakeFolder(const std::string& drive) {
  path_ = drive;
  Require(operation_.device.OpenFolder(drive, root_), "Opening", drive);
  SpaceInfo space;
  Require(root_->Space(space), "Asking for the free space of", drive);
  bytesOfRound_ = space.freeBytes;
  clusterBytes_ = std::max<std::uint32_t>(space.clusterBytes, 1);
  Tell();

  // The folder's name isn't a secret. It is one that a user can make sense of, should the power fail.
  folderName_ = "ZQFILL-" + operation_.RandomName(kNameLength);
  Require(root_->AddFolder(folderName_, folder_), "Making a folder on", drive);
  path_ = operation_.device.Join(drive, folderName_);
}

void FreeSpaceWipe::WipeRound() {
  const std::size_t first = fillers_.size();
  share_ = 0;
  filledBytes_ = 0;
  while (FillOneFile()) {
  }
  growing_ = false;
  if (round_ == 0) FillRecords();
  leftoverBytes_ = FreeBytes();
  OverwriteFillers(first);
}

bool FreeSpaceWipe::FillOneFile() {
  std::string name;
  std::unique_ptr<File> file;
  if (!AddFile(Access::Direct, name, file)) return false;
  const std::size_t smallest = std::clamp<std::size_t>(
      std::max<std::size_t>(clusterBytes_, file->Alignment()), 1, std::size_t{64} << 10);
  fillers_.push_back({name, Overwriter(operation_, std::move(file), PathOf(name))});
  Overwriter& filler = fillers_.back().writer;

  filler.BeginGrowing(operation_.passes.front());
  std::size_t largest = Pace::kLargestUnit;
  bool full = false;
  while (filler.ExtentBytes() < kFillerBytes) {
    std::size_t size = std::min(filler.UnitBytes(), largest);
    size = std::max(size - size % smallest, smallest);
    std::size_t grown = 0;
    const Status status = filler.Grow(size, grown);
    filledBytes_ += grown;
    if (status.trouble == Trouble::NoSpace) {
      full = true;
      if (size <= smallest) break;
      largest = size / 2;
    } else {
      Require(status, "Writing", filler.Path());
    }
    NoticeGrowth();
    const double part =
        bytesOfRound_ == 0 ? 1.0 : static_cast<double>(filledBytes_) / static_cast<double>(bytesOfRound_);
    TellIfDue(std::min(1.0, part) / static_cast<double>(operation_.passes.size() + 1));
  }
  filler.Flush();
  filler.Close();
  return !full;
}

// The fill takes in what is freed meanwhile by itself; only the total has to follow.
void FreeSpaceWipe::NoticeGrowth() {
  if (filledBytes_ < bytesOfRound_ + kGrowthBytes) return;
  bytesOfRound_ = filledBytes_ + FreeBytes();
  growing_ = true;
}

void FreeSpaceWipe::OverwriteFillers(std::size_t first) {
  const std::size_t passCount = operation_.passes.size();
  for (std::size_t pass = 1; pass <= passCount; ++pass) {
    PassMeter meter(*this, pass, filledBytes_);
    for (std::size_t i = first; i < fillers_.size(); ++i) {
      Reopen(fillers_[i]);
      Overwriter& writer = fillers_[i].writer;
      if (pass < passCount) {
        writer.WritePass(operation_.passes[pass], meter);
        writer.Flush();
      } else {
        writer.Verify(meter);
      }
      writer.Close();
      meter.Worked(0);
    }
  }
}

void FreeSpaceWipe::Reopen(Filler& filler) {
  std::unique_ptr<File> file;
  Require(folder_->OpenFile(filler.name, Access::Direct, file), "Opening", filler.writer.Path());
  if (filler.writer.ExtentBytes() % file->Alignment() != 0) {
    file.reset();
    Require(folder_->OpenFile(filler.name, Access::Cached, file), "Opening", filler.writer.Path());
  }
  filler.writer.Reopen(std::move(file));
}

void FreeSpaceWipe::FillRecords() {
  std::size_t size = kRecordBytes;
  for (std::size_t count = 0; count < kMostRecordFillers; ++count) {
    std::string name;
    std::unique_ptr<File> file;
    if (!AddFile(Access::Cached, name, file)) return;
    Overwriter filler(operation_, std::move(file), PathOf(name));
    filler.BeginGrowing(operation_.passes.front());
    while (filler.ExtentBytes() == 0) {
      std::size_t grown = 0;
      const Status status = filler.Grow(size, grown);
      if (status.trouble != Trouble::NoSpace) {
        Require(status, "Writing", filler.Path());
      } else if (grown == 0) {
        if (size <= kRecordStep) return;
        size -= kRecordStep;
      }
    }
    filler.Flush();
    PassMeter meter(*this, 0, 1);
    for (std::size_t pass = 1; pass < operation_.passes.size(); ++pass) {
      filler.WritePass(operation_.passes[pass], meter);
      filler.Flush();
    }
    filler.Verify(meter);
  }
}

bool FreeSpaceWipe::AddFile(Access access, std::string& name, std::unique_ptr<File>& file) {
  constexpr int kTries = 16;
  Status status;
  for (int attempt = 0; attempt < kTries; ++attempt) {
    name = operation_.RandomName(kNameLength);
    names_.push_back(name);  // first, so that no file can be made that isn't removed
    status = folder_->AddFile(name, access, file);
    if (status.Ok()) return true;
    names_.pop_back();
    if (status.trouble == Trouble::NoSpace) return false;
    if (status.trouble != Trouble::Exists) break;
  }
  throw MakeFailure("Making", PathOf(name), status);
}

// Goes on after a failure: what can be given back is given back. Their names are random from the start, so
// they aren't renamed.
void FreeSpaceWipe::RemoveFillers() {
  if (!folder_) return;
  std::optional<Failure> failure;
  const auto check = [&failure](const Status& status, const std::string& path) {
    if (!status.Ok() && status.trouble != Trouble::NotFound && !failure) {
      failure = MakeFailure("Removing", path, status);
    }
  };
  fillers_.clear();  // closes the one that was in work
  for (const std::string& name : names_) check(folder_->Remove({name, EntryKind::File}), PathOf(name));
  names_.clear();
  folder_.reset();
  check(root_->Remove({folderName_, EntryKind::Folder}), path_);
  check(root_->Flush(), path_);
  if (failure) throw Failure{failure->code, failure->text};
}

std::uint64_t FreeSpaceWipe::FreeBytes() {
  SpaceInfo space;
  Require(root_->Space(space), "Asking for the free space of", path_);
  return space.freeBytes;
}

void FreeSpaceWipe::Tell() {
  const double done = static_cast<double>(bytesBefore_) + share_ * static_cast<double>(bytesOfRound_);
  const double total = static_cast<double>(bytesBefore_) + static_cast<double>(bytesOfRound_);
  const bool grown = growing_ || round_ > 0;
  const auto percent =
      grown ? 101 + static_cast<std::int32_t>(share_ * 99) : static_cast<std::int32_t>(share_ * 100);
  timer_.Raised();
  operation_.events.FreeSpaceProgress(path_, percent, ToKb(done), ToKb(total));
  operation_.LookForCancel();
}

void FreeSpaceWipe::TellIfDue(double shareOfRound) {
  share_ = std::max(share_, shareOfRound);
  if (timer_.IsDue()) Tell();
}

}  // namespace zq::engine
