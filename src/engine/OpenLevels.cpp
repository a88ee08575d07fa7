#include "engine/OpenLevels.h"

#include <algorithm>
#include <utility>

namespace zq::engine {
namespace {

bool IsThat(Folder& folder, const EntryId& id) {
  EntryId found;
  return folder.Identity(found).Ok() && found == id;
}

}  // namespace

OpenLevels::OpenLevels(const Device& device) : most_(std::max<std::size_t>(device.OpenAtOnce().levels, 4)) {
}

void OpenLevels::Enter(std::unique_ptr<Folder>& folder, std::string name) {
  levels_.push_back({&folder, std::move(name), {}});
}

void OpenLevels::CloseOuter() {
  const std::size_t kept = most_ / 2;
  if (levels_.size() <= kept) return;
  const std::size_t end = levels_.size() - kept;
  for (std::size_t i = std::max<std::size_t>(firstOpen_, 1); i < end; ++i) {
    std::unique_ptr<Folder>& folder = *levels_[i].folder;
    // One that couldn't be told from others when it is opened again stays open.
    if (folder && folder->Identity(levels_[i].id).Ok()) folder.reset();
  }
  firstOpen_ = std::max(firstOpen_, end);
}

Status OpenLevels::OpenHolder() {
  if (levels_.size() < 2) return {};
  const std::size_t number = levels_.size() - 2;
  if (number >= firstOpen_) return {};
  Level& holder = levels_[number];
  Status status;
  if (!*holder.folder) {
    std::unique_ptr<Folder> folder;
    if (const auto& inner = *levels_.back().folder) status = inner->OpenAbove(folder);
    if (status.trouble == Trouble::TooManyOpen) return status;
    // Whoever has moved the inner one leads us elsewhere that way.
    if (!folder || !IsThat(*folder, holder.id)) status = FindByName(number, folder);
    if (status.trouble == Trouble::TooManyOpen) return status;
    if (status.Ok()) *holder.folder = std::move(folder);
  }
  firstOpen_ = number;
  return status;
}

Status OpenLevels::FindByName(std::size_t number, std::unique_ptr<Folder>& folder) const {
  std::size_t open = number;
  while (open > 0 && !*levels_[open].folder) --open;
  Folder* above = levels_[open].folder->get();
  while (open < number) {
    const Level& level = levels_[++open];
    std::unique_ptr<Folder> found;
    if (Status status = above->OpenFolder(level.name, found); !status.Ok()) return status;
    if (!IsThat(*found, level.id)) {
      return Status::Refusal("it isn't where it was any more: something else has come in its place");
    }
    folder = std::move(found);
    above = folder.get();
  }
  return {};
}

void OpenLevels::Leave() {
  levels_.pop_back();
  firstOpen_ = std::min(firstOpen_, levels_.size());
}

}  // namespace zq::engine
