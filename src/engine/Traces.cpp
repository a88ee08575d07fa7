#include "engine/Traces.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "engine/NameCover.h"
#include "engine/Operation.h"

namespace zq::engine {
namespace {

// Folders are kept open, and a process may have only so many open.
constexpr std::size_t kMostKept = 64;

}  // namespace

void Traces::Add(std::unique_ptr<Folder> folder, std::string path) noexcept {
  try {
    NameRoom room;
    const bool keepsNames = folder->RoomForNames(room);
    const std::uint64_t log = folder->Log();
    const bool isKnown = std::ranges::any_of(
        kept_, [&](const Kept& kept) { return keepsNames ? kept.path == path : kept.log == log; });
    if ((keepsNames || log != 0) && !isKnown) kept_.push_back({std::move(folder), std::move(path), log});
  } catch (const std::bad_alloc&) {
    // Its names stay as they are. The content is gone.
  }
}

void Traces::KeepFew(Operation& operation) {
  while (kept_.size() > kMostKept) {
    CoverNames(operation, *kept_.front().folder, kept_.front().path);
    kept_.erase(kept_.begin());
  }
}

void Traces::Clear(Operation& operation, Clock::Time longest) {
  const Clock::Time end = operation.clock.Now() + longest;
  operation.EndCoveringAt(end);
  const std::vector<Kept> kept = std::exchange(kept_, {});
  for (const Kept& one : kept) CoverNames(operation, *one.folder, one.path);
  std::optional<Failure> failure;
  for (const Kept& one : kept) {
    if (one.log == 0) continue;
    const auto mayGoOn = [&] { return operation.MayGoOn(one.path) && operation.clock.Now() < end; };
    std::string note;
    const Status status = operation.device.ClearTraces(*one.folder, mayGoOn, note);
    if (!note.empty()) operation.AddNote(note);
    if (!status.Ok() && !failure)
      failure = MakeFailure("Clearing the journal after the wipe of", one.path, status);
  }
  if (failure) throw Failure(*failure);
}

}  // namespace zq::engine
