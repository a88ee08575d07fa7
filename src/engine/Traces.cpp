#include "engine/Traces.h"

#include <algorithm>
#include <new>
#include <utility>

#include "engine/NameCover.h"
#include "engine/Operation.h"

namespace zq::engine {
namespace {

// Folders are kept open, and a process may have only so many open.
constexpr std::size_t kMostKept = 64;

}  // namespace

void Traces::Add(std::unique_ptr<Folder> folder, std::string path, bool isUnflushed) noexcept {
  try {
    NameRoom room;
    const bool keepsNames = folder->RoomForNames(room);
    const std::uint64_t log = folder->Log();
    Kept added{std::move(folder), std::move(path), log, isUnflushed};
    // Open, it would keep a later call from removing it.
    if (!device_.RenamesOpenFolders()) Flush(std::span(&added, 1));
    if (!keepsNames && log == 0 && !added.isUnflushed) return;
    const auto known = std::ranges::find_if(kept_, [&](const Kept& kept) {
      return keepsNames || log == 0 ? kept.path == added.path : kept.log == log;
    });
    if (known != kept_.end()) {
      known->isUnflushed = known->isUnflushed || added.isUnflushed;
    } else {
      kept_.push_back(std::move(added));
    }
  } catch (const std::bad_alloc&) {
    // Its names stay as they are. The content is gone.
  }
}

void Traces::KeepFew(Operation& operation) {
  while (kept_.size() > kMostKept) {
    Flush(std::span(kept_).first(1));
    CoverNames(operation, *kept_.front().folder, kept_.front().path);
    kept_.erase(kept_.begin());
  }
}

void Traces::Flush(std::span<Kept> some) {
  std::vector<Kept*> unflushed;
  std::vector<Folder*> folders;
  for (Kept& one : some) {
    if (!std::exchange(one.isUnflushed, false)) continue;
    unflushed.push_back(&one);
    folders.push_back(one.folder.get());
  }
  if (folders.empty()) return;
  std::vector<Status> outcomes(folders.size());
  device_.FlushRemovals(folders, outcomes);
  for (std::size_t i = 0; i < folders.size(); ++i) {
    if (outcomes[i].Ok() || failure_) continue;
    failure_ = MakeFailure("Flushing the removal of files from", unflushed[i]->path, outcomes[i]);
  }
}

void Traces::Clear(Operation& operation, Clock::Time longest) {
  const Clock::Time end = operation.clock.Now() + longest;
  operation.EndCoveringAt(end);
  std::vector<Kept> kept = std::exchange(kept_, {});
  Flush(kept);
  for (const Kept& one : kept) CoverNames(operation, *one.folder, one.path);
  for (const Kept& one : kept) {
    if (one.log == 0) continue;
    const auto mayGoOn = [&] { return operation.MayGoOn(one.path) && operation.clock.Now() < end; };
    std::string note;
    const Status status = operation.device.ClearTraces(*one.folder, mayGoOn, note);
    if (!note.empty()) operation.AddNote(note);
    if (!status.Ok() && !failure_)
      failure_ = MakeFailure("Clearing the journal after the wipe of", one.path, status);
  }
  if (failure_) throw Failure(*std::exchange(failure_, {}));
}

}  // namespace zq::engine
