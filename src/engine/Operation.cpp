#include "engine/Operation.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zq::engine {

void Operation::AddNote(const char* text) noexcept {
  try {
    if (note.empty()) note = text;
  } catch (const std::bad_alloc&) {
  }
}

bool Operation::MayCover() const {
  constexpr Clock::Time kAWhile{5'000'000};
  const Clock::Time now = clock.Now();
  return now < coveringEnd_ && covering_ < std::max(kAWhile, (now - begun_) / 2);
}

void Operation::TellWiped(const Item& item) {
  events.ItemEnded(item, {.outcome = Outcome::Wiped});
}

void Operation::TellFailed(const Item& item, const Failure& failure, Outcome outcome,
                           const std::string& nameNow) {
  ++failureCount;
  if (!firstFailure) firstFailure = failure;
  events.ItemEnded(item, {outcome, failure.code, failure.reason, failure.text,
                          nameNow == item.name ? std::string() : nameNow});
}

void Operation::TellStays(const Item& item, const std::string& reason, Outcome outcome) {
  events.ItemEnded(item, {.outcome = outcome, .reason = reason});
}

void Operation::TellFailure(const Failure& failure) {
  ++failureCount;
  if (!firstFailure) firstFailure = failure;
  events.WipeError(failure.code, failure.text);
}

std::string Operation::RandomName(std::size_t length) {
  // 32 characters, so that five random bits choose one. Without case, since file systems differ in it, and
  // without the letters a, n, o, t and u: no name is then one of the device names CON, PRN, AUX, NUL, LPT1.
  static constexpr char kCharacters[] = "0123456789bcdefghijklmpqrsvwxyz_";
  static_assert(sizeof kCharacters == 32 + 1);

  if (!namesSeeded_) {
    Require(names_.Seed(seeds), "Making a random name for", "a file");
    namesSeeded_ = true;
  }
  std::string name(length, ' ');
  names_.Read(names_.Take(BlockCount(length)), std::as_writable_bytes(std::span(name)));
  for (char& c : name) c = kCharacters[static_cast<unsigned char>(c) & 31];
  return name;
}

std::span<const std::byte> Operation::Pattern(std::uint8_t pattern, std::size_t sizeBytes) {
  if (pattern != pattern_) patternBytes_ = {};
  pattern_ = pattern;
  const std::span<std::byte> unit = patternMemory_.Unit(0, sizeBytes);
  std::size_t& filled = patternBytes_[UnitBuffers::IsSmall(sizeBytes) ? 0 : 1];
  if (filled < sizeBytes) {
    std::memset(unit.data() + filled, pattern, sizeBytes - filled);
    filled = sizeBytes;
  }
  return unit;
}

std::string HideName(Operation& operation, const Folder& folder, std::string name, const std::string& path,
                     std::size_t& shortest, const std::function<Status(const std::string& newName)>& rename) {
  constexpr std::size_t kLongestDetour = 4;
  // Of a batch's many files in one folder only some find a name of one character.
  const auto triesOfLength = [](std::size_t length) { return length == 1 ? 2 : (length == 2 ? 4 : 16); };

  const std::string oldName = name;
  const auto subject = [&] { return name == oldName ? path : path + ", now named " + name + ','; };

  const std::size_t length = folder.NameLength(name);
  // A record has room for names in steps of four characters: so many cover all of the old one's, and tell no
  // more of its length than the record does by itself.
  using Goals = std::vector<std::size_t>;
  for (const std::size_t goal :
       folder.NamesLieInRecords() ? Goals{length | 3} : Goals{length, length / 2, 1}) {
    const std::size_t step = std::max(goal, std::min(shortest, length));
    if (goal != length && step == folder.NameLength(name)) continue;
    Status status;
    bool renamed = false;
    // In a folder full of short names the wanted length may be used up: then a little longer has to do.
    for (std::size_t detour = 0; !renamed && detour <= kLongestDetour; ++detour) {
      // A name of 255 units leaves no room for a detour, and needs none.
      const std::size_t wanted = step + detour <= 255 ? step + detour : step;
      for (int attempt = 0; !renamed && attempt < triesOfLength(wanted); ++attempt) {
        std::string newName = operation.RandomName(wanted);
        if (newName == name) continue;
        status = rename(newName);
        if (status.Ok()) {
          name = std::move(newName);
          renamed = true;
          if (goal == 1) shortest = wanted;
        } else if (status.trouble != Trouble::Exists) {
          throw MakeFailure("Renaming", subject(), status);
        }
      }
    }
    if (!renamed) throw MakeFailure("Renaming", subject(), status);
  }
  return name;
}

}  // namespace zq::engine
