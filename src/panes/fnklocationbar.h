#pragma once
// The location bar. It shows the current directory and takes a path to go to. Its drop-down lists
// the history that Back and Forward walk.

#include <gtk/gtk.h>

/// Builds the bar in box. Returns the drop-down, or null.
GtkWidget* CreateLocationBar(GtkWidget* box);

/// Goes to the typed path, or to the deepest directory on it that exists. If the path is relative, too
/// long or outside RootDir, opens the current directory again.
void on_LocationComboEntry_activate(GtkWidget* entry, gpointer data);

/// Handler of the window's "set-focus". Keeps the focus in the entry while its text is neither empty
/// nor an item of the drop-down.
void on_MainWindow_set_focus(GtkWindow* window, GtkWidget* widget, gpointer data);

/// Whether the entry has the focus.
bool IsLocationFocused();
/// Puts CurrentDir back into the entry and gives the keys to the panes.
void LeaveLocation();
