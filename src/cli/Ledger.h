// What one call of the engine did, item by item. The engine tells wiped files by their names without
// their folders, and failures by a line of text that holds the path: this puts the two together with what
// is on the disc afterwards. Where that leaves a doubt, the item counts as kept.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/Plan.h"

namespace zq::cli {

class Ledger {
 public:
  // `path` is what the engine calls the item in this call.
  void Add(std::size_t number, const Item& item, const std::string& path, const std::string& name);

  // The events of the engine. The number of the item that is meant, if that can be told.
  std::optional<std::size_t> Progress(const std::string& name, bool isAtEnd);
  std::optional<std::size_t> Wiped(const std::string& name);
  std::optional<std::size_t> Failed(const std::string& text);

  bool AnyWiped() const { return !wiped_.empty(); }
  bool AnyFailure() const { return anyFailure_; }
  // Failures that name none of the items.
  const std::vector<std::string>& OtherFailures() const { return otherFailures_; }

  enum class Ending {
    Done,
    Failed,
    Cancelled,
    TryAgain,  // what is left without a reason stays Pending
  };
  // Fills in outcome and reason of all items; `exists` tells whether there is something at a path. Gives the
  // names of files that were wiped although they are none of the items: they came later.
  std::vector<std::string> Settle(Ending ending, std::vector<Item>& items,
                                  const std::function<bool(const std::string& path)>& exists) const;

 private:
  struct Entry {
    std::size_t number;
    ItemKind kind;
    std::string name;
    std::string failure;
  };
  // The files of one name, by their numbers.
  struct Namesakes {
    std::vector<std::size_t> numbers;
    std::size_t begun = 0;
    std::optional<std::size_t> current;
  };

  std::optional<std::size_t> Next(Namesakes& namesakes);
  std::string WhyLeft(const Entry& entry, Ending ending) const;

  std::vector<Entry> entries_;
  std::unordered_map<std::string, std::vector<std::size_t>> byPath_;  // as in failures; places in entries_
  std::unordered_map<std::string, Namesakes> names_;
  std::unordered_map<std::string, std::size_t> wiped_;
  std::vector<std::string> otherFailures_;
  bool anyFailure_ = false;
};

}  // namespace zq::cli
