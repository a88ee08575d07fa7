#include "cli/Walk.h"

#include <algorithm>
#include <utility>

#include "cli/System.h"
#include "platform/Like.h"

namespace zq::cli {

bool Walk::Takes(const std::string& name) const {
  return !selection_.mask || *selection_.mask == kEveryFileMask || Like(name, *selection_.mask);
}

void Walk::Run(const std::string& path, std::vector<Item>& items) {
  std::string abovePath;
  std::string name;
  std::unique_ptr<engine::Folder> above;
  std::unique_ptr<engine::Folder> folder;
  engine::Status status = device_.Split(path, abovePath, name);
  if (status.Ok() && name.empty()) status = engine::Status::Refusal("it is a whole drive");
  if (status.Ok()) status = device_.OpenFolder(abovePath, above);
  if (status.Ok()) status = above->OpenFolder(name, folder);
  Enter(status, std::move(folder), name, path, items);
  while (!levels_.empty() && !interrupted_()) {
    Level& level = *levels_.back();
    if (level.next < level.entries.size()) {
      const engine::Entry entry = std::move(level.entries[level.next++]);
      Visit(entry, items);
    } else {
      Leave(items);
    }
    if (way_.AreTooMany()) way_.CloseOuter();
  }
}

void Walk::Enter(const engine::Status& opened, std::unique_ptr<engine::Folder> folder,
                 const std::string& name, std::string path, std::vector<Item>& items) {
  auto level = std::make_unique<Level>();
  engine::Status status = opened;
  if (status.Ok()) status = WithRoom([&] { return folder->List(level->entries); });
  if (!status.Ok()) {
    items.push_back({std::move(path), ItemKind::Folder, 0, Outcome::Kept, status.text});
    if (!levels_.empty()) levels_.back()->somethingStays = true;
    return;
  }
  std::ranges::sort(level->entries, {}, &engine::Entry::name);
  level->folder = std::move(folder);
  level->path = std::move(path);
  way_.Enter(level->folder, name);
  levels_.push_back(std::move(level));
}

engine::Status Walk::WithRoom(const std::function<engine::Status()>& open) {
  engine::Status status = open();
  if (status.trouble != engine::Trouble::TooManyOpen) return status;
  way_.CloseOuter();
  return open();
}

void Walk::Visit(const engine::Entry& entry, std::vector<Item>& items) {
  Level& level = *levels_.back();
  std::string path = device_.Join(level.path, entry.name);
  switch (entry.kind) {
    case engine::EntryKind::File:
      if (Takes(entry.name)) {
        const std::uint64_t bytes = LengthBytes(path);
        items.push_back({std::move(path), ItemKind::File, bytes, Outcome::Pending, {}});
      }
      break;
    case engine::EntryKind::Folder:
      if (selection_.subFolders) {
        std::unique_ptr<engine::Folder> folder;
        const engine::Status status = WithRoom([&] { return level.folder->OpenFolder(entry.name, folder); });
        Enter(status, std::move(folder), entry.name, std::move(path), items);
      }
      break;
    case engine::EntryKind::FolderLink:
      if (!selection_.mask) items.push_back({std::move(path), ItemKind::Link, 0, Outcome::Pending, {}});
      break;
    case engine::EntryKind::Link:
      if (Takes(entry.name)) items.push_back({std::move(path), ItemKind::Link, 0, Outcome::Pending, {}});
      break;
    case engine::EntryKind::Other:
      if (Takes(entry.name)) {
        items.push_back({std::move(path), ItemKind::Other, 0, Outcome::Kept, "it is not a regular file"});
        level.somethingStays = true;
      }
      break;
  }
}

void Walk::Leave(std::vector<Item>& items) {
  const engine::Status opened = WithRoom([&] { return way_.OpenHolder(); });
  way_.Leave();
  const std::unique_ptr<Level> level = std::move(levels_.back());
  levels_.pop_back();
  if (!selection_.mask || !level->trouble.empty()) {
    Item item{std::move(level->path), ItemKind::Folder, 0, Outcome::Pending, {}};
    if (level->somethingStays) {
      item.outcome = Outcome::Kept;
      item.reason = level->trouble.empty() ? "something in it stays" : std::move(level->trouble);
    }
    items.push_back(std::move(item));
  }
  if (level->somethingStays && !levels_.empty()) levels_.back()->somethingStays = true;
  if (opened.Ok()) return;
  Level& holder = *levels_.back();
  holder.entries.clear();
  holder.next = 0;
  holder.somethingStays = true;
  holder.trouble = opened.text;
}

}  // namespace zq::cli
