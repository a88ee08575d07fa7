#include "cli/Ledger.h"

#include <algorithm>

#include "engine/Failure.h"

namespace zq::cli {
namespace {

// A path as it stands in a failure: on one line, and after a blank.
std::string AsInFailure(const std::string& path) {
  return engine::MakeOneLine("- " + path).substr(2);
}

// A failure reads "Opening the path: reason", "Renaming the path, now named x: reason" or "Removing the path
// (now named x): reason". The operation has no more blanks than this.
constexpr int kMostBlanksOfOperation = 12;

}  // namespace

void Ledger::Add(std::size_t number, const Item& item, const std::string& path, const std::string& name) {
  byPath_[AsInFailure(path)].push_back(entries_.size());
  entries_.push_back({number, item.kind, name, {}});
  if (item.kind == ItemKind::File) names_[name].numbers.push_back(number);
}

std::optional<std::size_t> Ledger::Next(Namesakes& namesakes) {
  if (namesakes.begun == namesakes.numbers.size()) return std::nullopt;
  return namesakes.numbers[namesakes.begun++];
}

std::optional<std::size_t> Ledger::Progress(const std::string& name, bool isAtEnd) {
  const auto found = names_.find(name);
  if (found == names_.end()) return std::nullopt;
  Namesakes& namesakes = found->second;
  if (!namesakes.current && !isAtEnd) namesakes.current = Next(namesakes);
  return namesakes.current;
}

std::optional<std::size_t> Ledger::Wiped(const std::string& name) {
  ++wiped_[name];
  const auto found = names_.find(name);
  if (found == names_.end()) return std::nullopt;
  const std::optional<std::size_t> number =
      found->second.current ? found->second.current : Next(found->second);
  found->second.current.reset();
  return number;
}

std::optional<std::size_t> Ledger::Failed(const std::string& text) {
  anyFailure_ = true;
  // Of the paths that fit the longest: a folder's path is also the beginning of those in it.
  const std::vector<std::size_t>* places = nullptr;
  std::size_t bestStart = 0;
  std::size_t bestSize = 0;
  std::size_t start = text.find(' ');
  for (int blanks = 0; blanks < kMostBlanksOfOperation && start != std::string::npos; ++blanks) {
    ++start;
    for (std::size_t end = text.find_first_of(":, ", start); start < text.size();
         end = text.find_first_of(":, ", end + 1)) {
      const std::size_t size = std::min(end, text.size()) - start;
      if (size > bestSize) {
        if (const auto found = byPath_.find(text.substr(start, size)); found != byPath_.end()) {
          places = &found->second;
          bestStart = start;
          bestSize = size;
        }
      }
      if (end == std::string::npos) break;
    }
    start = text.find(' ', start);
  }
  if (places == nullptr) {
    otherFailures_.push_back(text);
    return std::nullopt;
  }
  // Two paths that differ in control characters alone look the same here: then neither is called wiped.
  for (const std::size_t place : *places) {
    Entry& entry = entries_[place];
    if (entry.failure.empty())
      entry.failure = text.substr(0, bestStart - 1) + text.substr(bestStart + bestSize);
    if (entry.kind == ItemKind::File) names_[entry.name].current.reset();
  }
  return entries_[places->front()].number;
}

std::string Ledger::WhyLeft(const Entry& entry, Ending ending) const {
  if (ending == Ending::Done) return "something of this name is there again";
  if (ending == Ending::Cancelled) {
    if (entry.kind == ItemKind::File) {
      const auto begun = names_.at(entry.name).begun;
      const auto wiped = wiped_.find(entry.name);
      if (begun > (wiped == wiped_.end() ? 0 : wiped->second)) {
        return "cancelled while it was in work: it may be partly overwritten";
      }
    }
    return "cancelled before its turn";
  }
  if (entry.kind == ItemKind::Folder) return "something in it stays";
  return otherFailures_.empty() ? "it was not destroyed" : otherFailures_.front();
}

std::vector<std::string> Ledger::Settle(Ending ending, std::vector<Item>& items,
                                        const std::function<bool(const std::string& path)>& exists) const {
  std::vector<bool> gone(entries_.size());
  std::unordered_map<std::string, std::size_t> goneFiles;
  for (std::size_t place = 0; place < entries_.size(); ++place) {
    const Entry& entry = entries_[place];
    gone[place] = !exists(items[entry.number].path);
    if (gone[place] && entry.failure.empty() && entry.kind == ItemKind::File) ++goneFiles[entry.name];
  }

  const auto timesWiped = [this](const std::string& name) {
    const auto found = wiped_.find(name);
    return found == wiped_.end() ? 0 : found->second;
  };
  for (std::size_t place = 0; place < entries_.size(); ++place) {
    const Entry& entry = entries_[place];
    Item& item = items[entry.number];
    const auto keep = [&item](std::string reason) {
      item.outcome = Outcome::Kept;
      item.reason = std::move(reason);
    };
    if (!entry.failure.empty()) {
      keep(entry.failure);
    } else if (!gone[place]) {
      // A reason that was seen beforehand is the better one.
      if (item.outcome == Outcome::Pending && ending != Ending::TryAgain) keep(WhyLeft(entry, ending));
    } else if (entry.kind == ItemKind::File && goneFiles[entry.name] > timesWiped(entry.name)) {
      keep("it is gone, but something else removed it: it may not be overwritten");
    } else {
      item.outcome = Outcome::Wiped;
      item.reason.clear();
    }
  }

  std::vector<std::string> alsoWiped;
  for (const auto& [name, times] : wiped_) {
    const auto found = goneFiles.find(name);
    const std::size_t expected = found == goneFiles.end() ? 0 : found->second;
    for (std::size_t i = expected; i < times; ++i) alsoWiped.push_back(name);
  }
  std::ranges::sort(alsoWiped);
  return alsoWiped;
}

}  // namespace zq::cli
