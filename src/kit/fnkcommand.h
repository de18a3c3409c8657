#pragma once
// When a command may start. Grabs and insensitive widgets keep the user out, but not assistive programs,
// which can press what takes no input.

#include <functional>

/// Whether a dialog, a command or a visit keeps a command from starting.
bool IsBusy();

/// Runs command from the main loop, unless the window is busy then: commands run main loops of their own,
/// which the toolkit does not expect inside its signals.
void StartCommand(std::function<void()> command);
