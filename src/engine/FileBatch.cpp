#include "engine/FileBatch.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zq::engine {
namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{64} << 20;

// After this much time in replacing names, those that have been replaced are taken to the end first.
constexpr Clock::Time kLongestHiding{60'000};

}  // namespace

void FileBatch::AddFile(std::shared_ptr<Place> place, const std::string& name, const std::string& path,
                        std::optional<FileId> meant) {
  auto item = std::make_unique<Item>();
  item->place = std::move(place);
  const auto open = [&] { item->file.emplace(operation_, *item->place, name, path, meant).Open(); };
  try {
    try {
      open();
    } catch (const Failure& failure) {
      // Where files are opened for one alone, a second name of a file of the batch can't be until that is
      // gone. And it may be the batch's own files that the system has too many of.
      if (!HoldsFileOfSeveralNames() && failure.trouble != Trouble::TooManyOpen) throw;
      item->file.reset();
      Run();
      if (failure.trouble == Trouble::TooManyOpen && makeRoom_) makeRoom_();
      open();
    }
    if (HoldsSameFile(*item->file)) {
      // In one batch the two would spoil each other's read-back. After the run there is nothing left in it.
      item->file.reset();
      Run();
      open();
    }
  } catch (const Failure& failure) {
    item->place->somethingStays = true;
    operation_.TellFailed(engine::Item{path, name, ItemKind::File}, failure, Outcome::Kept, name);
    operation_.LookForCancel();
    return;
  }
  const std::uint64_t bytes = item->file->CoveredBytes();
  if (!items_.empty() && bytes_ + bytes > kMostBytes) Run();
  bytes_ += bytes;
  parts_ += item->file->Parts().size();
  items_.push_back(std::move(item));
  if (IsFull()) Run();
}

void FileBatch::AddLink(std::shared_ptr<Place> place, Entry entry, std::string path) {
  auto item = std::make_unique<Item>();
  item->place = std::move(place);
  item->linkItem = {std::move(path), entry.name, ItemKind::Link};
  item->link = std::move(entry);
  ++parts_;
  items_.push_back(std::move(item));
  if (IsFull()) Run();
}

bool FileBatch::HoldsFileOfSeveralNames() const {
  return std::any_of(items_.begin(), items_.end(),
                     [](const auto& item) { return item->file && item->file->HasSeveralNames(); });
}

bool FileBatch::HoldsSameFile(FileWipe& file) const {
  return std::any_of(items_.begin(), items_.end(),
                     [&file](const auto& item) { return item->file && item->file->IsSameFileAs(file); });
}

bool FileBatch::IsFull() const {
  return bytes_ >= kMostBytes || parts_ >= std::min(operation_.pace.FilesAtOnce(), mostOpen_);
}

template <typename Step>
void FileBatch::Try(Item& item, const Step& step) {
  if (item.IsOut()) return;
  try {
    step();
  } catch (const Failure& failure) {
    item.failure = failure;
    item.place->somethingStays = true;
  }
}

bool FileBatch::TellFailures() {
  bool any = false;
  for (const auto& item : items_) {
    if (!item->IsOut() || std::exchange(item->isTold, true)) continue;
    any = true;
    const Outcome outcome = item->file && item->file->IsOverwritten() ? Outcome::Destroyed : Outcome::Kept;
    if (item->failure) {
      operation_.TellFailed(item->TheItem(), *item->failure, outcome,
                            item->file ? item->file->NameNow() : item->link.name);
    } else {
      operation_.TellStays(item->TheItem(), item->because->failure->reason, outcome);
    }
  }
  return any;
}

void FileBatch::Run() {
  if (items_.empty()) return;
  // Whatever ends the run, no file may be closed while something is still written to it.
  struct Clear {
    FileBatch& batch;
    ~Clear() {
      batch.operation_.pipeline.Abandon();
      batch.group_ = {};
      batch.items_.clear();
      batch.bytes_ = 0;
      batch.parts_ = 0;
      batch.hasRun_ = true;
    }
  } const clear{*this};
  try {
    RunSteps();
  } catch (const Cancelled&) {
    TellFailures();
    throw;
  }
}

