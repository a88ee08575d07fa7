#include "engine/SecureDelete.h"

#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string_view>

#include "engine/FileBatch.h"
#include "engine/FolderWipe.h"
#include "engine/FreeSpaceWipe.h"
#include "engine/Operation.h"

namespace zq::engine {
namespace {

// The failures of the single items have been told as they came; this is what the operation ends with.
struct ItemsFailed {
  std::string text;
};

void ThrowIfItemsFailed(const Operation& operation) {
  const std::size_t count = operation.failureCount;
  if (count == 0) return;
  std::string text = operation.firstFailure->text;
  if (count == 2) text += ", and 1 more failure";
  if (count > 2) text += ", and " + std::to_string(count - 1) + " more failures";
  throw ItemsFailed{std::move(text)};
}

// What there is to say beside the result, as sentences.
std::string NoteOf(const Operation& operation) {
  std::string note = operation.note;
  const std::size_t files = operation.namesLeft.size();
  if (files == 0) return note;
  if (!note.empty()) note += ' ';
  note += files == 1
              ? std::string("1 file has other names, too. Under these it is now empty.")
              : std::to_string(files) + " files have other names, too. Under these they are now empty.";
  return note;
}

// The longest that clearing the traces of names takes.
constexpr Clock::Time kLongest{5'000'000};
// The same for a drive's free space, which has taken so much longer. The log has old names that nothing else
// reaches.
constexpr Clock::Time kLongestOfFreeSpace{60'000'000};
// The same when the user waits for the end of what was cancelled: too short for an event.
constexpr Clock::Time kLongestAfterCancel{30'000};

constexpr std::string_view kNoMemory = "There is not enough memory for the operation";

}  // namespace

SecureDelete::SecureDelete(Device& device, SeedSource& seeds, Clock& clock, EngineEvents& events,
                           MaskMatch matches)
    : device_(device), seeds_(seeds), clock_(clock), events_(events), matches_(std::move(matches)) {
  lastErrorText_.reserve(512);  // room for a text when there is no memory left
}

SecureDelete::~SecureDelete() = default;

// The first one is what the user has to know: it stays.
void SecureDelete::SetError(std::string_view text) noexcept {
  if (!lastErrorText_.empty()) return;
  try {
    lastErrorText_.assign(MakeOneLine(text));
  } catch (...) {
    lastErrorText_.assign(kNoMemory);  // fits into what the constructor has reserved
  }
}

void SecureDelete::SetNote() noexcept {
  try {
    if (operation_) note_ = NoteOf(*operation_);
  } catch (...) {
    note_.clear();  // without memory there is worse to tell
  }
}

void SecureDelete::TellError(std::int32_t code) noexcept {
  try {
    events_.WipeError(code, lastErrorText_);
  } catch (...) {
    // The operation has failed already, and with a better reason.
  }
}

// Outside the try block nothing may allocate: a member ends with false, not with the process.
template <typename Work>
bool SecureDelete::Guard(const Work& work) noexcept {
  try {
    work();
    return true;
  } catch (const Failure& failure) {
    SetError(failure.text);
    TellError(failure.code);
  } catch (const ItemsFailed& failed) {
    SetError(failed.text);
  } catch (const Cancelled&) {
    wasCancelled_ = true;
    SetError(
        "Cancelled by the user. What was not finished is still there, a file in work partly overwritten");
  } catch (const std::bad_alloc&) {
    SetError(kNoMemory);
    TellError(kEngineErrorCode);
  } catch (const std::exception& error) {
    SetError(error.what());
    TellError(kEngineErrorCode);
  } catch (...) {
    SetError("An event handler failed");
    TellError(kEngineErrorCode);
  }
  return false;
}

template <typename Work>
bool SecureDelete::Run(const std::string& subject, std::int32_t level, const Work& work) noexcept {
  if (running_) return false;
  running_ = true;
  cancelled_ = false;
  lastErrorText_.clear();
  note_.clear();
  bool done = Guard([&] {
    if (PassesOfLevel(level).empty()) {
      throw MakeFailure("Wiping", subject, "there is no level " + std::to_string(level));
    }
    if (!operation_) operation_ = std::make_unique<Operation>(device_, events_, clock_, seeds_, cancelled_);
    operation_->BeginCall(level);
    operation_->traces.KeepFew(*operation_);
    work(*operation_);
    ThrowIfItemsFailed(*operation_);
  });
  SetNote();
  if (!isWhole_) done = ClearTraces() && done;
  running_ = false;
  return done;
}

bool SecureDelete::EndWhole() noexcept {
  if (running_ || !isWhole_) return true;
  isWhole_ = false;
  running_ = true;
  lastErrorText_.clear();
  note_.clear();
  if (operation_) operation_->BeginCall(0);
  const bool done = ClearTraces();
  running_ = false;
  return done;
}

bool SecureDelete::ClearTraces() noexcept {
  place_.reset();
  if (!operation_) return true;
  // A click may have come when nothing could be stopped any more.
  const bool inAHurry = std::exchange(wasCancelled_, false) || cancelled_;
  cancelled_ = false;
  const bool wasFreeSpace = std::exchange(isFreeSpace_, false);
  const Clock::Time longest = inAHurry ? kLongestAfterCancel : wasFreeSpace ? kLongestOfFreeSpace : kLongest;
  operation_->timer.Raised();
  const bool done = Guard([&] { operation_->traces.Clear(*operation_, longest); });
  SetNote();
  operation_.reset();
  return done;
}

// The next row of a job is mostly a file of the same folder, which stays open between two calls. Where that
// doesn't keep anybody from putting another one in its place, the path is followed anew, and compared.
std::shared_ptr<Place> SecureDelete::PlaceAt(const std::string& path) {
  if (place_ && place_->path == path) {
    if (!device_.RenamesOpenFolders()) return place_;
    EntryId then;
    EntryId now;
    if (place_->folder->Identity(then).Ok() && device_.Identify(device_.Join(path, {}), now).Ok() &&
        now == then) {
      return place_;
    }
  }
  place_.reset();
  auto place = std::make_shared<Place>(*operation_);
  place->path = path;
  Require(device_.OpenFolder(path, place->folder), "Opening", path);
  if (isWhole_) place_ = place;
  return place;
}

bool SecureDelete::WipeFile(const std::string& path, std::int32_t level) noexcept {
  return Run(path, level, [&](Operation& operation) {
    operation.flushesNamesLater = isWhole_;
    std::string folderPath;
    std::string name;
    std::shared_ptr<Place> place;
    try {
      Require(device_.Split(path, folderPath, name), "Opening", path);
      if (name.empty()) throw MakeFailure("Opening", path, "it is not a file");
      place = PlaceAt(folderPath);
    } catch (const Failure& failure) {
      operation.TellFailed({path, name, ItemKind::File}, failure, Outcome::Kept, name);
      return;
    }
    FileBatch batch(operation);
    batch.AddFile(place, name, path);
    batch.Run();
  });
}

bool SecureDelete::WipeFiles(const std::string& folderPath, std::span<const NamedFile> files,
                             std::int32_t level, const EntryId& meantFolder) noexcept {
  return Run(folderPath, level, [&](Operation& operation) {
    operation.flushesNamesLater = isWhole_;
    const auto keep = [&](const NamedFile& file, const Failure& failure) {
      const Item item{std::string(file.path), std::string(file.name), ItemKind::File};
      operation.TellFailed(item, failure, Outcome::Kept, item.name);
    };
    std::shared_ptr<Place> place;
    try {
      place = PlaceAt(folderPath);
      EntryId folder;
      Require(place->folder->Identity(folder), "Opening", folderPath);
      if (folder != meantFolder) throw NotMeant(folderPath);
    } catch (const Failure& failure) {
      for (const NamedFile& file : files) keep(file, failure);
      return;
    }
    FileBatch batch(operation);
    for (const NamedFile& file : files) {
      const std::string path(file.path);
      operation.Tell(path);
      // The file has its folder's mount, or it isn't opened.
      if (file.meant.mount != meantFolder.mount) {
        keep(file, NotMeant(path));
      } else {
        batch.AddFile(place, std::string(file.name), path, file.meant.file);
      }
    }
    batch.Run();
  });
}

bool SecureDelete::WipeFolder(const std::string& path, std::int32_t level, const EntryId* meant) noexcept {
  place_.reset();
  return Run(path, level, [&](Operation& operation) {
    FolderWipe wipe(operation, {[](const std::string&) { return true; }, true, true});
    wipe.Run(path, meant);
  });
}

bool SecureDelete::WipeFolderFiles(const std::string& path, const std::string& mask, bool includeSubFolders,
                                   std::int32_t level, const EntryId* meant) noexcept {
  place_.reset();
  return Run(path, level, [&](Operation& operation) {
    const auto takes = [&](const std::string& name) { return mask == "*.*" || matches_(name, mask); };
    FolderWipe wipe(operation, {takes, includeSubFolders, false});
    wipe.Run(path, meant);
  });
}

bool SecureDelete::WipeFreeSpace(const std::string& drive, std::int32_t level) noexcept {
  place_.reset();
  return Run(drive, level, [&](Operation& operation) {
    isFreeSpace_ = true;
    FreeSpaceWipe wipe(operation);
    wipe.Run(drive);
  });
}

}  // namespace zq::engine
