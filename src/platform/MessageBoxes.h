// MessageBoxes: how the program tells and asks. The owner is the window that is active at the time.
#pragma once

#include <string>

namespace zq {

enum class MessageIcon { Information, Question, Exclamation, Critical };
enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel };

// A box closed by Esc or its close box answers Cancel where it has that button, and by the system's
// rule the only button of an OK box. A box of Yes and No answers one of these two and nothing else.
enum class MessageAnswer { Ok, Cancel, Yes, No };

// The first button is always the default one.
struct Message {
  std::string text;
  std::string title;
  MessageIcon icon = MessageIcon::Information;
  MessageButtons buttons = MessageButtons::Ok;

  bool operator==(const Message&) const = default;
};

class MessageBoxes {
 public:
  virtual ~MessageBoxes() = default;
  virtual MessageAnswer Show(const Message& message) = 0;
};

// Separates a statement from its question.
inline constexpr const char* kTwoLineBreaks = "\r\n\r\n";

}  // namespace zq
