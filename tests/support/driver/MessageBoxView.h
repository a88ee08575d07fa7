// A message box of another process, wholly read, and its answer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/driver/Window.h"

namespace zq::test {

enum class BoxIcon { None, Information, Question, Warning, Error };

// For test messages.
std::string ToString(BoxIcon icon);

class MessageBoxView {
 public:
  // Reads the box. The icon is told by its picture on the screen, so the box must lie in front; it
  // is waited for until it is painted.
  explicit MessageBoxView(Window box);

  // A dialog of nothing but one text, at most one icon, and buttons with the ids of message boxes.
  static bool IsMessageBox(Window window);

  Window window;
  std::string title;
  std::string text;  // line breaks are CR LF or LF, as the program gave them
  BoxIcon icon = BoxIcon::None;
  std::vector<std::string> buttons;  // captions without access keys, from left to right
  std::string defaultButton;

  // Presses the button with this caption, and waits until the box is gone.
  void Answer(std::string_view caption) const;
  // Closes the box by its close box, or as Esc does, and waits until it is gone.
  void Dismiss() const;
};

}  // namespace zq::test
