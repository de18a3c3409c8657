#pragma once
// Commands of the Edit menu.

#include <gtk/gtk.h>

/// Updates which entries are sensitive, as the menu opens.
void on_Menu_Edit_activate(GtkWidget* item, gpointer data);
/// Reads the whole tree again and opens its root.
void on_Menu_RescanDirectory_activate(GtkWidget* item, gpointer data);
