#pragma once
// Dialogs that ask for a wildcard pattern.

#include <gtk/gtk.h>

#include <string>

#include "kit/fnkutil-picture.h"

struct PatternDlgTexts {
    const char* title;
    const char* prompt;  ///< Shown above the entry; also its accessible name.
    Picture icon;
};

/// Runs a modal dialog whose entry starts with pattern and offers FilterHistory. OK calls ok_handler
/// with the combo box as its data; the handler ends the main loop.
void CreatePatternDlg(const PatternDlgTexts& texts, const std::string& pattern, GCallback ok_handler);

/// Reads the pattern from combo and adds it to FilterHistory. If it is not valid, shows error_message and
/// returns false.
bool AcceptPattern(GtkWidget* combo, const char* error_message, std::string* pattern);
