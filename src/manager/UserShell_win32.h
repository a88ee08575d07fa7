// Win32UserShell: the current user's own part of the registry and of the shell's folders, as Windows keeps
// them.
#pragma once

#include <optional>
#include <string>

#include "manager/ShellEntries.h"

namespace zq {

// Needs COM on this thread.
class Win32UserShell final : public UserShell {
 public:
  bool IsElevated() override;
  bool MakeKey(const std::string& key) override;
  bool WriteText(const std::string& key, const std::string& valueName, const std::string& text) override;
  bool RemoveKey(const std::string& key) override;
  void RemoveKeyIfEmpty(const std::string& key) override;
  bool AddSendTo(const std::string& name, const std::string& program) override;
  std::optional<std::string> SendToProgram(const std::string& name) override;
  void RemoveSendTo(const std::string& name) override;
  void TellChange() override;
};

}  // namespace zq
