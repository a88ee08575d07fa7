// The folders from the top of a walk down to where it is, of which only some stay open: a tree can be deeper
// than a process may have folders open.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "engine/Device.h"

namespace zq::engine {

class OpenLevels {
 public:
  // As many stay open as the device has room for.
  explicit OpenLevels(const Device& device);

  // The walk has gone down into `folder`, called `name` in the one that holds it. It is closed and opened
  // where it stands, so it has to stay there until Leave.
  void Enter(std::unique_ptr<Folder>& folder, std::string name);

  // Whether some should be closed, at the next moment at which nothing works in them.
  bool AreTooMany() const { return levels_.size() - firstOpen_ > most_; }
  // Closes the outer ones but the top, so that half as many are open as may be.
  void CloseOuter();

  // Sees that the folder is open that holds the innermost one, which is to be left. It is found from there,
  // or by the names from the nearest one that is open; refused if that isn't the folder that was closed. To
  // be called again when it is Trouble::TooManyOpen.
  Status OpenHolder();
  // The innermost one is done with, open or not.
  void Leave();

 private:
  struct Level {
    std::unique_ptr<Folder>* folder;
    std::string name;
    EntryId id;  // once it was closed
  };

  Status FindByName(std::size_t number, std::unique_ptr<Folder>& folder) const;

  std::size_t most_;
  std::vector<Level> levels_;
  std::size_t firstOpen_ = 0;  // of those that are all open, but for such as weren't found again
};

}  // namespace zq::engine
