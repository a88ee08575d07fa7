// The message loop and the pump: every message of the thread goes through the same dispatch.
#pragma once

#include <windows.h>

namespace zq {

// Accelerators and dialog keys of the form that the message belongs to, then its window procedure. An Enter
// that is held down does nothing beyond the form's own shortcuts.
void DispatchToForms(MSG& message);

// Handles the waiting messages, then returns.
void PumpMessages();

// The same for work that does it at every small step: windows are painted some thirty times a second at most,
// and what is left to paint comes with a later call, or with the loop.
void PumpBetweenSteps();

// Runs until WM_QUIT.
void RunMessageLoop();

}  // namespace zq
