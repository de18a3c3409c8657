#pragma once
// Commands of the Edit menu.

#include <gtk/gtk.h>

/// Before the menu opens: says which entries make sense now.
void on_Menu_Edit_activate(GtkWidget* item, gpointer data);
/// Reads the whole tree anew and goes back to its top.
void on_Menu_RescanDirectory_activate(GtkWidget* item, gpointer data);
