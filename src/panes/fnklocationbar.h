#pragma once
// The location bar: where one is, and where one wants to go. Its drop-down is the history that
// Back and Forward walk.

#include <gtk/gtk.h>

/// Builds the bar into box; the combo, or null.
GtkWidget* CreateLocationBar(GtkWidget* box);

/// Return in the entry: goes to the path, as far as it exists; one outside the root, or relative,
/// shows the current directory anew.
void on_LocationComboEntry_activate(GtkWidget* entry, gpointer data);

/// Handler of the window's "set-focus": while the entry's text is neither empty nor in the
/// drop-down list, nothing takes the focus out of it.
void on_MainWindow_set_focus(GtkWindow* window, GtkWidget* widget, gpointer data);

/// Whether typed keys go to the entry.
bool IsLocationFocused();
