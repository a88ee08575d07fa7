#include "cli/Runner.h"

#include <algorithm>
#include <utility>

#include "cli/System.h"
#include "platform/Like.h"

namespace zq::cli {
namespace {

constexpr char kBeforeItsTurn[] = "cancelled before its turn";

std::string NameOf(const engine::Device& device, const std::string& path) {
  std::string folder;
  std::string name;
  return device.Split(path, folder, name).Ok() ? name : path;
}

}  // namespace

Runner::Runner(Parts parts, const Options& options)
    : parts_(std::move(parts)),
      options_(options),
      engine_(parts_.device, parts_.seeds, parts_.clock, *this,
              [this](const std::string& name, const std::string& mask) {
                return takesWantedNames_ ? wantedNames_.contains(name) : Like(name, mask);
              }) {
}

RunResult Runner::Run(Plan& plan) {
  plan_ = &plan;
  result_ = {};
  std::vector<std::uint64_t> bytes;
  bytes.reserve(plan.items.size());
  for (const Item& item : plan.items) bytes.push_back(item.bytes);
  work_.emplace(bytes);
  for (std::size_t i = 0; i < plan.items.size(); ++i) {
    if (plan.items[i].outcome == Outcome::Kept) work_->Item(i, 1);
  }

  std::size_t next = 0;
  while (next < plan.targets.size() && !parts_.interrupted()) {
    const Target& target = plan.targets[next];
    std::size_t end = next + 1;
    if (target.kind == Target::Kind::File) {
      while (end < plan.targets.size() && plan.targets[end].kind == Target::Kind::File &&
             plan.targets[end].parent == target.parent) {
        ++end;
      }
    }
    if (end - next > 1) {
      RunFiles(next, end);
    } else {
      RunTarget(target);
    }
    next = end;
  }

  for (Item& item : plan.items) {
    if (item.outcome != Outcome::Pending) continue;
    item.outcome = Outcome::Kept;
    item.reason = kBeforeItsTurn;
    result_.cancelled = true;
  }
  parts_.progress.Clear();
  return std::move(result_);
}

void Runner::RunTarget(const Target& target) {
  if (target.kind == Target::Kind::File) return RunFile(target);
  Ledger ledger;
  for (std::size_t i = target.firstItem; i < target.firstItem + target.itemCount; ++i) {
    const Item& item = plan_->items[i];
    ledger.Add(i, item, item.path, NameOf(parts_.device, item.path));
  }
  ledger_ = &ledger;
  takesWantedNames_ = false;
  const bool done =
      target.kind == Target::Kind::Tree
          ? engine_.WipeFolder(target.path, options_.level)
          : engine_.WipeFolderFiles(target.path, *options_.mask, options_.recursive, options_.level);
  Settle(ledger, done, Ledger::Ending::Failed);
}

void Runner::RunFile(const Target& target) {
  Ledger ledger;
  ledger.Add(target.firstItem, plan_->items[target.firstItem], target.path,
             NameOf(parts_.device, target.path));
  ledger_ = &ledger;
  const bool done = engine_.WipeFile(target.path, options_.level);
  Settle(ledger, done, Ledger::Ending::Failed);
}

// Several files of one folder go to the engine together, since it takes many small files through each pass
// with few flushes. What it doesn't find in the listing (or if there is none to be had) goes one by one.
void Runner::RunFiles(std::size_t first, std::size_t end) {
  Ledger ledger;
  wantedNames_.clear();
  const std::string& parent = plan_->targets[first].parent;
  for (std::size_t i = first; i < end; ++i) {
    const Target& target = plan_->targets[i];
    ledger.Add(target.firstItem, plan_->items[target.firstItem], parts_.device.Join(parent, target.name),
               target.name);
    wantedNames_.insert(target.name);
  }
  ledger_ = &ledger;
  takesWantedNames_ = true;
  const bool done = engine_.WipeFolderFiles(parent, "the wanted names", false, options_.level);
  Settle(ledger, done, Ledger::Ending::TryAgain);

  for (std::size_t i = first; i < end && !parts_.interrupted(); ++i) {
    const Target& target = plan_->targets[i];
    if (plan_->items[target.firstItem].outcome == Outcome::Pending) RunFile(target);
  }
}

void Runner::Settle(const Ledger& ledger, bool done, Ledger::Ending ifNot) {
  ledger_ = nullptr;
  if (const std::string& note = engine_.Note();
      !note.empty() && std::ranges::find(result_.notes, note) == result_.notes.end()) {
    result_.notes.push_back(note);
  }
  Ledger::Ending ending = done ? Ledger::Ending::Done : ifNot;
  if (ifNot == Ledger::Ending::TryAgain) ending = ifNot;
  const bool stopped = std::exchange(stopped_, false) && !done;
  if (stopped) {
    ending = Ledger::Ending::Cancelled;
    result_.cancelled = true;
  }
  for (std::string& name : ledger.Settle(ending, plan_->items, Exists)) {
    result_.alsoWiped.push_back(std::move(name));
  }
  // A folder that can't be listed is no failure if its files can be wiped one by one.
  if (ending == Ledger::Ending::TryAgain && !ledger.AnyWiped()) return;
  for (const std::string& failure : ledger.OtherFailures()) result_.failures.push_back(failure);
  if (!done && !stopped && !ledger.AnyFailure()) result_.failures.push_back(engine_.LastErrorText());
}

void Runner::LookForInterrupt() {
  if (!parts_.interrupted()) return;
  stopped_ = true;
  engine_.CancelOperation();
}

void Runner::WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t,
                          const engine::Item& item) {
  LookForInterrupt();
  const std::optional<std::size_t> number =
      ledger_->Progress(item.name, bytesTotal > 0 && bytesDone == bytesTotal);
  if (number && bytesTotal > 0) {
    work_->Item(*number, static_cast<double>(bytesDone) / static_cast<double>(bytesTotal));
  }
  parts_.progress.Show(work_->Share(), number ? plan_->items[*number].path : item.name);
}

void Runner::WipeError(std::int32_t, const std::string& errorText) {
  LookForInterrupt();
  if (const auto number = ledger_->Failed(errorText)) work_->Item(*number, 1);
}

void Runner::ItemEnded(const engine::Item& item, const engine::ItemEnd& end) {
  LookForInterrupt();
  if (end.outcome != engine::Outcome::Wiped) {
    if (end.errorCode != 0) WipeError(end.errorCode, end.text);
  } else if (item.kind == engine::ItemKind::File) {
    if (const auto number = ledger_->Wiped(item.name)) work_->Item(*number, 1);
  }
}

}  // namespace zq::cli
