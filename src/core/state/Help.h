// Help: what the Help buttons of the dialogs and the Help menu ask for.
#pragma once

namespace zq {

// Topics by their numbers in the map of the help file.
inline constexpr int kHelpOnFolder = 5;
inline constexpr int kHelpOnOpenJob = 6;
inline constexpr int kHelpOnDriveWipe = 10;
inline constexpr int kHelpOnPreferences = 11;

class Help {
 public:
  virtual ~Help() = default;
  virtual void ShowTopic(int topicId) = 0;
  virtual void ShowContents() = 0;
  virtual void ShowWebPage() = 0;
};

}  // namespace zq
