#include "wipe/LeftFillers.h"

#include <memory>

#include "engine/Fillers.h"

namespace zq {

bool LeftFillers::RemoveFrom(const std::string& drive) {
  bool inTime = clock_.Now() < end_;
  std::unique_ptr<engine::Folder> root;
  if (!inTime || !device_.OpenFolder(drive, root).Ok()) return false;
  static_cast<void>(engine::RemoveLeftFillers(*root, [&] { return inTime = clock_.Now() < end_; }));
  return inTime;
}

void RemoveLeftFillers(const FillerRecord& record, Drives& drives) {
  const std::unique_ptr<engine::Device> device = engine::MakeSystemDevice();
  engine::SteadyClock clock;
  LeftFillers left(*device, clock);
  RemoveLeftFillers(record, drives, [&left](const std::string& drive) { return left.RemoveFrom(drive); });
}

}  // namespace zq
