// Help: what the Help buttons of the dialogs ask for.
#pragma once

namespace zq {

// Topics by their numbers in the map of the help file.
inline constexpr int kHelpOnDriveWipe = 10;
inline constexpr int kHelpOnPreferences = 11;

class Help {
 public:
  virtual ~Help() = default;
  virtual void ShowTopic(int topicId) = 0;
};

}  // namespace zq
