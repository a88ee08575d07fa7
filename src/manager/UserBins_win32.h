// UserBins: whose Recycle Bin it is, as Windows knows it, and telling the shell that it has changed.
#pragma once

#include <string>

#include "manager/ManagerWipe.h"
#include "manager/RecycleBin.h"

namespace zq {

class UserBins final : public BinOwner {
 public:
  std::string UserId() override;
  bool KeepsOwners(const std::string& root) override;
};

class Win32ShellNotices final : public ShellNotices {
 public:
  void FolderChanged(const std::string& folder) override;
  void BinsChanged() override;
};

}  // namespace zq
