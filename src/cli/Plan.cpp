#include "cli/Plan.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "cli/Shown.h"
#include "cli/System.h"
#include "cli/Walk.h"

namespace zq::cli {
namespace {

// A path that was named, and what the system says about it.
struct Named {
  const std::string& given;  // of the options
  Located located;
};

class Planner {
 public:
  Planner(const Options& options, const Surroundings& surroundings, engine::Device& device,
          const std::function<bool()>& interrupted)
      : options_(options), surroundings_(surroundings), device_(device), interrupted_(interrupted) {}

  Plan Make() {
    LookAtAll();
    if (!plan_.refusals.empty()) return std::move(plan_);
    for (const Named& named : folders_) {
      if (interrupted_()) break;
      AddFolder(named);
    }
    // After the folders, whose items are then known. A shell can name a hundred thousand files: what is in
    // the plan is let go here.
    plan_.items.reserve(plan_.items.size() + others_.size());
    for (; !others_.empty(); others_.pop_front()) AddOther(others_.front());
    return std::move(plan_);
  }

 private:
  void Refuse(const std::string& path, const std::string& why) {
    plan_.refusals.push_back(Shown(path) + ": " + why);
  }

  void LookAtAll() {
    std::unordered_set<std::string_view> seen;  // canonical paths, in what is kept of them
    for (const std::string& path : options_.paths) Look(path, seen);
  }

  void Look(const std::string& path, std::unordered_set<std::string_view>& seen) {
    Named named{path, Locate(path)};
    const Located& located = named.located;
    if (const std::string why = WhyProtected({path, located.canonical, located.id}, surroundings_);
        !why.empty()) {
      Refuse(path, why);
    } else if (located.type == EntryType::Folder && !options_.recursive && !options_.mask) {
      Refuse(path, "it is a folder; give --recursive to wipe all of it, or --mask for some of its files");
    }
    if (seen.contains(located.canonical)) return;
    std::deque<Named>& kept = located.type == EntryType::Folder ? folders_ : others_;
    kept.push_back(std::move(named));
    const std::string& canonical = kept.back().located.canonical;
    if (!canonical.empty()) seen.insert(canonical);
  }

  // Whether another folder that was named takes this one along.
  bool IsCovered(const Named& folder) const {
    if (!options_.recursive) return false;
    return std::ranges::any_of(folders_, [&](const Named& other) {
      return &other != &folder &&
             IsWithin(folder.located.canonical, other.located.canonical, surroundings_.style);
    });
  }

  void AddFolder(const Named& named) {
    if (IsCovered(named)) return;
    Target target;
    target.kind = options_.mask ? Target::Kind::Matching : Target::Kind::Tree;
    target.path = named.given;
    target.firstItem = plan_.items.size();
    engine::EntryId meant;
    if (const engine::Status status = device_.Identify(named.given, meant); !status.Ok()) {
      // Whatever is there when it is wiped could be something else.
      plan_.items.push_back({named.given, ItemKind::Folder, 0, Outcome::Kept, status.text});
      return;
    }
    if (++heldCount_ > kMostHeld) meant.hold.reset();
    target.meant = std::move(meant);
    Walk walk(device_, {options_.mask, options_.recursive}, interrupted_);
    walk.Run(named.given, plan_.items);
    target.itemCount = plan_.items.size() - target.firstItem;
    RememberPlaces(target, named);
    if (target.itemCount > 0) plan_.targets.push_back(std::move(target));
  }

  // Only what is named by itself too can meet an item of a folder, and most often nothing is.
  void RememberPlaces(const Target& target, const Named& folder) {
    const bool needed = std::ranges::any_of(others_, [&](const Named& other) {
      return IsWithin(other.located.canonical, folder.located.canonical, surroundings_.style);
    });
    if (!needed) return;
    for (std::size_t i = 0; i < target.itemCount; ++i) {
      const std::string& path = plan_.items[target.firstItem + i].path;
      taken_.insert(Locate(path).canonical);
    }
  }

  void AddOther(const Named& named) {
    const Located& located = named.located;
    if (!located.canonical.empty() && taken_.contains(located.canonical)) return;
    Item item;
    item.path = named.given;
    const auto keep = [&](ItemKind kind, const std::string& why) {
      item.kind = kind;
      item.outcome = Outcome::Kept;
      item.reason = why;
      plan_.items.push_back(item);
    };
    switch (located.type) {
      case EntryType::Missing:
        return keep(ItemKind::Other, located.trouble);
      case EntryType::Link:
        return keep(ItemKind::Link, "it is a link, and links are not followed");
      case EntryType::Other:
        return keep(ItemKind::Other, "it is not a regular file");
      case EntryType::Folder:
      case EntryType::File:
        break;
    }
    std::string folder;
    std::string name;
    engine::Status status = device_.Split(named.given, folder, name);
    name = LastName(located.canonical, surroundings_.style);
    engine::EntryId meant;
    if (status.Ok()) status = device_.Identify(named.given, meant);
    if (!status.Ok()) return keep(ItemKind::File, status.text);
    item.kind = ItemKind::File;
    item.bytes = located.lengthBytes;
    // Files of one folder that stand one after the other in the plan are one call of the engine, since it
    // takes many small files through each pass with few flushes.
    const bool joins = !plan_.targets.empty() && plan_.targets.back().kind == Target::Kind::Files &&
                       plan_.targets.back().path == folder &&
                       plan_.targets.back().firstItem + plan_.targets.back().itemCount == plan_.items.size();
    if (!joins) {
      Target target;
      target.path = folder;
      if (status = IdentifyAsItsWayLeads(folder, target.meant.emplace()); !status.Ok()) {
        return keep(ItemKind::File, status.text);
      }
      target.firstItem = plan_.items.size();
      plan_.targets.push_back(std::move(target));
    }
    if (++heldCount_ > kMostHeld) meant.hold.reset();
    plan_.items.push_back(std::move(item));
    plan_.targets.back().files.push_back({std::move(name), std::move(meant)});
    ++plan_.targets.back().itemCount;
  }

  // Of what the path leads to if it is a link, as for the engine.
  engine::Status IdentifyAsItsWayLeads(const std::string& path, engine::EntryId& id) const {
    std::unique_ptr<engine::Folder> folder;
    const engine::Status status = device_.OpenFolder(path, folder);
    return status.Ok() ? folder->Identity(id) : status;
  }

  const Options& options_;
  const Surroundings& surroundings_;
  engine::Device& device_;
  const std::function<bool()>& interrupted_;
  Plan plan_;
  // Each once.
  std::deque<Named> folders_;
  std::deque<Named> others_;
  std::unordered_set<std::string> taken_;  // canonical paths of items of folders
  // What is held open keeps its number; the plan must not take all descriptors for that.
  static constexpr std::size_t kMostHeld = 32;
  std::size_t heldCount_ = 0;
};

}  // namespace

Totals Count(const Plan& plan, Outcome outcome) {
  Totals totals;
  for (const Item& item : plan.items) {
    if (item.outcome != outcome) continue;
    switch (item.kind) {
      case ItemKind::File:
        ++totals.files;
        break;
      case ItemKind::Folder:
        ++totals.folders;
        break;
      case ItemKind::Link:
        ++totals.links;
        break;
      case ItemKind::Other:
        ++totals.others;
        break;
    }
    totals.bytes += item.bytes;
  }
  return totals;
}

Plan MakePlan(const Options& options, const Surroundings& surroundings, engine::Device& device,
              const std::function<bool()>& interrupted) {
  return Planner(options, surroundings, device, interrupted).Make();
}

}  // namespace zq::cli
