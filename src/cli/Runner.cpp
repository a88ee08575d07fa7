#include "cli/Runner.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "platform/Like.h"

namespace zq::cli {
namespace {

constexpr char kBeforeItsTurn[] = "cancelled before its turn";

std::string WhyLeft(const engine::ItemEnd& end) {
  std::string reason = end.reason;
  if (end.outcome == engine::Outcome::Destroyed) {
    reason = "its content is destroyed, but it may still be there; " + reason;
  }
  if (!end.nameNow.empty()) reason += "; it is named " + end.nameNow + " now";
  return reason;
}

}  // namespace

ItemNumbers::ItemNumbers(const std::vector<Item>& items)
    : items_(items), places_(std::bit_ceil(items.size() * 3 / 2 + 1)) {
  for (std::size_t i = 0; i < items.size(); ++i) {
    places_[PlaceOf(items[i].path)] = static_cast<std::uint32_t>(i + 1);
  }
}

std::optional<std::size_t> ItemNumbers::Find(const std::string& path) const {
  const std::uint32_t found = places_[PlaceOf(path)];
  return found == 0 ? std::nullopt : std::optional<std::size_t>(found - 1);
}

// Where it is, or where it is to come.
std::size_t ItemNumbers::PlaceOf(const std::string& path) const {
  const std::size_t mask = places_.size() - 1;
  std::size_t place = std::hash<std::string>()(path) & mask;
  while (places_[place] != 0 && items_[places_[place] - 1].path != path) place = (place + 1) & mask;
  return place;
}

Runner::Runner(Parts parts, const Options& options)
    : parts_(std::move(parts)),
      options_(options),
      engine_(parts_.device, parts_.seeds, parts_.clock, *this, &Like) {
}

RunResult Runner::Run(Plan& plan) {
  plan_ = &plan;
  result_ = {};
  std::vector<std::uint64_t> bytes;
  bytes.reserve(plan.items.size());
  for (const Item& item : plan.items) bytes.push_back(item.bytes);
  work_.emplace(bytes);
  numbers_.emplace(plan.items);
  begun_.assign(plan.items.size(), false);
  for (std::size_t i = 0; i < plan.items.size(); ++i) {
    if (plan.items[i].outcome == Outcome::Kept) work_->Item(i, 1);
  }

  engine_.BeginWhole();
  for (const Target& target : plan.targets) {
    if (parts_.interrupted()) break;
    stopped_ = anyFailure_ = false;
    Settle(target, Wipe(target));
  }
  ClearTraces();

  for (Item& item : plan.items) {
    if (item.outcome != Outcome::Pending) continue;
    item.outcome = Outcome::Kept;
    item.reason = kBeforeItsTurn;
    result_.cancelled = true;
  }
  parts_.progress.Clear();
  return std::move(result_);
}

bool Runner::Wipe(const Target& target) {
  const engine::EntryId* const meant = target.meant ? &*target.meant : nullptr;
  switch (target.kind) {
    case Target::Kind::Files:
      return engine_.WipeFiles(target.path, NamedFiles(target), options_.level, target.meant.value());
    case Target::Kind::Tree:
      return engine_.WipeFolder(target.path, options_.level, meant);
    case Target::Kind::Matching:
      break;
  }
  return engine_.WipeFolderFiles(target.path, *options_.mask, options_.recursive, options_.level, meant);
}

std::vector<engine::SecureDelete::NamedFile> Runner::NamedFiles(const Target& target) const {
  std::vector<engine::SecureDelete::NamedFile> files;
  files.reserve(target.files.size());
  for (const MeantFile& file : target.files) {
    files.push_back({file.name, plan_->items[target.firstItem + files.size()].path, file.meant});
  }
  return files;
}

// What names leave in folders and logs, once for the whole command line.
void Runner::ClearTraces() {
  if (!engine_.EndWhole()) result_.failures.push_back(engine_.LastErrorText());
  TakeNote();
}

void Runner::TakeNote() {
  if (const std::string& note = engine_.Note();
      !note.empty() && std::ranges::find(result_.notes, note) == result_.notes.end()) {
    result_.notes.push_back(note);
  }
}

// What the engine has told nothing of it hasn't come upon, or it was stopped before its end.
void Runner::Settle(const Target& target, bool done) {
  TakeNote();
  const bool stopped = stopped_ && !done;
  if (stopped) result_.cancelled = true;
  if (!done && !stopped && !anyFailure_) result_.failures.push_back(engine_.LastErrorText());
  for (std::size_t i = target.firstItem; i < target.firstItem + target.itemCount; ++i) {
    Item& item = plan_->items[i];
    if (item.outcome != Outcome::Pending) continue;
    item.outcome = Outcome::Kept;
    if (stopped) {
      item.reason =
          begun_[i] ? "cancelled while it was in work: it may be partly overwritten" : kBeforeItsTurn;
    } else if (!done) {
      item.reason = "not reached; " + engine_.LastErrorText();
    } else {
      item.reason = "it was not there any more, and was not overwritten";
    }
  }
}

void Runner::LookForInterrupt() {
  if (!parts_.interrupted()) return;
  stopped_ = true;
  engine_.CancelOperation();
}

void Runner::WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t,
                          const engine::Item& item) {
  LookForInterrupt();
  if (item.kind == engine::ItemKind::File) {
    if (const auto number = numbers_->Find(item.path)) {
      begun_[*number] = true;
      if (bytesTotal > 0) {
        work_->Item(*number, static_cast<double>(bytesDone) / static_cast<double>(bytesTotal));
      }
    }
  }
  parts_.progress.Show(work_->Share(), item.path);
}

void Runner::ItemEnded(const engine::Item& told, const engine::ItemEnd& end) {
  LookForInterrupt();
  const bool isWiped = end.outcome == engine::Outcome::Wiped;
  if (!isWiped) anyFailure_ = true;
  const auto number = numbers_->Find(told.path);
  if (!number) {
    if (isWiped && told.kind == engine::ItemKind::File) result_.alsoWiped.push_back(told.path);
    if (end.errorCode != 0) result_.failures.push_back(end.text);
    return;
  }
  work_->Item(*number, 1);
  Item& item = plan_->items[*number];
  if (isWiped && static_cast<int>(told.kind) != static_cast<int>(item.kind)) {
    item.outcome = Outcome::Kept;
    item.reason = "something else had come in its place, and is gone: it was not overwritten";
  } else if (isWiped) {
    item.outcome = Outcome::Wiped;
    item.reason.clear();
  } else if (item.outcome == Outcome::Pending) {  // a reason that was seen beforehand is the better one
    item.outcome = end.outcome == engine::Outcome::Destroyed ? Outcome::Destroyed : Outcome::Kept;
    item.reason = WhyLeft(end);
  }
}

void Runner::WipeError(std::int32_t, const std::string& errorText) {
  LookForInterrupt();
  anyFailure_ = true;
  result_.failures.push_back(errorText);
}

}  // namespace zq::cli
