#pragma once
// The main window.

#include <gtk/gtk.h>

/// Creates the window and fills pMainW; does not show it.
GtkWidget* CreateMainWindow();

/// Shows the window and opens StartDir or, if that is empty, RootDir. Ends the program if RootDir cannot be
/// read.
void ShowMainWindow();
