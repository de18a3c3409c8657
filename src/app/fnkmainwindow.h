#pragma once
// The main window, and what happens in it when a directory is chosen.

#include <gtk/gtk.h>

/// Builds the window, not shown, into the MainW record; null when the root cannot be read.
GtkWidget* CreateMainWindow();

/// Shows the window and opens the directory to start with.
void ShowMainWindow();
