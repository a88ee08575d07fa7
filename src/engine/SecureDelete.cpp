#include "engine/SecureDelete.h"

#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string_view>

#include "engine/FileBatch.h"
#include "engine/FolderWipe.h"
#include "engine/FreeSpaceWipe.h"
#include "engine/NameCover.h"
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

constexpr std::string_view kNoMemory = "There is not enough memory for the operation";

}  // namespace

SecureDelete::SecureDelete(Device& device, SeedSource& seeds, Clock& clock, EngineEvents& events,
                           MaskMatch matches)
    : device_(device), seeds_(seeds), clock_(clock), events_(events), matches_(std::move(matches)) {
  lastErrorText_.reserve(512);  // room for a text when there is no memory left
}

void SecureDelete::SetError(std::string_view text) noexcept {
  try {
    lastErrorText_.assign(MakeOneLine(text));
  } catch (...) {
    lastErrorText_.assign(kNoMemory);  // fits into what the constructor has reserved
  }
}

void SecureDelete::SetNote(const Operation& operation) noexcept {
  try {
    note_ = NoteOf(operation);
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
bool SecureDelete::Run(const std::string& subject, std::int32_t level, const Work& work) noexcept {
  if (running_) return false;
  running_ = true;
  cancelled_ = false;
  lastErrorText_.clear();
  note_.clear();
  bool done = false;
  std::optional<Operation> operation;
  try {
    if (PassesOfLevel(level).empty()) {
      throw MakeFailure("Wiping", subject, "there is no level " + std::to_string(level));
    }
    operation.emplace(device_, events_, clock_, seeds_, cancelled_, level);
    work(*operation);
    ThrowIfItemsFailed(*operation);
    SetNote(*operation);
    done = true;
  } catch (const Failure& failure) {
    SetError(failure.text);
    TellError(failure.code);
  } catch (const ItemsFailed& failed) {
    SetError(failed.text);
    SetNote(*operation);
  } catch (const Cancelled&) {
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
  running_ = false;
  return done;
}

bool SecureDelete::WipeFile(const std::string& path, std::int32_t level, const EntryId* meant) noexcept {
  return Run(path, level, [&](Operation& operation) {
    auto place = std::make_shared<Place>();
    std::string name;
    try {
      Require(device_.Split(path, place->path, name), "Opening", path);
      if (name.empty()) throw MakeFailure("Opening", path, "it is not a file");
      Require(device_.OpenFolder(place->path, place->folder), "Opening", place->path);
      if (meant != nullptr) {
        // The file has its folder's mount, or it is refused.
        EntryId folder;
        Require(place->folder->Identity(folder), "Opening", place->path);
        if (folder.mount != meant->mount) ThrowNotMeant(path);
        place->onlyFile = meant->file;
      }
    } catch (const Failure& failure) {
      operation.TellFailed({path, name, ItemKind::File}, failure, Outcome::Kept, name);
      return;
    }
    FileBatch batch(operation);
    batch.AddFile(place, name, path);
    batch.Run();
    if (batch.HasRemoved()) {
      CoverNames(operation, *place->folder, path);
      operation.ClearTraces(*place->folder, path);
    }
  });
}

bool SecureDelete::WipeFiles(const std::string& folderPath, std::span<const NamedFile> files,
                             std::int32_t level) noexcept {
  return Run(folderPath, level, [&](Operation& operation) {
    auto place = std::make_shared<Place>();
    place->path = folderPath;
    EntryId folder;
    try {
      Require(device_.OpenFolder(folderPath, place->folder), "Opening", folderPath);
      Require(place->folder->Identity(folder), "Opening", folderPath);
    } catch (const Failure& failure) {
      for (const NamedFile& file : files) {
        operation.TellFailed({file.path, file.name, ItemKind::File}, failure, Outcome::Kept, file.name);
      }
      return;
    }
    FileBatch batch(operation);
    for (const NamedFile& file : files) {
      operation.Tell(file.path);
      try {
        if (folder.mount != file.meant.mount) ThrowNotMeant(file.path);
      } catch (const Failure& failure) {
        operation.TellFailed({file.path, file.name, ItemKind::File}, failure, Outcome::Kept, file.name);
        continue;
      }
      place->onlyFile = file.meant.file;
      batch.AddFile(place, file.name, file.path);
    }
    batch.Run();
    if (!batch.HasRemoved()) return;
    CoverNames(operation, *place->folder, folderPath);
    operation.ClearTraces(*place->folder, folderPath);
  });
}

bool SecureDelete::WipeFolder(const std::string& path, std::int32_t level, const EntryId* meant) noexcept {
  return Run(path, level, [&](Operation& operation) {
    FolderWipe wipe(operation, {[](const std::string&) { return true; }, true, true});
    wipe.Run(path, meant);
  });
}

bool SecureDelete::WipeFolderFiles(const std::string& path, const std::string& mask, bool includeSubFolders,
                                   std::int32_t level, const EntryId* meant) noexcept {
  return Run(path, level, [&](Operation& operation) {
    const auto takes = [&](const std::string& name) { return mask == "*.*" || matches_(name, mask); };
    FolderWipe wipe(operation, {takes, includeSubFolders, false});
    wipe.Run(path, meant);
  });
}

bool SecureDelete::WipeFreeSpace(const std::string& drive, std::int32_t level) noexcept {
  return Run(drive, level, [&](Operation& operation) {
    FreeSpaceWipe wipe(operation);
    wipe.Run(drive);
  });
}

}  // namespace zq::engine
