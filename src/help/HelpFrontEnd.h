// HelpFrontEnd: what the Help buttons and the Help menu do with the program's help file.
#pragma once

#include <memory>

#include "core/state/Help.h"
#include "help/HTMLHelp.h"

namespace zq {

struct AppState;
class Files;
class MessageBoxes;
class Shell;

// The project's page, which the Help menu opens.
inline constexpr const char* kWebPage = "https://zeroquill.example/";

class HelpFrontEnd final : public Help {
 public:
  HelpFrontEnd(const AppState& state, Files& files, MessageBoxes& messageBoxes, Shell& shell,
               const HelpParts& parts)
      : state_(state), files_(files), messageBoxes_(messageBoxes), shell_(shell), parts_(parts) {}

  // Whether the help file lies beside the program. A box tells that it doesn't.
  bool HelpFileExists();

  void ShowTopic(int topicId) override;
  void ShowContents() override;
  void ShowWebPage() override;  // in the user's browser; without one nothing happens

  // The one object behind all of them; null until the first display.
  const HTMLHelp* HelpObject() const { return HelpObject_.get(); }

 private:
  HTMLHelp& ReadyObject();
  std::string HelpFile() const;

  const AppState& state_;
  Files& files_;
  MessageBoxes& messageBoxes_;
  Shell& shell_;
  const HelpParts parts_;
  std::unique_ptr<HTMLHelp> HelpObject_;
};

}  // namespace zq
