#pragma once
// The two status bars at the bottom of the window.

#include <string>

/// Updates StatusText and the status bar with the count and size of the selected files, or with the
/// directory selected in the tree if there are none. Sums up the sizes in a thread.
void DisplayFileStatus();

/// Shows the filter of the list.
void DisplayFilterStatus();

/// Makes text the status until the next change of the selection. Cuts what is longer than a status may be.
void ShowStatus(std::string text);
/// Shows StatusText again after a tip for a menu item or a tool button.
void RestoreStatusText();
