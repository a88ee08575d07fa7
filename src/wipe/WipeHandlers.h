// WipeHandlers: the handlers of the main window's engine. Each of its events belongs to one of the two
// operations that it carries out.
#pragma once

#include "wipe/FreeSpaceWipe.h"
#include "wipe/JobWipe.h"

namespace zq {

class WipeHandlers final : public WipeEvents {
 public:
  WipeHandlers(JobWipe& jobWipe, FreeSpaceWipe& freeSpaceWipe)
      : jobWipe_(jobWipe), freeSpaceWipe_(freeSpaceWipe) {}

  void SFD1_WipeProgress(std::int32_t bytesDone, std::int32_t bytesTotal, std::int32_t unused,
                         const std::string& itemName) override {
    jobWipe_.SFD1_WipeProgress(bytesDone, bytesTotal, unused, itemName);
  }
  void SFD1_ItemWiped(const std::string& itemName) override { jobWipe_.SFD1_ItemWiped(itemName); }
  void SFD1_WipeError(std::int32_t errorCode, const std::string& errorText) override {
    freeSpaceWipe_.SFD1_WipeError(errorCode, errorText);
  }
  void SFD1_FreeSpaceProgress(const std::string& itemName, std::int32_t percent, std::int32_t kbDone,
                              std::int32_t kbTotal) override {
    freeSpaceWipe_.SFD1_FreeSpaceProgress(itemName, percent, kbDone, kbTotal);
  }

 private:
  JobWipe& jobWipe_;
  FreeSpaceWipe& freeSpaceWipe_;
};

}  // namespace zq
