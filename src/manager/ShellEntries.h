// ShellEntries: what the companion adds to the shell of its user while it runs: "Wipe with Zeroquill" in the
// menu of files and folders, and beneath "Send to".
//
// Both hand the whole selection to a class of COM as one drop, however many there are: a command line would
// take some hundred names, and the shell hides such verbs for larger selections.
#pragma once

#include <optional>
#include <string>

namespace zq {

// The current user's own part of the registry and of the shell's folders, and nothing of other users.
class UserShell {
 public:
  virtual ~UserShell() = default;

  // Whether this process has more rights than the user's shell. True if that can't be told.
  virtual bool IsElevated() = 0;

  // A key below HKEY_CURRENT_USER as any other, if it isn't there. False if the system refuses.
  virtual bool MakeKey(const std::string& key) = 0;
  // A text below HKEY_CURRENT_USER, in a key that is gone when the user logs off. `valueName` may be empty.
  // False if the system refuses.
  virtual bool WriteText(const std::string& key, const std::string& valueName, const std::string& text) = 0;
  // With all that is in the key. False if there was none.
  virtual bool RemoveKey(const std::string& key) = 0;
  virtual void RemoveKeyIfEmpty(const std::string& key) = 0;

  // The entry of this name beneath "Send to": a shortcut to a program. False if the system refuses.
  virtual bool AddSendTo(const std::string& name, const std::string& program) = 0;
  // The path of the program that the entry leads to, empty if it leads elsewhere or can't be read; nothing
  // if there is no such entry.
  virtual std::optional<std::string> SendToProgram(const std::string& name) = 0;
  virtual void RemoveSendTo(const std::string& name) = 0;

  // So that windows that are open show what has changed.
  virtual void TellChange() = 0;
};

// Of the class that takes the drops, as COM writes it.
inline constexpr const char* kWipeVerbClassId = "{8F0C6B1E-5D3A-4C47-9B4E-2A7D51E0C9F3}";
inline constexpr const char* kWipeVerbCaption = "Wipe with Zeroquill";

class ShellEntries {
 public:
  explicit ShellEntries(UserShell& shell) : shell_(shell) {}

  // Removes what one that crashed has left. Then writes them all, or none: with more rights than the shell's,
  // which finds nobody then, or where the system refuses. `programPath`: of the companion, which serves the
  // class by now.
  void Write(const std::string& programPath);
  // Does nothing where nothing was written.
  void Remove();

 private:
  bool WriteAll(const std::string& programPath);
  bool RemoveAll();

  UserShell& shell_;
  bool written_ = false;
};

}  // namespace zq
