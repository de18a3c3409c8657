#pragma once
// The two fields at the bottom of the window.

/// Rewrites StatusText and the status bar: what is selected in the list, else the tree's
/// directory. A large selection is summed up in pieces while the main loop is idle.
void DisplayFileStatus();

/// Says whether and how the list is filtered.
void DisplayFilterStatus();

/// Puts StatusText back after a tip was shown in its place.
void RestoreStatusText();
