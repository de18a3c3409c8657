#pragma once
// The dialogs that ask for a wildcard pattern.

#include <gtk/gtk.h>

#include <string>

#include "kit/fnkutil-picture.h"

struct PatternDlgTexts {
    const char* title;
    const char* prompt;  ///< Stands above the entry, and is its name for screen readers.
    Picture icon;
};

/// Runs a dialog over the main window. Its entry, with FilterHistory to choose from, says the
/// pattern at first; ok_handler is called with the drop-down when OK is pressed, and ends the loop.
void CreatePatternDlg(const PatternDlgTexts& texts, const std::string& pattern, GCallback ok_handler);

/// Takes the pattern out of the drop-down and records it. What cannot be one is complained of.
bool TakePattern(GtkWidget* combo, const char* complaint, std::string* pattern);
