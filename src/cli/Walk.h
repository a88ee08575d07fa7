// Lists what the engine would destroy in a folder, in the engine's own way, without touching it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/Plan.h"
#include "engine/Device.h"
#include "engine/OpenLevels.h"

namespace zq::cli {

class Walk {
 public:
  struct Selection {
    std::optional<std::string> mask;  // none: everything, and the folders too
    bool subFolders = false;
  };

  Walk(engine::Device& device, Selection selection, const std::function<bool()>& interrupted)
      : device_(device), selection_(std::move(selection)), interrupted_(interrupted), way_(device) {}

  // Appends an item for each file, link and folder, a folder after what it holds. What can be seen to stay
  // is Kept already, with the folders above it.
  void Run(const std::string& path, std::vector<Item>& items);

 private:
  // Not a recursion: a tree can be deeper than the stack.
  struct Level {
    std::unique_ptr<engine::Folder> folder;  // none if it wasn't found again
    std::string path;
    std::vector<engine::Entry> entries;
    std::size_t next = 0;
    bool somethingStays = false;
    std::string trouble;  // why it wasn't found again
  };

  bool Takes(const std::string& name) const;
  void Enter(const engine::Status& opened, std::unique_ptr<engine::Folder> folder, const std::string& name,
             std::string path, std::vector<Item>& items);
  void Visit(const engine::Entry& entry, std::vector<Item>& items);
  void Leave(std::vector<Item>& items);
  // Carries it out, and once more with outer levels closed, should the system open no more.
  engine::Status WithRoom(const std::function<engine::Status()>& open);

  engine::Device& device_;
  Selection selection_;
  const std::function<bool()>& interrupted_;
  std::vector<std::unique_ptr<Level>> levels_;
  engine::OpenLevels way_;  // the same
};

}  // namespace zq::cli
