#pragma once
// The two status bars at the bottom of the window.

/// Updates StatusText and the status bar with the count and size of the selected files, or with the
/// tree's directory if none is selected. A large selection is summed up by an idle source.
void DisplayFileStatus();

/// Shows the filter of the list.
void DisplayFilterStatus();

/// Shows StatusText again after a menu tip.
void RestoreStatusText();
