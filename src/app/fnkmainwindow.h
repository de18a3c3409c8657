#pragma once
// The main window.

#include <gtk/gtk.h>

/// Creates the window and fills pMainW; does not show it. Null if RootDir cannot be read.
GtkWidget* CreateMainWindow();

/// Shows the window and opens CurrentDir.
void ShowMainWindow();
