// What a screen reader is told of a window that draws a text: that it is a document, and what it reads.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>

namespace zq {

// Gives the text that is in view.
using SpokenText = std::function<std::string()>;

// The answer to WM_GETOBJECT; 0, which leaves it to the system, for what isn't asked of the window itself. A
// screen reader may keep the object for longer than the window lives: it then finds no text any more.
LRESULT AnswerWithDocument(HWND window, WPARAM wParam, LPARAM lParam,
                           const std::shared_ptr<SpokenText>& text);

// The text is another one now.
void TellTextChanged(HWND window);

}  // namespace zq
