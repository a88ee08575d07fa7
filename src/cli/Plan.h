// What will be destroyed, found out before anything is: the list that the user confirms, and in which the
// outcome is then written down.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/Options.h"
#include "cli/Safety.h"
#include "engine/Device.h"

namespace zq::cli {

enum class ItemKind { File, Folder, Link, Other };

enum class Outcome {
  Pending,
  Wiped,
  Kept,
  Destroyed,  // nothing of the content is left, but the entry is
};

struct Item {
  std::string path;  // as the engine calls it: the path that was given, and what follows it
  ItemKind kind = ItemKind::Other;
  std::uint64_t bytes = 0;
  Outcome outcome = Outcome::Pending;
  std::string reason;  // why it was kept, or is left
};

// A file of its own, beside what its item tells of it.
struct MeantFile {
  std::string name;  // in the case in which the system keeps it
  engine::EntryId meant;
};

// One call of the engine.
struct Target {
  enum class Kind { Files, Tree, Matching };

  Kind kind = Kind::Files;
  std::string path;              // of the folder; that of the files
  std::vector<MeantFile> files;  // one for each item
  // What was found there, and is shown to the user: nothing else that comes in its place is wiped.
  std::optional<engine::EntryId> meant;  // the folder at `path`
  std::size_t firstItem = 0;             // its items stand together in the plan
  std::size_t itemCount = 0;
};

struct Plan {
  std::vector<Item> items;
  std::vector<Target> targets;
  // Why nothing may be destroyed at all, one line each. The rest is of no use then.
  std::vector<std::string> refusals;
};

struct Totals {
  std::size_t files = 0;
  std::size_t folders = 0;
  std::size_t links = 0;
  std::size_t others = 0;
  std::uint64_t bytes = 0;

  std::size_t Items() const { return files + folders + links + others; }
};

// Of the plan's items with that outcome.
Totals Count(const Plan& plan, Outcome outcome);

// Looks at everything that `options` name. What can't be destroyed for a reason that is known already (a
// link, a missing file) is an item that is Kept from the start, and belongs to no target. A path that is
// named twice, or lies in a folder that is wiped anyway, is taken once. Stops early, with a plan of no
// use, once `interrupted` gives true.
Plan MakePlan(const Options& options, const Surroundings& surroundings, engine::Device& device,
              const std::function<bool()>& interrupted);

}  // namespace zq::cli
