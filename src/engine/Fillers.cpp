#include "engine/Fillers.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace zq::engine {
namespace {

// One that a user can make sense of, should the power fail.
constexpr std::string_view kFolderStart = "ZQFILL-";
constexpr std::size_t kRandomLength = 12;
// Eight characters: longer ones would get a second, short name on some systems, and a record more room for
// names than it needs.
constexpr std::size_t kNumberDigits = 7;

bool IsOneOf(char c, std::string_view characters) {
  return characters.find(c) != std::string_view::npos;
}

std::string NameOf(std::uint32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "z%07x", static_cast<unsigned>(number & 0x0FFF'FFFF));
  return text;
}

}  // namespace

bool IsFillerFolderName(const std::string& name) {
  return name.size() == kFolderStart.size() + kRandomLength && name.starts_with(kFolderStart) &&
         std::all_of(name.begin() + static_cast<std::ptrdiff_t>(kFolderStart.size()), name.end(),
                     [](char c) { return IsOneOf(c, "0123456789abcdefghijklmnopqrstuvwxyz_"); });
}

bool IsFillerName(const std::string& name) {
  return name.size() == 1 + kNumberDigits && name[0] == 'z' &&
         std::all_of(name.begin() + 1, name.end(), [](char c) { return IsOneOf(c, "0123456789abcdef"); });
}

bool FillerPlace::MakeFolder() {
  constexpr int kTries = 16;
  Status status;
  for (int attempt = 0; attempt < kTries; ++attempt) {
    folderName_ = std::string(kFolderStart) + operation_.RandomName(kRandomLength);
    status = root_.AddFolder(folderName_, folder_);
    if (status.trouble != Trouble::Exists) break;
  }
  if (status.trouble == Trouble::NoSpace) return false;
  folderPath_ = operation_.device.Join(rootPath_, folderName_);
  Require(status, "Making the folder", folderPath_);
  (void)folder_->Lock();  // a file system without locks has no second run's either
  folder_->StoreAsIs();
  return true;
}

bool FillerPlace::Add(Access access, Filler& filler) {
  // On a file that is made for it: a filler's places are remembered from when it is first looked at.
  if (!isChecked_) {
    Filler probe;
    if (!Make(access, probe)) return false;
    FileInfo info;
    const Status status = probe.file->Info(info);
    Remove(probe);
    Require(status, "Looking at a file on", rootPath_);
    if (!info.notInPlace.empty()) {
      throw MakeFailure("Overwriting the free space of", rootPath_,
                        "files there can't be overwritten in place, since " + info.notInPlace);
    }
    if (!info.caveat.empty()) operation_.AddNote(info.caveat);
    isChecked_ = true;
  }
  return Make(access, filler);
}

bool FillerPlace::Make(Access access, Filler& filler) {
  filler = {};
  Status status;
  if (triesNameless_) {
    filler.path = rootPath_;
    status = root_.AddNameless(access, filler.file);
    if (status.trouble == Trouble::Refused) triesNameless_ = false;
  }
  if (!triesNameless_) {
    if (!folder_ && !MakeFolder()) return false;
    filler.name = NameOf(nextNumber_++);
    filler.path = operation_.device.Join(folderPath_, filler.name);
    status = folder_->AddFiller(filler.name, access, filler.file);
  }
  if (status.trouble == Trouble::NoSpace) return false;
  Require(status, "Making a file on", rootPath_);
  return true;
}

void FillerPlace::Reopen(Filler& filler, Access access) {
  Require(folder_->OpenFile(filler.name, access, filler.file), "Opening", filler.path);
}

void FillerPlace::Remove(Filler& filler) {
  if (filler.file) (void)filler.file->SetLength(0);  // if it can't be, the removal tells
  filler.file.reset();
  if (filler.name.empty()) return;
  const Status status = folder_->Remove({filler.name, EntryKind::File});
  if (status.trouble != Trouble::NotFound) Note(status, filler.path);
  filler.name.clear();
}

void FillerPlace::FlushFolder() {
  if (folder_) Require(folder_->Flush(), "Flushing", folderPath_);
}

void FillerPlace::Note(const Status& status, const std::string& path) {
  if (!status.Ok() && !failure_) failure_ = MakeFailure("Removing", path, status);
}

void FillerPlace::RemoveFolder() noexcept {
  if (!folder_) return;
  folder_.reset();
  try {
    const Status status = root_.Remove({folderName_, EntryKind::Folder});
    if (status.trouble != Trouble::NotFound) Note(status, folderPath_);
    Note(root_.Flush(), rootPath_);
  } catch (const std::bad_alloc&) {
    // The next run finds it.
  }
}

void FillerPlace::Close() {
  RemoveFolder();
  if (failure_) throw Failure(*std::exchange(failure_, {}));
}

namespace {

bool RemoveOne(Folder& root, const std::string& name, const std::function<bool()>& goOn) {
  std::unique_ptr<Folder> folder;
  std::vector<Entry> entries;
  if (!root.OpenFolder(name, folder).Ok() || !folder->Lock() || !folder->List(entries).Ok()) return false;
  const bool isOurs = std::ranges::all_of(
      entries, [](const Entry& entry) { return entry.kind == EntryKind::File && IsFillerName(entry.name); });
  if (!isOurs) return false;
  for (const Entry& entry : entries) {
    if (!goOn()) return false;
    if (folder->Remove(entry).Ok()) continue;
    // On a full drive a removal can need room.
    std::unique_ptr<File> file;
    if (!folder->OpenFile(entry.name, Access::Cached, file).Ok() || !file->SetLength(0).Ok()) return false;
    file.reset();
    if (!folder->Remove(entry).Ok()) return false;
  }
  folder.reset();
  return root.Remove({name, EntryKind::Folder}).Ok();
}

}  // namespace

std::size_t RemoveLeftFillers(Folder& root, const std::function<bool()>& goOn) {
  std::vector<Entry> entries;
  if (!root.List(entries).Ok()) return 0;
  return static_cast<std::size_t>(std::ranges::count_if(entries, [&](const Entry& entry) {
    return entry.kind == EntryKind::Folder && IsFillerFolderName(entry.name) &&
           RemoveOne(root, entry.name, goOn);
  }));
}

std::size_t RemoveLeftFillers(Device& device, const std::string& drive, const std::function<bool()>& goOn) {
  std::unique_ptr<Folder> root;
  return device.OpenFolder(drive, root).Ok() ? RemoveLeftFillers(*root, goOn) : 0;
}

}  // namespace zq::engine