void FileBatch::RunSteps() {
  for (std::size_t i = 0; i < operation_.passes.size(); ++i) WritePass(operation_.passes[i], i == 0);
  Verify();
  // The last moment at which a cancel leaves all files of the batch where they are.
  if (TellFailures()) operation_.LookForCancel();
  Shorten();
  Clock::Time longest{};
  for (std::size_t first = 0; first < items_.size(); first += group_.size()) {
    if (first > 0 || !items_.front()->file) operation_.Tell(items_[first]->TheItem().path);
    const Clock::Time started = operation_.clock.Now();
    Erase(first);
    longest = std::max(longest, operation_.clock.Now() - started);
    for (const auto& item : group_) {
      if (item->IsOut()) continue;
      if (item->file) {
        item->file->Finish();
      } else {
        operation_.TellWiped(item->linkItem);
      }
    }
    if (TellFailures()) operation_.LookForCancel();
  }
  operation_.pace.RemovalTook(longest, parts_);
}

// --- The content ----------------------------------------------------------------------------------------

void FileBatch::WritePass(const Pass& pass, bool isFirst) {
  FileWipe* last = nullptr;
  for (const auto& item : items_) {
    if (!item->file || item->IsOut()) continue;
    if (isFirst) {
      item->file->Start();
      Try(*item, [&] { item->file->CheckUnwritten(); });
    }
    last = &*item->file;
    for (Overwriter& part : item->file->Parts()) {
      Try(*item, [&] { part.BeginPass(pass, item->file->Progress()); });
      (part.HowOpened() == Access::Direct ? directBytes_ : cachedBytes_) += part.CoveredBytes();
      // What may wait in a cache is bounded for all files together as it is for one.
      if (cachedBytes_ >= operation_.pace.FlushAfterBytes(Access::Cached) ||
          directBytes_ >= operation_.pace.FlushAfterBytes(Access::Direct)) {
        FlushParts();
        item->file->Progress().Worked(0);
      }
    }
  }
  FlushParts();
  if (last != nullptr) last->Progress().Worked(0);
}

void FileBatch::FlushParts() {
  operation_.pipeline.Drain();
  CheckTransfers();
  cachedBytes_ = directBytes_ = 0;
  std::vector<File*> files;
  std::vector<std::pair<Item*, Overwriter*>> parts;
  for (const auto& item : items_) {
    if (!item->file || item->IsOut()) continue;
    for (Overwriter& part : item->file->Parts()) {
      if (part.UnflushedBytes() == 0) continue;
      files.push_back(&part.TheFile());
      parts.emplace_back(item.get(), &part);
    }
  }
  std::vector<Status> outcomes(files.size());
  for (std::size_t first = 0; first < files.size();) {
    // One flush may serve all of them, or each may take its time.
    const std::size_t count = std::min(operation_.pace.FlushesAtOnce(), files.size() - first);
    if (first > 0) parts[first].first->file->Progress().Worked(0);
    const Clock::Time started = operation_.clock.Now();
    operation_.device.FlushMany(std::span(files).subspan(first, count),
                                std::span(outcomes).subspan(first, count));
    const Clock::Time took = operation_.clock.Now() - started;
    operation_.pace.FlushesTook(took, count);
    std::array<std::uint64_t, 2> bytes{};
    for (const std::size_t end = first + count; first < end; ++first) {
      Overwriter& part = *parts[first].second;
      bytes[part.HowOpened() == Access::Direct] += part.UnflushedBytes();
      // Direct writes that meet those of another program's mapping end in a flush that fails.
      if (!outcomes[first].Ok() && part.TheFile().IsOpenElsewhere()) {
        outcomes[first].text += "; another program has it open, which may be why";
      }
      Try(*parts[first].first, [&] { Require(outcomes[first], "Flushing", part.Path()); });
      part.FlushedByOthers();
    }
    for (const Access access : {Access::Cached, Access::Direct}) {
      const std::uint64_t flushed = bytes[access == Access::Direct];
      if (flushed > 0) operation_.pace.FlushTook(took, flushed, access);
    }
  }
}

void FileBatch::Verify() {
  for (const auto& item : items_) {
    if (!item->file) continue;
    for (Overwriter& part : item->file->Parts()) {
      Try(*item, [&] { part.BeginVerify(item->file->Progress()); });
    }
  }
  operation_.pipeline.Drain();
  CheckTransfers();
}

