#pragma once
// Commands of the Edit menu.

#include <gtk/gtk.h>

/// Updates which entries are sensitive. Called when the menu opens, and before an accelerator of one of
/// its entries is tried.
void on_Menu_Edit_activate(GtkWidget* item, gpointer data);
/// Reads the whole tree again and opens its root.
void on_Menu_RescanDirectory_activate(GtkWidget* item, gpointer data);
