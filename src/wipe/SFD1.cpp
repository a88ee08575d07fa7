#include "wipe/SFD1.h"

#include <utility>

#include "platform/Like.h"

namespace zq {

SFD1::SFD1(WipeEvents& events, std::unique_ptr<engine::Device> device)
    : events_(events), device_(std::move(device)), engine_(*device_, seeds_, clock_, *this, &Like) {
}

bool SFD1::WipeFile(const std::string& path, std::int32_t level) {
  return Finish(engine_.WipeFile(path, level));
}

bool SFD1::WipeFolder(const std::string& path, std::int32_t level) {
  return Finish(engine_.WipeFolder(path, level));
}

bool SFD1::WipeFolderFiles(const std::string& path, const std::string& mask, bool includeSubFolders,
                           std::int32_t level) {
  return Finish(engine_.WipeFolderFiles(path, mask, includeSubFolders, level));
}

bool SFD1::WipeFreeSpace(const std::string& drive, std::int32_t level) {
  return Finish(engine_.WipeFreeSpace(drive, level));
}

// What a handler of its progress raises comes too late to end anything.
bool SFD1::EndWhole() noexcept {
  const bool done = engine_.EndWhole();
  raised_ = nullptr;
  return done;
}

// The engine takes nothing that is thrown through it: what a handler raises waits here until the member
// has returned.
void SFD1::Raise(const std::function<void()>& handler) {
  if (raised_) return;
  try {
    handler();
  } catch (...) {
    raised_ = std::current_exception();
    engine_.CancelOperation();
  }
}

bool SFD1::Finish(bool result) {
  if (raised_) std::rethrow_exception(std::exchange(raised_, nullptr));
  return result;
}

void SFD1::WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t percent,
                        const engine::Item& item) {
  Raise([&] { events_.SFD1_WipeProgress(bytesDone, bytesTotal, percent, item.name); });
}

// The program counts files, and learns of the rest by what fails.
void SFD1::ItemEnded(const engine::Item& item, const engine::ItemEnd& end) {
  if (end.outcome == engine::Outcome::Wiped) {
    if (item.kind == engine::ItemKind::File) Raise([&] { events_.SFD1_ItemWiped(item.name); });
  } else if (end.errorCode != 0) {
    WipeError(end.errorCode, end.text);
  }
}

void SFD1::WipeError(std::int32_t errorCode, const std::string& errorText) {
  Raise([&] { events_.SFD1_WipeError(errorCode, errorText); });
}

void SFD1::FreeSpaceProgress(const std::string& itemName, std::int32_t percent, std::int32_t kbDone,
                             std::int32_t kbTotal) {
  Raise([&] { events_.SFD1_FreeSpaceProgress(itemName, percent, kbDone, kbTotal); });
}

}  // namespace zq
