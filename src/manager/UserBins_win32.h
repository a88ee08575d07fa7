// UserBins: whose Recycle Bin it is, as Windows knows it, and telling the shell that it has changed.
#pragma once

#include <string>
#include <vector>

#include "manager/RecycleBin.h"

namespace zq {

class UserBins final : public BinOwner {
 public:
  std::string UserId() override;
  bool KeepsOwners(const std::string& root) override;
};

// So that the shell's windows and the Bin's icon don't show what is gone.
void TellShellOfBins(const std::vector<std::string>& folders);

}  // namespace zq