void FileBatch::CheckTransfers() {
  for (const auto& item : items_) {
    if (!item->file) continue;
    for (Overwriter& part : item->file->Parts()) Try(*item, [&] { part.ThrowIfFailed(); });
  }
}

// --- Names and entries ----------------------------------------------------------------------------------

// Cancelled in between, a file that has no length any more still has its name.
void FileBatch::Shorten() {
  for (std::size_t first = 0; first < items_.size(); first += group_.size()) {
    if (first > 0) operation_.Tell(items_[first]->TheItem().path);
    const std::size_t count = std::min(operation_.pace.FlushesAtOnce(), items_.size() - first);
    group_ = std::span(items_).subspan(first, count);
    const Clock::Time started = operation_.clock.Now();
    for (const auto& item : group_) {
      if (item->file) Try(*item, [&] { item->file->Shorten(); });
    }
    operation_.pace.FlushesTook(operation_.clock.Now() - started, count);
  }
}

// All names are replaced before any of it is made durable: each flush between would put one more copy of
// the folder, with the names that are still in it, into the file system's journal. Only where entries take
// the device so long that a cancel would have to wait is it done in several groups: within one there is no
// look at the cancel flag, so that nothing is left with another name and half its dates.
void FileBatch::Erase(std::size_t first) {
  const Clock::Time started = operation_.clock.Now();
  std::size_t end = first;
  do {
    Item& item = *items_[end++];
    Try(item, [&] { item.file ? item.file->Hide() : HideLink(item); });
  } while (end < items_.size() && operation_.clock.Now() - started < kLongestHiding);
  group_ = std::span(items_).subspan(first, end - first);
  if (!operation_.flushesNamesLater) {
    FlushEntries();
    FlushPlaces(true);
  }
  for (const auto& item : group_) {
    Try(*item, [&] {
      if (item->file) {
        item->file->Remove();
      } else {
        Require(item->place->folder->Remove(item->link), "Removing",
                item->linkItem.path + " (now named " + item->link.name + ')');
      }
      item->place->hasLostEntries = true;
      item->place->isUnflushed = operation_.flushesNamesLater;
    });
  }
  if (!operation_.flushesNamesLater) FlushPlaces(false);
}

void FileBatch::HideLink(Item& link) {
  HideName(operation_, *link.place->folder, link.link.name, link.linkItem.path, link.place->shortestName,
           [&](const std::string& newName) {
             Status status = link.place->folder->Rename(link.link, newName);
             if (status.Ok()) link.link.name = newName;
             return status;
           });
}

void FileBatch::FlushEntries() {
  std::vector<File*> files;
  std::vector<Item*> items;
  for (const auto& item : group_) {
    if (!item->file || item->IsOut()) continue;
    files.push_back(&item->file->Parts().front().TheFile());
    items.push_back(item.get());
  }
  std::vector<Status> outcomes(files.size());
  if (!files.empty()) operation_.device.FlushEntries(files, outcomes);
  for (std::size_t i = 0; i < items.size(); ++i) {
    Try(*items[i], [&] { Require(outcomes[i], "Flushing the entry of", items[i]->file->HiddenPath()); });
  }
}

// A folder that can't be flushed fails all that was done in it: nobody knows what of it is on the device.
void FileBatch::FlushPlaces(bool ofLinksAlone) {
  std::vector<Folder*> folders;
  std::vector<Item*> firsts;
  for (const auto& item : group_) {
    if (item->IsOut() || (ofLinksAlone && item->file)) continue;
    Folder* const folder = item->place->folder.get();
    // Their order is that of the walk, so the same folder comes in runs; one that comes again is flushed
    // again, and is the last that was changed when it is the last here.
    if (!folders.empty() && folders.back() == folder) continue;
    folders.push_back(folder);
    firsts.push_back(item.get());
  }
  if (folders.empty()) return;
  std::vector<Status> outcomes(folders.size());
  operation_.device.FlushFolders(folders, outcomes);
  for (std::size_t i = 0; i < folders.size(); ++i) {
    if (outcomes[i].Ok()) continue;
    firsts[i]->failure = MakeFailure("Flushing the folder of", firsts[i]->TheItem().path, outcomes[i]);
    for (const auto& item : group_) {
      if (item->place->folder.get() != folders[i]) continue;
      item->because = firsts[i];
      item->place->somethingStays = true;
    }
  }
}

}  // namespace zq::engine
